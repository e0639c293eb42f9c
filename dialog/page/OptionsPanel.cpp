#include "dialog/page/OptionsPanel.h"

#include <QEvent>
#include <QScrollBar>
#include <algorithm>

namespace orvex {

OptionsPanel::OptionsPanel(QWidget* content, QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setFocusPolicy(Qt::NoFocus);
    setWidget(content);
    // The page's own background, not that of a list.
    viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
    content->installEventFilter(this);
    FitHeight();
}

void OptionsPanel::SetMostHeight(int pixels) {
    mostHeight_ = pixels;
    FitHeight();
}

QSize OptionsPanel::sizeHint() const {
    return {widget()->sizeHint().width(), WantedHeight()};
}

QSize OptionsPanel::minimumSizeHint() const {
    return {0, WantedHeight()};
}

void OptionsPanel::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    FitHeight();
}

bool OptionsPanel::eventFilter(QObject* watched, QEvent* event) {
    if (watched == widget() && event->type() == QEvent::LayoutRequest) {
        FitHeight();
    }
    return QScrollArea::eventFilter(watched, event);
}

int OptionsPanel::WantedHeight() const {
    const bool scrolls = widget()->minimumSizeHint().width() > width();
    const int all =
        widget()->sizeHint().height() + (scrolls ? horizontalScrollBar()->sizeHint().height() : 0);
    return std::clamp(all, 0, mostHeight_);
}

void OptionsPanel::FitHeight() {
    if (height() != WantedHeight()) {
        setFixedHeight(WantedHeight());
    }
}

}  // namespace orvex
