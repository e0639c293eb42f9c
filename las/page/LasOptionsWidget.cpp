#include "las/page/LasOptionsWidget.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QRegularExpressionValidator>

#include "dialog/page/ControlWidget.h"
#include "las/page/LasPageControls.h"

namespace orvex {

using namespace las_control;

namespace {

constexpr int kThinningDigits = 10;

template <typename Enum>
int ValueOf(Enum value) {
    return static_cast<int>(value);
}

}  // namespace

LasOptionsWidget::LasOptionsWidget(QWidget* parent)
    : QWidget(parent),
      openMode_(new QButtonGroup(this)),
      loadMode_(new QButtonGroup(this)),
      pyramidType_(new QButtonGroup(this)),
      backup_(new QButtonGroup(this)) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* modes = new QVBoxLayout;
    modes->addWidget(MakeOpenGroup());
    modes->addWidget(MakeLoadGroup());
    layout->addLayout(modes);
    layout->addWidget(MakeOptionsGroup());
    layout->addWidget(MakePyramidGroup(), 1);
    for (QButtonGroup* group : {openMode_, loadMode_}) {
        connect(group, &QButtonGroup::idClicked, this, &LasOptionsWidget::OpenModeChanged);
    }
    for (QButtonGroup* group : {pyramidType_, backup_}) {
        connect(group, &QButtonGroup::idClicked, this, &LasOptionsWidget::PyramidSettingsChanged);
    }
    for (QCheckBox* box : {convertQvr_, reCreate_}) {
        connect(box, &QCheckBox::clicked, this, &LasOptionsWidget::PyramidSettingsChanged);
    }
    for (QCheckBox* box : {append_, ignoreCrs_}) {
        connect(box, &QCheckBox::clicked, this, &LasOptionsWidget::LayerRulesChanged);
    }
    SetOptions({});
}

QGroupBox* LasOptionsWidget::MakeOpenGroup() {
    return MakeGroup(kOpenGroup, text::kOpenSetting, QBoxLayout::TopToBottom,
                     {MakeRadio(openMode_, 0, kReadOnly, text::kOpenReadOnly, text::kLasReadOnlyTooltip),
                      MakeRadio(openMode_, 1, kReadWrite, text::kOpenReadWrite, text::kLasReadWriteTooltip)});
}

QGroupBox* LasOptionsWidget::MakeLoadGroup() {
    return MakeGroup(
        kLoadGroup, text::kLoadSetting, QBoxLayout::TopToBottom,
        {MakeRadio(loadMode_, 0, kLoadFiles, text::kLoadFiles, text::kLoadFilesTooltip),
         MakeRadio(loadMode_, 1, kFootprints, text::kLoadFootprintsOnly, text::kLoadFootprintsTooltip)});
}

QGroupBox* LasOptionsWidget::MakeOptionsGroup() {
    append_ = MakeControl<QCheckBox>(kAppend, text::kAppendToCompatibleLayers, text::kLasAppendTooltip);
    ignoreCrs_ =
        MakeControl<QCheckBox>(kIgnoreCrs, text::kIgnoreIncompatibleCrs, text::kIgnoreIncompatibleCrsTooltip);
    loadCorrupt_ =
        MakeControl<QCheckBox>(kLoadCorrupt, text::kLoadCorruptFiles, text::kLoadCorruptFilesTooltip);
    return MakeGroup(kOptionsGroup, text::kOptions, QBoxLayout::TopToBottom,
                     {append_, ignoreCrs_, loadCorrupt_, MakeThinning()});
}

QGroupBox* LasOptionsWidget::MakePyramidGroup() {
    convertQvr_ = MakeControl<QCheckBox>(kConvertQvr, text::kConvertQvr, text::kConvertQvrTooltip);
    reCreate_ = MakeControl<QCheckBox>(kReCreate, text::kRecreateOrvexLas, text::kRecreateOrvexLasTooltip);
    auto* group = MakeControl<QGroupBox>(kPyramidGroup, text::kPyramidSettings);
    auto* layout = new QVBoxLayout(group);
    layout->setContentsMargins(kGroupMargins);
    layout->setSpacing(kGroupRowSpacing);
    layout->addLayout(MakePyramidRow());
    layout->addWidget(convertQvr_);
    layout->addWidget(reCreate_);
    layout->addWidget(MakeOriginalsGroup());
    return group;
}

