#pragma once
#include <QString>

class QWidget;

namespace orvex {

/// Modal message about files: one line, and below it a text of any length that scrolls and can be copied.
void ShowFileReport(QWidget* parent, const QString& title, const QString& summary, const QString& files);

}  // namespace orvex
