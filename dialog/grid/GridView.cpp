#include <QApplication>
#include <QGridLayout>
#include <QLabel>
#include <QMenu>
#include <QScrollBar>
#include <algorithm>

#include "dialog/grid/GridColours.h"
#include "dialog/grid/GridCommands.h"
#include "dialog/grid/GridFooter.h"
#include "dialog/grid/GridHeaderMenu.h"
#include "dialog/grid/GridHeaderView.h"
#include "dialog/grid/GridViewParts.h"
#include "support/HandlerGuard.h"
#include "support/QtText.h"

namespace orvex {
namespace {

constexpr double kFrozenShare = 0.6;

QFrame* MakeSeam(QWidget* parent) {
    auto* seam = new QFrame(parent);
    seam->setFixedWidth(1);
    seam->setAutoFillBackground(true);
    return seam;
}

}  // namespace

GridView::GridView(UserPrompts& prompts, QWidget* parent)
    : QFrame(parent), parts_(std::make_unique<Parts>(this, prompts)) {
    Parts& p = *parts_;
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    p.seam = MakeSeam(this);
    p.footer = new GridFooter(p.frozen, p.table, this);
    p.bar = new QScrollBar(Qt::Horizontal, this);
    p.message = new QLabel(this);
    p.footer->setObjectName("footer");
    p.footer->setAccessibleName(ToQString(Text(text::kGridTotalsAccessibleName)));
    p.message->setAlignment(Qt::AlignCenter);
    p.message->setWordWrap(true);
    p.message->setMargin(16);
    p.message->setAutoFillBackground(true);
    p.message->setBackgroundRole(QPalette::Base);
    p.message->setForegroundRole(QPalette::PlaceholderText);
    p.message->setAttribute(Qt::WA_TransparentForMouseEvents);
    p.table->SetSearchColumn([this] { return SearchColumn(); });
    setFocusProxy(p.table);
    BuildLayout();
    BuildCommands();
    JoinScrolling();
    ArrangeRows();
    ArrangePanes();
}

GridView::~GridView() {
    // Children go after this object has become a plain frame, and the table with the focus still tells that
    // it loses it.
    for (QObject* child : findChildren<QObject*>()) {
        child->disconnect(this);
    }
}

void GridView::BuildLayout() {
    Parts& p = *parts_;
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(p.frozen, 0, 0);
    layout->addWidget(p.seam, 0, 1);
    layout->addWidget(p.table, 0, 2);
    layout->addWidget(p.footer, 1, 0, 1, 3);
    layout->addWidget(p.bar, 2, 0, 1, 3);
    layout->setColumnStretch(2, 1);
    layout->setRowStretch(0, 1);
}

void GridView::BuildCommands() {
    Parts& p = *parts_;
    p.commands = new GridCommands(this);
    connect(p.commands, &GridCommands::CopyRequested, this,
            Guarded(p.prompts, L"OnCopy", [this](bool withHeaders) { CopySelection(withHeaders); }));
    connect(p.commands, &GridCommands::SelectAllRequested, this,
            Guarded(p.prompts, L"OnSelectAll", [this] { SelectAll(); }));
    connect(p.commands, &GridCommands::FitRequested, this,
            Guarded(p.prompts, L"OnFitColumns", [this] { RefitColumns(); }));
    connect(p.commands, &GridCommands::RemoveRequested, this, &GridView::RemoveRequested);
    for (GridTable* table : p.panes.Both()) {
        connect(table, &QWidget::customContextMenuRequested, this,
                Guarded(p.prompts, L"OnContextMenu", [this, table](const QPoint& at) {
                    ContextMenu()->popup(table->viewport()->mapToGlobal(at));
                }));
    }
}

void GridView::JoinScrolling() {
    Parts& p = *parts_;
    QScrollBar* inner = p.table->horizontalScrollBar();
    connect(inner, &QScrollBar::rangeChanged, this,
            Guarded(p.prompts, L"OnScrollRange", [this, inner](int least, int most) {
                parts_->bar->setPageStep(inner->pageStep());
                parts_->bar->setSingleStep(inner->singleStep());
                parts_->bar->setRange(least, most);
                parts_->bar->setVisible(most > least);
            }));
    connect(inner, &QScrollBar::valueChanged, p.bar, &QScrollBar::setValue);
    connect(p.bar, &QScrollBar::valueChanged, inner, &QScrollBar::setValue);
    connect(inner, &QScrollBar::valueChanged, p.footer, qOverload<>(&QWidget::update));
    p.bar->hide();

    ConnectColumns();
    connect(p.table, &GridTable::FocusChanged, this,
            Guarded(p.prompts, L"OnFocus", [this] { parts_->panes.UpdateRow(CurrentRow()); }));
    connect(p.table, &GridTable::Activated, this, &GridView::ActivateRequested);
    connect(p.table, &GridTable::doubleClicked, this, &GridView::ActivateRequested);
}

void GridView::ConnectColumns() {
    Parts& p = *parts_;
    p.headerMenu = new GridHeaderMenu(p.columns, p.prompts, this);
    for (GridTable* table : p.panes.Both()) {
        GridHeaderView* header = table->Header();
        header->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(header, &QWidget::customContextMenuRequested, this,
                Guarded(p.prompts, L"OnHeaderMenu", [this, header](const QPoint& at) {
                    HeaderMenu()->popup(header->viewport()->mapToGlobal(at));
                }));
        connect(header, &QHeaderView::sectionResized, this,
                Guarded(p.prompts, L"OnColumnWidth",
                        [this](int column, int, int width) { parts_->columns.WidthChanged(column, width); }));
        connect(table->Header(), &QHeaderView::sectionClicked, this,
                Guarded(p.prompts, L"OnSort", [this](int column) { CycleSort(column); }));
        connect(table->Header(), &QHeaderView::sectionHandleDoubleClicked, this,
                Guarded(p.prompts, L"OnFitColumn", [this](int column) { FitColumn(column); }));
    }
    connect(p.frozen->Header(), &QHeaderView::sectionResized, this,
            Guarded(p.prompts, L"ArrangePanes", [this] { ArrangePanes(); }));
    connect(p.table, &GridTable::Resized, this, Guarded(p.prompts, L"OnResized", [this] {
                parts_->columns.ShareSpare();
                ArrangeMessage();
            }));
}

void GridView::SetModel(GridModel* model) {
    Parts& p = *parts_;
    if (p.model) {
        disconnect(p.model, nullptr, this, nullptr);
    }
    p.model = model;
    p.columns.SetModel(model);
    p.footer->SetModel(model);
    if (model) {
        ConnectSelection();
        connect(model, &GridModel::RecordsChanged, this, Guarded(p.prompts, L"OnRecords", [this] {
                    parts_->columns.MeasureMessages();
                    ArrangeMessage();
                    EnableCommands();
                }));
        connect(model, &GridModel::dataChanged, this,
                Guarded(p.prompts, L"OnDataChanged", [this] { parts_->columns.ForgetMessages(); }));
        connect(model, &GridModel::SortChanged, this,
                Guarded(p.prompts, L"OnSortChanged",
                        [this](int column, Qt::SortOrder order) { parts_->panes.ShowSort(column, order); }));
        ConnectFilter();
    }
    ArrangePanes();
    ArrangeMessage();
    EnableCommands();
}

void GridView::ConnectSelection() {
    const QItemSelectionModel* selection = parts_->table->selectionModel();
    connect(selection, &QItemSelectionModel::selectionChanged, this, &GridView::SelectionChanged);
    UserPrompts& prompts = parts_->prompts;
    connect(selection, &QItemSelectionModel::selectionChanged, this,
            Guarded(prompts, L"EnableCommands", [this] { EnableCommands(); }));
    connect(
        selection, &QItemSelectionModel::currentChanged, this,
        Guarded(prompts, L"OnCurrentRow", [this](const QModelIndex& current, const QModelIndex& previous) {
            parts_->panes.UpdateRow(previous.row());
            parts_->panes.UpdateRow(current.row());
            if (current.row() != previous.row()) {
                emit CurrentRowChanged(current.row());
            }
        }));
}

void GridView::SetIcons(std::vector<QIcon> icons) {
    parts_->delegate->SetIcons(std::move(icons));
    update();
}

void GridView::SetEmptyText(const QString& text) {
    parts_->message->setText(text);
    ArrangeMessage();
}

void GridView::CycleSort(int column) {
    GridModel* model = parts_->model;
    if (model->SortColumn() != column) {
        model->sort(column, Qt::AscendingOrder);
    } else if (model->SortOrder() == Qt::AscendingOrder) {
        model->sort(column, Qt::DescendingOrder);
    } else {
        model->sort(-1);
    }
}

void GridView::ShowDetailColumns(bool show) {
    parts_->columns.ShowDetails(show);
    ArrangePanes();
}

bool GridView::DetailColumnsShown() const {
    return parts_->columns.DetailsShown();
}

bool GridView::IsColumnShown(int column) const {
    return parts_->panes.IsShown(column);
}

std::vector<int> GridView::ShownColumns() const {
    return parts_->model ? parts_->panes.ShownColumns() : std::vector<int>();
}

int GridView::ColumnWidth(int column) const {
    return IsColumnShown(column) ? parts_->panes.PaneOf(column).columnWidth(column) : 0;
}

void GridView::FitColumns() {
    parts_->columns.Fit();
}

void GridView::FitColumn(int column) {
    parts_->columns.Fit(column);
    parts_->columns.ShareSpare();
}

void GridView::RefitColumns() {
    parts_->columns.Refit();
}

std::string GridView::SaveState() const {
    return parts_->columns.State();
}

void GridView::RestoreState(const std::string& state) {
    if (parts_->model) {
        parts_->columns.Restore(state);
        ArrangePanes();
    }
}

QMenu* GridView::HeaderMenu() const {
    parts_->headerMenu->Fill(parts_->model);
    return parts_->headerMenu;
}

QMenu* GridView::ContextMenu() const {
    return parts_->commands->Menu();
}

void GridView::EnableCommands() {
    const bool hasRows = parts_->model && parts_->model->rowCount() > 0;
    parts_->commands->Enable(hasRows, hasRows && parts_->table->selectionModel()->hasSelection());
}

QTableView* GridView::Table() const {
    return parts_->table;
}

QTableView* GridView::FrozenTable() const {
    return parts_->frozen;
}

int GridView::HeightOfRows(int rows) const {
    const Parts& p = *parts_;
    const int header = p.table->horizontalHeader()->sizeHint().height();
    const int row = p.table->verticalHeader()->defaultSectionSize();
    return header + rows * row + p.footer->height() + p.bar->sizeHint().height() + 2 * frameWidth();
}

GridFooter* GridView::Footer() const {
    return parts_->footer;
}

QString GridView::ShownMessage() const {
    return parts_->message->isHidden() ? QString() : parts_->message->text();
}

std::size_t GridView::CellsPainted() const {
    return parts_->delegate->CellsPainted();
}

void GridView::ArrangePanes() {
    Parts& p = *parts_;
    const int length = p.model ? p.frozen->Header()->length() : 0;
    const int most = std::max(static_cast<int>(contentsRect().width() * kFrozenShare), 1);
    p.frozen->setFixedWidth(std::min(length, most));
    p.frozen->setVisible(length > 0);
    p.seam->setVisible(length > 0);
    p.table->SetJoinsLeft(length > 0);
    bool footer = false;
    for (std::size_t i = 0; p.model && i < p.model->Columns().size(); ++i) {
        footer = footer || p.model->Columns()[i].footer != FooterKind::None;
    }
    p.footer->setVisible(footer);
    p.footer->update();
}

void GridView::ArrangeRows() {
    Parts& p = *parts_;
    const int height = std::max(fontMetrics().height() + 6, p.table->iconSize().height() + 4);
    for (GridTable* table : p.panes.Both()) {
        table->setPalette(TablePalette(palette()));
        table->SetRowHeight(height);
    }
    p.footer->setFixedHeight(height);
    QPalette seam = palette();
    seam.setColor(QPalette::Window,
                  Mixed(palette().color(QPalette::Base), palette().color(QPalette::Text), 0.3));
    p.seam->setPalette(seam);
}

void GridView::ArrangeMessage() {
    Parts& p = *parts_;
    const bool empty = !p.model || p.model->rowCount() == 0;
    p.message->setVisible(empty && !p.message->text().isEmpty());
    const int top = contentsRect().top() + p.table->Header()->sizeHint().height();
    const int bottom = p.table->geometry().bottom() + 1;
    const QRect room(contentsRect().left(), top, contentsRect().width(), std::max(bottom - top, 0));
    p.message->setGeometry(room);
    p.message->raise();
}

void GridView::changeEvent(QEvent* event) {
    QFrame::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange ||
        event->type() == QEvent::StyleChange) {
        RunGuarded(parts_->prompts, L"ArrangeRows", [this] {
            ArrangeRows();
            ArrangeMessage();
        });
    }
}

void GridView::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    RunGuarded(parts_->prompts, L"ArrangePanes", [this] {
        ArrangePanes();
        ArrangeMessage();
    });
}

}  // namespace orvex
