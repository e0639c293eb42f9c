#include "raster/DemOptionsWidget.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "dialog/ControlWidget.h"
#include "raster/DemPointFormats.h"
#include "raster/RasterPageControls.h"

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
    return button;
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
    auto* group = MakeControl<QGroupBox>(kConversionGroup, 41339_lsid);
    auto* layout = new QVBoxLayout(group);
    layout->setContentsMargins(kGroupMargins);
    layout->setSpacing(kGroupRowSpacing);
    layout->addLayout(MakeFolderRow());
    layout->addLayout(MakeFormatRow());
    layout->addStretch();
    return group;
}

QLayout* DemOptionsWidget::MakeFolderRow() {
    folder_ = MakeControl<QLineEdit>(kFolder, {}, 41341_lsid);
    folder_->setMinimumWidth(folder_->fontMetrics().averageCharWidth() * 24);
    auto* browse = MakeTextButton(kBrowse, 41342_lsid, 41343_lsid);
    auto* insert = MakeTextButton(kInsertToken, 3259_lsid, 3210_lsid);
    connect(browse, &QPushButton::clicked, this, &DemOptionsWidget::BrowseRequested);
    connect(insert, &QPushButton::clicked, this, &DemOptionsWidget::InsertProjectPathRequested);
    auto* row = new QHBoxLayout;
    row->setSpacing(kControlSpacing);
    row->addWidget(MakeCaption(kFolderCaption, 41340_lsid, 41341_lsid, folder_));
    row->addWidget(folder_, 1);
    row->addWidget(browse);
    row->addWidget(insert);
    return row;
}

QLayout* DemOptionsWidget::MakeFormatRow() {
    version_ = MakeControl<QComboBox>(kVersion, {}, 41345_lsid);
    for (const DemLasVersion& version : DemLasVersions()) {
        version_->addItem(QString::fromWCharArray(version.name), version.value);
    }
    format_ = MakeControl<QComboBox>(kFormat, {}, 41346_lsid);
    MakeThinning();
    auto* formatCaption = MakeCaption(kFormatCaption, {}, 41346_lsid, format_);
    formatCaption->setText(QStringLiteral("PDRF:"));
    auto* row = new QHBoxLayout;
    row->setSpacing(kControlSpacing);
    row->addWidget(MakeCaption(kVersionCaption, 41344_lsid, 41345_lsid, version_));
    row->addWidget(version_);
    row->addSpacing(2 * kControlSpacing);
    row->addWidget(formatCaption);
    row->addWidget(format_);
    row->addSpacing(2 * kControlSpacing);
    row->addWidget(MakeCaption(kThinningCaption, 13472_lsid, 41347_lsid, thinning_));
    row->addWidget(thinning_);
    row->addStretch();
    return row;
}

void DemOptionsWidget::MakeThinning() {
    thinning_ = MakeControl<QLineEdit>(kThinning, {}, 41347_lsid);
    const QString mask = ToQString(Text(3228_lsid));
    thinning_->setInputMask(mask);
    thinning_->setFixedWidth(thinning_->fontMetrics().horizontalAdvance(mask) + 16);
}

void DemOptionsWidget::FillFormats() {
    format_->clear();
    for (const std::int32_t format : DemPointFormats(version_->currentData().toInt())) {
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
