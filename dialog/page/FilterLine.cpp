#include "dialog/page/FilterLine.h"

#include <QAction>
#include <QActionGroup>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>

#include "support/Format.h"
#include "support/ImageIndex.h"
#include "support/QtText.h"

namespace orvex {
namespace {

constexpr int kIconSize = 16;

struct PropertyText {
    const char* name;
    std::optional<RowProperty> property;
    StringId text;
};

constexpr PropertyText kProperties[] = {
    {"all", std::nullopt, text::kFilterAll},
    {"findings", RowProperty::Findings, text::kFilterFindings},
    {"errors", RowProperty::Errors, text::kFilterErrors},
    {"withoutCrs", RowProperty::WithoutCrs, text::kFilterWithoutCrs},
    {"otherCrs", RowProperty::OtherCrs, text::kFilterOtherCrs},
    {"inProject", RowProperty::InProject, text::kFilterInProject},
};

}  // namespace

FilterLine::FilterLine(const std::vector<QIcon>& images, QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("filterLine"));
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(6);
    MakeWords();
    MakeMenu(images);
    problemIcon_ = new QLabel;
    problemIcon_->setPixmap(images[kImageWarning].pixmap(kIconSize));
    problemIcon_->hide();
    problem_ = new QLabel;
    problem_->setObjectName(QStringLiteral("filterProblem"));
    problem_->setTextFormat(Qt::PlainText);
    problem_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    line->addWidget(words_, 3);
    line->addWidget(show_);
    line->addWidget(problemIcon_);
    line->addWidget(problem_, 4);
}

void FilterLine::MakeWords() {
    words_ = new QLineEdit;
    words_->setObjectName(QStringLiteral("filterWords"));
    words_->setPlaceholderText(ToQString(Text(text::kFilterPlaceholder)));
    words_->setAccessibleName(ToQString(Text(text::kFilterAccessibleName)));
    words_->setToolTip(ToQString(Text(text::kFilterTooltip)));
    words_->setWhatsThis(words_->toolTip());
    words_->setClearButtonEnabled(true);
    words_->installEventFilter(this);
    connect(words_, &QLineEdit::textChanged, this, &FilterLine::Changed);
}

void FilterLine::MakeMenu(const std::vector<QIcon>& images) {
    show_ = new QToolButton;
    show_->setObjectName(QStringLiteral("filterShow"));
    show_->setPopupMode(QToolButton::InstantPopup);
    show_->setFocusPolicy(Qt::StrongFocus);
    show_->setToolTip(ToQString(Text(text::kFilterShowTooltip)));
    show_->setWhatsThis(show_->toolTip());
    auto* menu = new QMenu(show_);
    auto* group = new QActionGroup(menu);
    for (const PropertyText& property : kProperties) {
        QAction* action = menu->addAction(QString());
        action->setObjectName(QLatin1String(property.name));
        action->setCheckable(true);
        group->addAction(action);
        choices_.push_back({property.property, property.text, action});
        connect(action, &QAction::triggered, this, [this, property] { Choose(property.property); });
    }
    choices_[1].action->setIcon(images[kImageWarning]);
    choices_[2].action->setIcon(images[kImageNotLoadable]);
    connect(menu, &QMenu::aboutToShow, this, &FilterLine::MenuAboutToShow);
    show_->setMenu(menu);
    Choose(std::nullopt);
}

std::wstring FilterLine::Words() const {
    return ToWide(words_->text());
}

bool FilterLine::IsInUse() const {
    return !words_->text().isEmpty() || property_.has_value();
}

void FilterLine::Choose(std::optional<RowProperty> property) {
    const bool changes = property != property_;
    property_ = property;
    for (const Choice& choice : choices_) {
        if (choice.property == property) {
            choice.action->setChecked(true);
            show_->setText(ToQString(FormatText(Text(text::kFilterShow), {Text(choice.text)})));
        }
    }
    QFont font = words_->font();
    font.setBold(property.has_value());  // that rows are hidden is seen at once
    show_->setFont(font);
    if (changes) {
        emit Changed();
    }
}

void FilterLine::Clear() {
    words_->clear();
    Choose(std::nullopt);
}

void FilterLine::Edit() {
    show();
    words_->setFocus(Qt::ShortcutFocusReason);
    words_->selectAll();
}

void FilterLine::ShowProblem(const std::wstring& problem) {
    problemText_ = ToQString(problem);
    problemIcon_->setVisible(!problem.empty());
    problem_->setVisible(!isNarrow_ || !problem.empty());
    problem_->setToolTip(TooltipText(problemText_));
    problem_->setAccessibleName(problemText_);
    words_->setAccessibleDescription(problemText_);
    ArrangeProblem();
}

void FilterLine::ShowCounts(const PropertyCounts& rows, std::size_t all) {
    for (const Choice& choice : choices_) {
        const std::size_t count = choice.property ? rows.Of(*choice.property) : all;
        choice.action->setText(ToQString(Text(choice.text) + L"\t" + FormatText(L"%'d", {count})));
        choice.action->setEnabled(count > 0 || choice.action->isChecked());
    }
}

void FilterLine::ShowWordsOnly(StringId placeholder, StringId tooltip) {
    show_->hide();
    problem_->hide();
    isNarrow_ = true;
    words_->setPlaceholderText(ToQString(Text(placeholder)));
    words_->setToolTip(ToQString(Text(tooltip)));
    words_->setWhatsThis(words_->toolTip());
}

void FilterLine::SetCrowded(bool crowded) {
    crowded_ = crowded;
    Arrange();
}

void FilterLine::Arrange() {
    setVisible(!crowded_ || IsInUse() || words_->hasFocus());
}

// A problem may list many columns: the tooltip has all of it.
void FilterLine::ArrangeProblem() {
    problem_->setText(problem_->fontMetrics().elidedText(problemText_, Qt::ElideRight, problem_->width()));
}

void FilterLine::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    ArrangeProblem();
}

/// True if the key means something here.
bool FilterLine::PressKey(int key) {
    switch (key) {
        case Qt::Key_Escape:
            Clear();
            break;
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Down:
            break;
        default:
            return false;
    }
    emit LeaveRequested();
    return true;
}

bool FilterLine::eventFilter(QObject* watched, QEvent* event) {
    if (watched == words_ && event->type() == QEvent::KeyPress &&
        PressKey(static_cast<QKeyEvent*>(event)->key())) {
        return true;
    }
    if (watched == words_ && event->type() == QEvent::FocusIn) {
        emit EditingStarted();
    }
    if (watched == words_ && event->type() == QEvent::FocusOut) {
        QMetaObject::invokeMethod(this, &FilterLine::Arrange, Qt::QueuedConnection);
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace orvex
