#include "support/ActiveWindowQt.h"

#include <QApplication>

namespace orvex {

QWidget* ActiveQtWindow() {
    QWidget* modal = QApplication::activeModalWidget();
    return modal != nullptr ? modal : QApplication::activeWindow();
}

}  // namespace orvex
