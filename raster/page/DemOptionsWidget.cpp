#include "raster/page/DemOptionsWidget.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <initializer_list>

#include "dialog/page/ControlWidget.h"
#include "raster/page/RasterPageControls.h"
#include "support/LasFormat.h"

namespace orvex {

using namespace dem_control;

namespace {

constexpr int kControlSpacing = 6;

QLabel* MakeCaption(int id, StringId caption, StringId tooltip, QWidget* buddy) {
    auto* label = MakeControl<QLabel>(id, caption, tooltip);
    label->setBuddy(buddy);
    return label;
}

QPushButton* MakeTextButton(int id, StringId caption, StringId tooltip) {
    auto* button = MakeControl<QPushButton>(id, caption, tooltip);
    button->setAutoDefault(false);
    button->setMinimumWidth(button->sizeHint().width() + 2 * kControlSpacing);
    return button;
}

/// Controls beside each other, at the left.
QHBoxLayout* MakeRow(std::initializer_list<QWidget*> controls) {
    auto* row = new QHBoxLayout;
    row->setSpacing(kControlSpacing);
    for (QWidget* control : controls) {
        row->addWidget(control);
    }
    row->addStretch();
    return row;
}

}  // namespace

DemOptionsWidget::DemOptionsWidget(QWidget* parent) : QWidget(parent), openMode_(new QButtonGroup(this)) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(MakeOpenGroup());
    layout->addWidget(MakeOptionsGroup());
    layout->addWidget(MakeConversionGroup(), 1);
    for (QCheckBox* box : {append_, ignoreCrs_}) {
        connect(box, &QCheckBox::clicked, this, &DemOptionsWidget::LayerRulesChanged);
    }
    connect(version_, &QComboBox::currentIndexChanged, this, &DemOptionsWidget::FillFormats);
    SetOptions({});
}

QGroupBox* DemOptionsWidget::MakeOpenGroup() {
    return MakeGroup(kOpenGroup, text::kOpenSetting, QBoxLayout::TopToBottom,
                     {MakeRadio(openMode_, 0, kReadOnly, text::kOpenReadOnly, text::kDemReadOnlyTooltip),
                      MakeRadio(openMode_, 1, kReadWrite, text::kOpenReadWrite, text::kDemReadWriteTooltip)});
}

QGroupBox* DemOptionsWidget::MakeOptionsGroup() {
    append_ = MakeControl<QCheckBox>(kAppend, text::kDemAppendToLayers, text::kDemAppendTooltip);
    ignoreCrs_ = MakeControl<QCheckBox>(kIgnoreCrs, text::kDemIgnoreCrs, text::kDemIgnoreCrsTooltip);
    pyramid_ = MakeControl<QCheckBox>(kPyramid, text::kDemBuildPyramids, text::kDemBuildPyramidsTooltip);
    return MakeGroup(kOptionsGroup, text::kOptions, QBoxLayout::TopToBottom, {append_, ignoreCrs_, pyramid_});
}

QGroupBox* DemOptionsWidget::MakeConversionGroup() {
    folder_ = MakeControl<QLineEdit>(kFolder, {}, text::kDemOutputFolderTooltip);
    folder_->setMinimumWidth(folder_->fontMetrics().averageCharWidth() * 24);
    version_ = MakeControl<QComboBox>(kVersion, {}, text::kDemLasVersionTooltip);
    auto* group = MakeControl<QGroupBox>(kConversionGroup, text::kDemConversionGroup);
    auto* layout = new QGridLayout(group);
    layout->setContentsMargins(kGroupMargins);
    layout->setHorizontalSpacing(kControlSpacing);
    layout->setVerticalSpacing(kGroupRowSpacing);
    layout->addWidget(
        MakeCaption(kFolderCaption, text::kDemOutputFolder, text::kDemOutputFolderTooltip, folder_), 0, 0);
    layout->addWidget(folder_, 0, 1);
    layout->addLayout(MakeFolderButtons(), 1, 1);
    layout->addWidget(
        MakeCaption(kVersionCaption, text::kDemLasVersion, text::kDemLasVersionTooltip, version_), 2, 0);
    layout->addLayout(MakeFormatRow(), 2, 1);
    layout->setRowStretch(3, 1);
    return group;
}