QHBoxLayout* LasOptionsWidget::MakePyramidRow() {
    auto* row = new QHBoxLayout;
    row->setSpacing(12);
    const auto add = [&](LasPyramidType type, int id, StringId caption, StringId tooltip) {
        row->addWidget(MakeRadio(pyramidType_, ValueOf(type), id, caption, tooltip));
    };
    add(LasPyramidType::OrvexLas, kPyramidOrvexLas, text::kPyramidOrvexLas, text::kPyramidOrvexLasTooltip);
    add(LasPyramidType::Qvr, kPyramidQvr, text::kPyramidQvr, text::kPyramidQvrTooltip);
    add(LasPyramidType::None, kPyramidNone, text::kPyramidNone, text::kPyramidNoneTooltip);
    row->addStretch();
    return row;
}

QWidget* LasOptionsWidget::MakeThinning() {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, kGroupRowSpacing, 0, 0);
    auto* caption = MakeControl<QLabel>(kThinningCaption, text::kThinning, text::kLasThinningTooltip);
    thinning_ = MakeControl<QLineEdit>(kThinning, {}, text::kLasThinningTooltip);
    thinning_->setMaxLength(kThinningDigits);
    thinning_->setAlignment(Qt::AlignRight);
    thinning_->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]*")), thinning_));
    thinning_->setFixedWidth(thinning_->fontMetrics().horizontalAdvance(QStringLiteral("000000")) + 16);
    caption->setBuddy(thinning_);
    layout->addWidget(caption);
    layout->addWidget(thinning_);
    layout->addStretch();
    return row;
}

QGroupBox* LasOptionsWidget::MakeOriginalsGroup() {
    return MakeGroup(kOriginalsGroup, text::kOriginalLasFiles, QBoxLayout::LeftToRight,
                     {MakeRadio(backup_, ValueOf(LasBackupOption::Overwrite), kOverwrite,
                                text::kOriginalsOverwrite, text::kOriginalsOverwriteTooltip),
                      MakeRadio(backup_, ValueOf(LasBackupOption::Backup), kBackup, text::kOriginalsBackup,
                                text::kOriginalsBackupTooltip),
                      MakeRadio(backup_, ValueOf(LasBackupOption::BackupAndCompress), kBackupCompress,
                                text::kOriginalsBackupCompress, text::kOriginalsBackupCompressTooltip)});
}

void LasOptionsWidget::SetOptions(const LasPageOptions& options) {
    openMode_->button(options.readWrite ? 1 : 0)->setChecked(true);
    loadMode_->button(options.footprintsOnly ? 1 : 0)->setChecked(true);
    append_->setChecked(options.append);
    ignoreCrs_->setChecked(options.ignoreIncompatibleCrs);
    loadCorrupt_->setChecked(options.loadCorruptFiles);
    thinning_->setText(QString::number(options.thinning));
    pyramidType_->button(ValueOf(options.pyramidType))->setChecked(true);
    backup_->button(ValueOf(options.backup))->setChecked(true);
    convertQvr_->setChecked(options.convertExistingQvr);
    reCreate_->setChecked(options.reCreateOrvexLas);
}

LasPageOptions LasOptionsWidget::Options(const LasPageOptions& base) const {
    LasPageOptions options = base;
    options.readWrite = openMode_->checkedId() == 1;
    options.footprintsOnly = loadMode_->checkedId() == 1;
    options.append = append_->isChecked();
    options.ignoreIncompatibleCrs = ignoreCrs_->isChecked();
    options.loadCorruptFiles = loadCorrupt_->isChecked();
    options.pyramidType = static_cast<LasPyramidType>(pyramidType_->checkedId());
    options.backup = static_cast<LasBackupOption>(backup_->checkedId());
    options.convertExistingQvr = convertQvr_->isChecked();
    options.reCreateOrvexLas = reCreate_->isChecked();
    return options;
}

std::wstring LasOptionsWidget::ThinningText() const {
    return ToWide(thinning_->text());
}

void LasOptionsWidget::EditThinning() {
    thinning_->setFocus();
    thinning_->selectAll();
}

}  // namespace orvex
