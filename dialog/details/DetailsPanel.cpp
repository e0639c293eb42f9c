#include "dialog/details/DetailsPanel.h"

#include <QEvent>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QMimeData>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTabWidget>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextDocumentFragment>
#include <QTextEdit>
#include <QTextTable>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>
#include <memory>
#include <utility>

#include "support/QtText.h"

namespace orvex {

namespace {

constexpr int kImageSize = 16;

/// A view with a frame that is seen while it has the focus, as a field's is.
template <typename Edit>
class FocusedView : public Edit {
  public:
    FocusedView() {
        this->setFrameStyle(static_cast<int>(QFrame::Box) | static_cast<int>(QFrame::Plain));
        this->setLineWidth(1);
    }

  protected:
    bool event(QEvent* event) override {
        if (event->type() != QEvent::Paint) {
            return Edit::event(event);
        }
        if (this->hasFocus()) {
            QPainter painter(this);
            painter.setPen(this->palette().color(QPalette::Highlight));
            painter.drawRect(this->rect().adjusted(0, 0, -1, -1));
        }
        return true;
    }
    void focusInEvent(QFocusEvent* event) override {
        Edit::focusInEvent(event);
        this->update();
    }
    void focusOutEvent(QFocusEvent* event) override {
        Edit::focusOutEvent(event);
        this->update();
    }
};

/// True for the start of a cell that stands beside another.
bool IsBeside(const QTextBlock& block) {
    const QTextCursor cursor(block);
    const QTextTable* table = cursor.currentTable();
    return table != nullptr && table->cellAt(cursor).column() > 0 &&
           table->cellAt(cursor).firstCursorPosition().block() == block;
}

/// A fragment with each row of its tables on one line, tabs between the cells. Pictures and empty lines are
/// left out.
QString LinesOf(const QTextDocumentFragment& fragment) {
    QTextDocument document;
    QTextCursor(&document).insertFragment(fragment);
    QString text;
    bool isLineEnded = true;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (IsBeside(block) && !isLineEnded) {
            text += QLatin1Char('\t');
        } else {
            isLineEnded = true;
        }
        QString line = block.text();
        line.remove(QChar::ObjectReplacementCharacter).replace(QChar::LineSeparator, QLatin1Char('\n'));
        if (!line.isEmpty() && std::exchange(isLineEnded, false) && !text.isEmpty()) {
            text += QLatin1Char('\n');
        }
        text += line;
    }
    return text;
}

/// Rich text whose tables are copied with a label and its value on one line.
class HtmlView final : public FocusedView<QTextEdit> {
  protected:
    QMimeData* createMimeDataFromSelection() const override {
        const QTextDocumentFragment fragment = textCursor().selection();
        auto data = std::make_unique<QMimeData>();
        data->setText(LinesOf(fragment));
        data->setHtml(fragment.toHtml());
        return data.release();
    }
};

QTextEdit* MakeHtmlView() {
    auto* view = new HtmlView;
    view->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    return view;
}

QPlainTextEdit* MakePlainView() {
    auto* view = new FocusedView<QPlainTextEdit>;
    view->setLineWrapMode(QPlainTextEdit::NoWrap);
    view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    return view;
}

/// What the views of both kinds have in common.
template <typename Edit>
void SetUp(Edit& view, const char* name) {
    view.setObjectName(QString::fromLatin1(name));
    view.setReadOnly(true);
    view.setTabChangesFocus(true);
    view.setMinimumHeight(0);
}

}  // namespace

DetailsPanel::DetailsPanel(std::vector<QIcon> images, std::span<const DetailsTab> tabs, QWidget* parent)
    : QWidget(parent), images_(std::move(images)), tabs_(new QTabWidget) {
    setObjectName(QStringLiteral("detailsPane"));
    tabs_->setObjectName(QStringLiteral("detailsTabs"));
    tabs_->setDocumentMode(true);
    for (const DetailsTab& tab : tabs) {
        views_.push_back(AddTab(tab));
    }
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    MakeTitle();
    layout->addWidget(titleRow_);
    layout->addWidget(tabs_, 1);
    Show({});
}