QLayout* DemOptionsWidget::MakeFolderButtons() {
    auto* browse = MakeTextButton(kBrowse, text::kDemBrowse, text::kDemBrowseTooltip);
    auto* insert = MakeTextButton(kInsertToken, text::kInsertProjectPath, text::kInsertProjectPathTooltip);
    connect(browse, &QPushButton::clicked, this, &DemOptionsWidget::BrowseRequested);
    connect(insert, &QPushButton::clicked, this, &DemOptionsWidget::InsertProjectPathRequested);
    return MakeRow({browse, insert});
}

QLayout* DemOptionsWidget::MakeFormatRow() {
    for (const las::VersionFacts& version : las::kVersions) {
        version_->addItem(QString::fromWCharArray(version.name), static_cast<int>(version.code));
    }
    format_ = MakeControl<QComboBox>(kFormat, {}, text::kDemPointFormatTooltip);
    MakeThinning();
    auto* formatCaption = MakeCaption(kFormatCaption, {}, text::kDemPointFormatTooltip, format_);
    formatCaption->setText(QStringLiteral("PDRF:"));
    auto* thinningCaption =
        MakeCaption(kThinningCaption, text::kThinning, text::kDemThinningTooltip, thinning_);
    for (QLabel* caption : {formatCaption, thinningCaption}) {
        caption->setIndent(2 * kControlSpacing);
    }
    return MakeRow({version_, formatCaption, format_, thinningCaption, thinning_});
}

void DemOptionsWidget::MakeThinning() {
    thinning_ = MakeControl<QLineEdit>(kThinning, {}, text::kDemThinningTooltip);
    const QString mask = ToQString(Text(text::kDemThinningMask));
    thinning_->setInputMask(mask);
    thinning_->setFixedWidth(thinning_->fontMetrics().horizontalAdvance(mask) + 16);
}

void DemOptionsWidget::FillFormats() {
    format_->clear();
    const las::VersionFacts* const version = las::FindVersion(version_->currentData().toInt());
    for (int format = 0; version != nullptr && format <= version->lastDemFormat; ++format) {
        format_->addItem(QString::number(format), format);
    }
    format_->setCurrentIndex(0);
}

void DemOptionsWidget::SetOptions(const DemPageOptions& options) {
    openMode_->button(options.readWrite ? 1 : 0)->setChecked(true);
    append_->setChecked(options.append);
    ignoreCrs_->setChecked(options.ignoreCrs);
    pyramid_->setChecked(options.pyramid);
    SetFolder(options.lasFolder);
    version_->setCurrentIndex(version_->findData(options.lasVersion));
    FillFormats();
    format_->setCurrentIndex(format_->findData(options.pointFormat));
    thinning_->setText(QString::number(options.thinning));
}

DemPageOptions DemOptionsWidget::Options() const {
    DemPageOptions options;
    options.readWrite = openMode_->checkedId() == 1;
    options.append = append_->isChecked();
    options.ignoreCrs = ignoreCrs_->isChecked();
    options.pyramid = pyramid_->isChecked();
    options.lasFolder = ToWide(folder_->text());
    options.lasVersion = version_->currentData().toInt();
    options.pointFormat = format_->currentData().toInt();
    return options;
}

std::wstring DemOptionsWidget::ThinningText() const {
    return ToWide(thinning_->text());
}

void DemOptionsWidget::EditThinning() {
    thinning_->setFocus();
    thinning_->selectAll();
}

void DemOptionsWidget::SetFolder(const std::wstring& folder) {
    folder_->setText(ToQString(folder));
    folder_->setCursorPosition(0);
}

}  // namespace orvex
