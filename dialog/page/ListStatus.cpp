#include "dialog/page/ListStatus.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QToolButton>

#include "dialog/RunInputFilter.h"
#include "support/Format.h"
#include "support/ImageIndex.h"
#include "support/QtText.h"

namespace orvex {
namespace {

/// Pressed with Return too, as what looks like a link is.
class StatusButton final : public QToolButton {
  public:
    using QToolButton::QToolButton;

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
            click();
        } else {
            QToolButton::keyPressEvent(event);
        }
    }
};

}  // namespace

ListStatus::ListStatus(const std::vector<QIcon>& images, QWidget* parent) : QWidget(parent) {
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(6);
    awaited_ = AddLabel("statusAwaited");
    skip_ = AddButton("statusSkip", text::kListSkip, text::kListSkipTooltip);
    RunInputFilter::AllowDuringRun(*skip_);
    stopped_ = AddLabel("statusStopped");
    continue_ = AddButton("statusContinue", text::kListContinue, text::kListContinueTooltip);
    AddCount(RowProperty::Errors, "statusErrors", text::kListErrors, images[kImageNotLoadable]);
    AddCount(RowProperty::Warnings, "statusWarnings", text::kListWarnings, images[kImageWarning]);
    AddCount(RowProperty::WithoutCrs, "statusWithoutCrs", text::kListWithoutCrs);
    AddCount(RowProperty::InProject, "statusInProject", text::kListInProject);
    removeThose_ = AddButton("statusRemoveThose", text::kListRemoveThose, text::kListRemoveThoseTooltip);
    line->addStretch();
    // What does not fit is cut off at the right; the dialog can be as narrow as before.
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    setFixedHeight(removeThose_->sizeHint().height());
    connect(skip_, &QToolButton::clicked, this, &ListStatus::SkipRequested);
    connect(continue_, &QToolButton::clicked, this, &ListStatus::ContinueRequested);
    connect(removeThose_, &QToolButton::clicked, this,
            [this] { emit RemoveRequested(RowProperty::InProject); });
}

QLabel* ListStatus::AddLabel(const char* name) {
    auto* label = new QLabel;
    label->setObjectName(QLatin1String(name));
    label->hide();
    layout()->addWidget(label);
    return label;
}

QToolButton* ListStatus::AddButton(const char* name, StringId text, StringId tooltip, const QIcon& icon) {
    auto* button = new StatusButton;
    button->setObjectName(QLatin1String(name));
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::StrongFocus);
    button->setIcon(icon);
    button->setToolButtonStyle(icon.isNull() ? Qt::ToolButtonTextOnly : Qt::ToolButtonTextBesideIcon);
    button->setText(ToQString(Text(text)));
    button->setToolTip(ToQString(Text(tooltip)));
    button->hide();
    layout()->addWidget(button);
    return button;
}

void ListStatus::AddCount(RowProperty property, const char* name, StringId text, const QIcon& icon) {
    QToolButton* button = AddButton(name, text, text::kListCountTooltip, icon);
    counts_.push_back({property, text, button});
    connect(button, &QToolButton::clicked, this, [this, property] { emit SelectRequested(property); });
}

void ListStatus::ShowCounts(const PropertyCounts& rows) {
    for (const Count& one : counts_) {
        const std::size_t number = rows.Of(one.property);
        one.button->setText(ToQString(FormatText(Text(one.text), {number})));
        one.button->setVisible(number > 0);
    }
    removeThose_->setVisible(rows.Of(RowProperty::InProject) > 0);
}

void ListStatus::SetStopped(std::size_t read, std::size_t of) {
    stopped_->setText(ToQString(FormatText(Text(text::kListStopped), {read, of})));
    isStopped_ = true;
    Arrange();
}

void ListStatus::ClearStopped() {
    isStopped_ = false;
    Arrange();
}

void ListStatus::SetAwaited(std::size_t files) {
    awaited_->setText(ToQString(FormatText(Text(text::kListWaiting), {files})));
    isWaiting_ = files > 0;
    Arrange();
}

void ListStatus::SetCrowded(bool crowded) {
    crowded_ = crowded;
    Arrange();
}

void ListStatus::Arrange() {
    awaited_->setVisible(isWaiting_);
    skip_->setVisible(isWaiting_);
    stopped_->setVisible(isStopped_);
    continue_->setVisible(isStopped_);
    setVisible(!crowded_ || isStopped_ || isWaiting_);
}

}  // namespace orvex
