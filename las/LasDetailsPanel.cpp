#include "las/LasDetailsPanel.h"

#include <QEvent>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTabWidget>
#include <QTextDocument>
#include <QTextEdit>
#include <QToolButton>
#include <QUrl>
#include <algorithm>

#include "las/LasDetailsHtmlView.h"
#include "support/Format.h"
#include "support/QtText.h"

namespace orvex {

namespace {

constexpr int kImageSize = 16;

QTextEdit* MakeTextView(const char* name) {
    auto* view = new QTextEdit;
    view->setObjectName(QString::fromLatin1(name));
    view->setReadOnly(true);
    view->setFrameShape(QFrame::NoFrame);
    view->setTabChangesFocus(true);
    view->setMinimumHeight(0);
    return view;
}

/// The colour of what explains a value: two thirds of the way from the background to the text, so that it
/// can be read in light and dark themes.
QString CaptionColour(const QWidget& widget) {
    const QColor text = widget.palette().color(QPalette::Text);
    const QColor base = widget.palette().color(QPalette::Base);
    const auto mix = [](int a, int b) { return (2 * a + b) / 3; };
    return QColor(mix(text.red(), base.red()), mix(text.green(), base.green()), mix(text.blue(), base.blue()))
        .name();
}

}  // namespace

LasDetailsPanel::LasDetailsPanel(std::vector<QIcon> images, QWidget* parent)
    : QWidget(parent), images_(std::move(images)) {
    setObjectName(QStringLiteral("detailsPane"));
    overview_ = MakeTextView("detailsOverview");
    overview_->setLineWrapMode(QTextEdit::NoWrap);
    crs_ = MakeTextView("detailsCrs");
    crs_->setLineWrapMode(QTextEdit::NoWrap);
    records_ = new QPlainTextEdit;
    records_->setObjectName(QStringLiteral("detailsRecords"));
    records_->setReadOnly(true);
    records_->setFrameShape(QFrame::NoFrame);
    records_->setTabChangesFocus(true);
    records_->setLineWrapMode(QPlainTextEdit::NoWrap);
    records_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    tabs_ = new QTabWidget;
    tabs_->setObjectName(QStringLiteral("detailsTabs"));
    tabs_->setDocumentMode(true);
    tabs_->addTab(overview_, ToQString(Text(40631_lsid)));
    tabs_->addTab(crs_, ToQString(Text(40632_lsid)));
    tabs_->addTab(records_, ToQString(Text(40633_lsid)));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    MakeTitle();
    layout->addWidget(titleRow_);
    layout->addWidget(tabs_, 1);
    ShowNothing();
}

void LasDetailsPanel::MakeTitle() {
    titleRow_ = new QWidget;
    fold_ = new QToolButton;
    fold_->setObjectName(QStringLiteral("detailsFold"));
    fold_->setAutoRaise(true);
    fold_->setArrowType(Qt::DownArrow);
    fold_->setToolTip(ToQString(Text(40657_lsid)));
    fold_->setWhatsThis(fold_->toolTip());
    fold_->setAccessibleName(ToQString(Text(40630_lsid)));
    title_ = new QLabel;
    title_->setObjectName(QStringLiteral("detailsTitle"));
    title_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* layout = new QHBoxLayout(titleRow_);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(fold_);
    layout->addWidget(title_, 1);
    connect(fold_, &QToolButton::clicked, this, [this] { SetFolded(!IsFolded()); });
}

int LasDetailsPanel::TitleHeight() const {
    return titleRow_->sizeHint().height();
}

void LasDetailsPanel::SetFolded(bool folded) {
    folded_ = folded;
    ShowBody();
}

void LasDetailsPanel::SetCrowded(bool crowded) {
    crowded_ = crowded;
    ShowBody();
}

void LasDetailsPanel::ShowBody() {
    fold_->setEnabled(!crowded_);
    fold_->setArrowType(IsBodyShown() ? Qt::DownArrow : Qt::RightArrow);
    if (tabs_->isHidden() == IsBodyShown()) {
        tabs_->setVisible(IsBodyShown());
        emit BodyShownChanged(IsBodyShown());
    }
}

void LasDetailsPanel::ShowRows(std::span<const LasRow> rows, std::span<const std::size_t> records) {
    if (records.empty()) {
        ShowNothing();
    } else if (records.size() == 1) {
        ShowOne(rows[records.front()]);
    } else {
        ShowTotals(TotalsOf(rows, records));
    }
}

void LasDetailsPanel::ShowNothing() {
    SetTitle({});
    SetOverview(ToQString(Text(40634_lsid)).toHtmlEscaped());
    crs_->clear();
    records_->clear();
}

void LasDetailsPanel::ShowOne(const LasRow& row) {
    const QString colour = CaptionColour(*overview_);
    SetTitle(row.inspection.path);
    SetOverview(FindingsHtml(row) + SectionsHtml(LasOverview(row), colour));
    const std::vector<LasDetailField> fields = LasCrsFields(row);
    crs_->setHtml(fields.empty()
                      ? ToQString(Text(40648_lsid)).toHtmlEscaped()
                      : FieldsHtml(fields, colour) + PreformattedHtml(row.inspection.crs->prettyWkt));
    records_->setPlainText(ToQString(LasRecordsText(row)));
}

void LasDetailsPanel::ShowTotals(const LasTotals& totals) {
    SetTitle(FormatText(Text(40635_lsid), {totals.files}));
    const LasDetailSection section = TotalsSection(totals);
    SetOverview(SectionsHtml({&section, 1}, CaptionColour(*overview_)));
    crs_->clear();
    records_->clear();
}

void LasDetailsPanel::SetTitle(const std::wstring& title) {
    const std::wstring text = Text(40630_lsid) + (title.empty() ? L"" : L": " + title);
    title_->setText(ToQString(text));
    title_->setToolTip(ToQString(title));
}

void LasDetailsPanel::SetOverview(const QString& html) {
    overview_->clear();
    for (std::size_t i = 0; i < images_.size(); ++i) {
        overview_->document()->addResource(QTextDocument::ImageResource,
                                           QUrl(QStringLiteral("image:%1").arg(i)),
                                           images_[i].pixmap(kImageSize));
    }
    overview_->setHtml(html);
}

void LasDetailsPanel::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        emit PaletteChanged();
    }
}

}  // namespace orvex
