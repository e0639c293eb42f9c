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
    return MakeGroup(kOpenGroup, 13467_lsid, QBoxLayout::TopToBottom,
                     {MakeRadio(openMode_, 0, kReadOnly, 13469_lsid, 40679_lsid),
                      MakeRadio(openMode_, 1, kReadWrite, 13470_lsid, 40680_lsid)});
}

QGroupBox* LasOptionsWidget::MakeLoadGroup() {
    return MakeGroup(kLoadGroup, 41000_lsid, QBoxLayout::TopToBottom,
                     {MakeRadio(loadMode_, 0, kLoadFiles, 41001_lsid, 40681_lsid),
                      MakeRadio(loadMode_, 1, kFootprints, 41002_lsid, 40682_lsid)});
}

QGroupBox* LasOptionsWidget::MakeOptionsGroup() {
    append_ = MakeControl<QCheckBox>(kAppend, 13658_lsid, 13487_lsid);
    ignoreCrs_ = MakeControl<QCheckBox>(kIgnoreCrs, 3256_lsid, 13659_lsid);
    loadCorrupt_ = MakeControl<QCheckBox>(kLoadCorrupt, 41004_lsid, 41016_lsid);
    return MakeGroup(kOptionsGroup, 41003_lsid, QBoxLayout::TopToBottom,
                     {append_, ignoreCrs_, loadCorrupt_, MakeThinning()});
}

QGroupBox* LasOptionsWidget::MakePyramidGroup() {
    convertQvr_ = MakeControl<QCheckBox>(kConvertQvr, 41008_lsid, 40683_lsid);
    reCreate_ = MakeControl<QCheckBox>(kReCreate, 41013_lsid, 41014_lsid);
    auto* group = MakeControl<QGroupBox>(kPyramidGroup, 13475_lsid);
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
    add(LasPyramidType::OrvexLas, kPyramidOrvexLas, 41005_lsid, 3379_lsid);
    add(LasPyramidType::Qvr, kPyramidQvr, 41006_lsid, 3380_lsid);
    add(LasPyramidType::None, kPyramidNone, 41007_lsid, 3381_lsid);
    row->addStretch();
    return row;
}

QWidget* LasOptionsWidget::MakeThinning() {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, kGroupRowSpacing, 0, 0);
    auto* caption = MakeControl<QLabel>(kThinningCaption, 13472_lsid, 41017_lsid);
    thinning_ = MakeControl<QLineEdit>(kThinning, {}, 41017_lsid);
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
    return MakeGroup(
        kOriginalsGroup, 41009_lsid, QBoxLayout::LeftToRight,
        {MakeRadio(backup_, ValueOf(LasBackupOption::Overwrite), kOverwrite, 41010_lsid, 40684_lsid),
         MakeRadio(backup_, ValueOf(LasBackupOption::Backup), kBackup, 41011_lsid, 40685_lsid),
         MakeRadio(backup_, ValueOf(LasBackupOption::BackupAndCompress), kBackupCompress, 41012_lsid,
                   40686_lsid)});
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