DetailsPanel::View DetailsPanel::AddTab(const DetailsTab& tab) {
    View view;
    if (tab.kind == DetailsTab::Kind::Html) {
        view.html = MakeHtmlView();
        SetUp(*view.html, tab.name);
        tabs_->addTab(view.html, ToQString(Text(tab.caption)));
    } else {
        view.plain = MakePlainView();
        SetUp(*view.plain, tab.name);
        tabs_->addTab(view.plain, ToQString(Text(tab.caption)));
    }
    return view;
}

void DetailsPanel::MakeTitle() {
    titleRow_ = new QWidget;
    fold_ = new QToolButton;
    fold_->setObjectName(QStringLiteral("detailsFold"));
    fold_->setAutoRaise(true);
    fold_->setArrowType(Qt::DownArrow);
    fold_->setWhatsThis(ToQString(Text(text::kDetailsFoldTooltip)));
    fold_->setAccessibleName(ToQString(Text(text::kDetailsTitle)));
    title_ = new QLabel;
    title_->setObjectName(QStringLiteral("detailsTitle"));
    title_->setTextFormat(Qt::PlainText);
    title_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* layout = new QHBoxLayout(titleRow_);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(fold_);
    layout->addWidget(title_, 1);
    connect(fold_, &QToolButton::clicked, this, [this] { SetFolded(!IsFolded()); });
}

int DetailsPanel::TitleHeight() const {
    return titleRow_->sizeHint().height();
}

int DetailsPanel::LeastHeight() const {
    return TitleHeight() + layout()->spacing() + tabs_->minimumSizeHint().height();
}

void DetailsPanel::SetFolded(bool folded) {
    folded_ = folded;
    ShowBody();
}

void DetailsPanel::Open() {
    SetFolded(false);
    if (QWidget* view = IsBodyShown() ? tabs_->currentWidget() : nullptr) {
        view->setFocus();
    }
}

void DetailsPanel::SetCrowded(bool crowded) {
    crowded_ = crowded;
    ShowBody();
}

void DetailsPanel::ShowBody() {
    fold_->setEnabled(!crowded_);
    fold_->setToolTip(ToQString(Text(crowded_ ? text::kDetailsNoRoomTooltip : text::kDetailsFoldTooltip)));
    fold_->setArrowType(IsBodyShown() ? Qt::DownArrow : Qt::RightArrow);
    if (tabs_->isHidden() == IsBodyShown()) {
        tabs_->setVisible(IsBodyShown());
        emit BodyShownChanged(IsBodyShown());
    }
}

void DetailsPanel::Show(const DetailsContent& content) {
    SetTitle(content.title);
    for (std::size_t i = 0; i < views_.size(); ++i) {
        const QString text = i < content.tabs.size() ? content.tabs[i] : QString();
        if (views_[i].html != nullptr) {
            SetHtml(*views_[i].html, text);
        } else {
            views_[i].plain->setPlainText(text);
        }
    }
}

// Two thirds of the way from the background to the text, so that it can be read in light and dark themes.
QString DetailsPanel::CaptionColour() const {
    const QColor text = palette().color(QPalette::Text);
    const QColor base = palette().color(QPalette::Base);
    const auto mix = [](int a, int b) { return (2 * a + b) / 3; };
    return QColor(mix(text.red(), base.red()), mix(text.green(), base.green()), mix(text.blue(), base.blue()))
        .name();
}

void DetailsPanel::SetTitle(const std::wstring& title) {
    const std::wstring text = Text(text::kDetailsTitle) + (title.empty() ? L"" : L": " + title);
    title_->setText(ToQString(text));
    title_->setToolTip(TooltipText(ToQString(title)));
}

void DetailsPanel::SetHtml(QTextEdit& view, const QString& html) const {
    view.clear();
    for (std::size_t i = 0; i < images_.size(); ++i) {
        view.document()->addResource(QTextDocument::ImageResource, QUrl(QStringLiteral("image:%1").arg(i)),
                                     images_[i].pixmap(kImageSize));
    }
    view.setHtml(html);
}

void DetailsPanel::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        emit PaletteChanged();
    }
}

}  // namespace orvex
