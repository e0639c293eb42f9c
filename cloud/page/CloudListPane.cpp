#include "cloud/page/CloudListPane.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>

#include "dialog/Images.h"
#include "dialog/grid/GridView.h"
#include "dialog/page/FilterLine.h"
#include "dialog/page/ListModel.h"
#include "dialog/page/ListStatus.h"
#include "dialog/page/RowFinder.h"
#include "support/Format.h"
#include "support/HandlerGuard.h"
#include "support/ImageIndex.h"
#include "support/QtText.h"

namespace orvex {
namespace {

constexpr int kIconSize = 16;
constexpr int kBusyWidth = 60;

void SetName(QWidget& widget, const CloudListTexts& texts, const char* part) {
    widget.setObjectName(QLatin1String(texts.name) + QLatin1String(part));
}

}  // namespace

/// One line of text, shortened to the room there is; the tooltip has all of it.
class CloudListPane::Line final : public QLabel {
  public:
    Line() {
        setTextFormat(Qt::PlainText);
        setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    }
    void Show(const std::wstring& text) {
        setText(ToQString(text));
        setToolTip(TooltipText(this->text()));
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, width());
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(rect(), Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, shown);
    }
};

CloudListPane::CloudListPane(const CloudListTexts& texts, ListRows& rows, UserPrompts& prompts,
                             const std::vector<QIcon>& images)
    : texts_(texts),
      rows_(rows),
      grid_(new GridView(prompts)),
      finder_(new RowFinder(*grid_, prompts, images)) {
    SetName(*this, texts, "");
    SetName(*grid_, texts, "Grid");
    grid_->findChild<QAction*>(QStringLiteral("remove"))->setVisible(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(MakeHead(texts));
    layout->addWidget(finder_->Line());
    layout->addWidget(grid_, 1);
    layout->addWidget(MakeFoot(images));
    // Layers have no properties to count yet.
    finder_->Status()->setParent(this);
    finder_->Status()->hide();
    finder_->Line()->ShowWordsOnly(texts.filter, text::kCloudFilterTooltip);
    grid_->SetIcons(images);
    grid_->SetModel(&rows);
    finder_->Start(rows, {});
    const auto arrange = Guarded(prompts, L"EnableItems", [this] { Arrange(); });
    connect(&rows, &GridModel::RecordsChanged, this, arrange);
    connect(&rows, &GridModel::FilterChanged, this, arrange);
    Arrange();
}

CloudListPane::~CloudListPane() {
    rows_.disconnect(this);
    grid_->disconnect(this);
    finder_->Detach();
    grid_->SetModel(nullptr);
}

FilterLine& CloudListPane::Filter() const {
    return *finder_->Line();
}

QWidget* CloudListPane::MakeHead(const CloudListTexts& texts) {
    auto* head = new QWidget;
    auto* row = new QHBoxLayout(head);
    row->setContentsMargins(0, 0, 0, 0);
    auto* label = new QLabel(ToQString(Text(texts.label)));
    SetName(*label, texts, "Label");
    label->setBuddy(grid_->Table());
    grid_->Table()->setAccessibleName(label->text());
    owner_ = new Line;
    SetName(*owner_, texts, "Owner");
    row->addWidget(label);
    row->addWidget(owner_, 1);
    return head;
}

QWidget* CloudListPane::MakeFoot(const std::vector<QIcon>& images) {
    auto* foot = new QWidget;
    auto* row = new QHBoxLayout(foot);
    row->setContentsMargins(0, 0, 0, 0);
    busy_ = new QProgressBar;
    busy_->setRange(0, 0);
    busy_->setTextVisible(false);
    busy_->setFixedWidth(kBusyWidth);
    busy_->setAccessibleName(ToQString(Text(text::kProgressAccessibleName)));
    auto* warning = new QLabel;
    warning->setPixmap(images[kImageWarning].pixmap(kIconSize));
    warning_ = warning;
    line_ = new Line;
    stop_ = new QToolButton;
    stop_->setIcon(ButtonIcon(ButtonImage::Stop));
    stop_->setAutoRaise(true);
    stop_->setFocusPolicy(Qt::StrongFocus);
    stop_->setToolTip(ToQString(Text(text::kCloudStop)));
    stop_->setAccessibleName(stop_->toolTip());
    continue_ = new QPushButton(ToQString(Text(text::kCloudTryAgain)));
    continue_->setAutoDefault(false);
    continue_->setToolTip(ToQString(Text(text::kCloudReadOnTooltip)));
    deselect_ = new QPushButton(ToQString(Text(text::kCloudDeselectThose)));
    deselect_->setAutoDefault(false);
    deselect_->setToolTip(ToQString(Text(text::kCloudDeselectThoseTooltip)));
    SetName(*deselect_, texts_, "Deselect");
    SetName(*busy_, texts_, "Busy");
    SetName(*line_, texts_, "Status");
    SetName(*stop_, texts_, "Stop");
    SetName(*continue_, texts_, "Continue");
    row->addWidget(busy_);
    row->addWidget(warning_);
    row->addWidget(line_, 1);
    row->addWidget(deselect_);
    row->addWidget(stop_);
    row->addWidget(continue_);
    foot->setFixedHeight(continue_->sizeHint().height());  // the grid does not jump when they come and go
    connect(stop_, &QToolButton::clicked, this, &CloudListPane::StopRequested);
    connect(continue_, &QPushButton::clicked, this, &CloudListPane::ContinueRequested);
    connect(deselect_, &QPushButton::clicked, this, &CloudListPane::DeselectRequested);
    return foot;
}

void CloudListPane::SetOwner(const std::wstring& owner) {
    owner_->Show(owner);
}

void CloudListPane::SetSelected(std::size_t selected, std::size_t elsewhere) {
    selected_ = selected;
    elsewhere_ = elsewhere;
    Arrange();
}

void CloudListPane::ShowState(CloudListState state, const std::wstring& message, bool canGoOn) {
    state_ = state;
    message_ = message;
    canGoOn_ = canGoOn;
    Arrange();
}

std::wstring CloudListPane::CountText() const {
    const std::size_t all = rows_.Count();
    if (rows_.IsFiltered()) {
        return FormatText(Text(texts_.shownOf), {rows_.rowCount(), all});
    }
    return FormatText(Text(all == 1 ? texts_.one : texts_.several), {all});
}

std::wstring CloudListPane::SelectedText() const {
    if (selected_ == 0) {
        return {};
    }
    return L"   " + (elsewhere_ == 0
                         ? FormatText(Text(text::kCloudSelected), {selected_})
                         : FormatText(Text(text::kCloudSelectedElsewhere), {selected_, elsewhere_}));
}

std::wstring CloudListPane::FootText() const {
    switch (state_) {
        case CloudListState::Reading:
            return (message_.empty() ? FormatText(Text(text::kCloudSoFar), {CountText()}) : message_) +
                   SelectedText();
        case CloudListState::Stopped:
            return FormatText(Text(text::kCloudStoppedAt), {CountText()}) + SelectedText();
        case CloudListState::Failed:
            return message_;
        case CloudListState::Idle:
            break;
    }
    return (rows_.Count() == 0 ? std::wstring() : CountText()) + SelectedText();
}

void CloudListPane::Arrange() {
    const bool isReading = state_ == CloudListState::Reading;
    const bool isFailed = state_ == CloudListState::Failed;
    const bool isStopped = state_ == CloudListState::Stopped;
    line_->Show(FootText());
    busy_->setVisible(isReading);
    stop_->setVisible(isReading);
    warning_->setVisible(isFailed);
    deselect_->setVisible(elsewhere_ > 0 && !isFailed);
    continue_->setVisible((isFailed || isStopped) && canGoOn_);
    continue_->setText(ToQString(Text(isStopped ? text::kListContinue : text::kCloudTryAgain)));
    if (rows_.Count() == 0) {
        grid_->SetEmptyText(ToQString(isReading && message_.empty() ? Text(texts_.reading)
                                      : isStopped                   ? FootText()
                                                                    : message_));
    }
}

}  // namespace orvex
