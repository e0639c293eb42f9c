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
    return MakeGroup(kOpenGroup, 13467_lsid, QBoxLayout::TopToBottom,
                     {MakeRadio(openMode_, 0, kReadOnly, 13469_lsid, 41337_lsid),
                      MakeRadio(openMode_, 1, kReadWrite, 13470_lsid, 41338_lsid)});
}

QGroupBox* DemOptionsWidget::MakeOptionsGroup() {
    append_ = MakeControl<QCheckBox>(kAppend, 41331_lsid, 41332_lsid);
    ignoreCrs_ = MakeControl<QCheckBox>(kIgnoreCrs, 41333_lsid, 41334_lsid);
    pyramid_ = MakeControl<QCheckBox>(kPyramid, 41335_lsid, 41336_lsid);
    return MakeGroup(kOptionsGroup, 41003_lsid, QBoxLayout::TopToBottom, {append_, ignoreCrs_, pyramid_});
}

QGroupBox* DemOptionsWidget::MakeConversionGroup() {
    folder_ = MakeControl<QLineEdit>(kFolder, {}, 41341_lsid);
    folder_->setMinimumWidth(folder_->fontMetrics().averageCharWidth() * 24);
    version_ = MakeControl<QComboBox>(kVersion, {}, 41345_lsid);
    auto* group = MakeControl<QGroupBox>(kConversionGroup, 41339_lsid);
    auto* layout = new QGridLayout(group);
    layout->setContentsMargins(kGroupMargins);
    layout->setHorizontalSpacing(kControlSpacing);
    layout->setVerticalSpacing(kGroupRowSpacing);
    layout->addWidget(MakeCaption(kFolderCaption, 41340_lsid, 41341_lsid, folder_), 0, 0);
    layout->addWidget(folder_, 0, 1);
    layout->addLayout(MakeFolderButtons(), 1, 1);
    layout->addWidget(MakeCaption(kVersionCaption, 41344_lsid, 41345_lsid, version_), 2, 0);
    layout->addLayout(MakeFormatRow(), 2, 1);
    layout->setRowStretch(3, 1);
    return group;
}

QLayout* DemOptionsWidget::MakeFolderButtons() {
    auto* browse = MakeTextButton(kBrowse, 41342_lsid, 41343_lsid);
    auto* insert = MakeTextButton(kInsertToken, 3259_lsid, 3210_lsid);
    connect(browse, &QPushButton::clicked, this, &DemOptionsWidget::BrowseRequested);
    connect(insert, &QPushButton::clicked, this, &DemOptionsWidget::InsertProjectPathRequested);
    return MakeRow({browse, insert});
}

QLayout* DemOptionsWidget::MakeFormatRow() {
    for (const las::VersionFacts& version : las::kVersions) {
        version_->addItem(QString::fromWCharArray(version.name), static_cast<int>(version.code));
    }
    format_ = MakeControl<QComboBox>(kFormat, {}, 41346_lsid);
    MakeThinning();
    auto* formatCaption = MakeCaption(kFormatCaption, {}, 41346_lsid, format_);
    formatCaption->setText(QStringLiteral("PDRF:"));
    auto* thinningCaption = MakeCaption(kThinningCaption, 13472_lsid, 41347_lsid, thinning_);
    for (QLabel* caption : {formatCaption, thinningCaption}) {
        caption->setIndent(2 * kControlSpacing);
    }
    return MakeRow({version_, formatCaption, format_, thinningCaption, thinning_});
}

void DemOptionsWidget::MakeThinning() {
    thinning_ = MakeControl<QLineEdit>(kThinning, {}, 41347_lsid);
    const QString mask = ToQString(Text(3228_lsid));
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
