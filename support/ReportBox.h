#pragma once
#include <QDialog>

#include "support/DesktopQt.h"
#include "support/UserPrompts.h"

class QPlainTextEdit;

namespace orvex {

/// A question over lists of what it is about, which can be read, selected and copied. Accepted for Yes. Child
/// objects carry the names "reportText", "copy", "yes" and "no".
class ReportBox final : public QDialog {
    Q_OBJECT

  public:
    explicit ReportBox(const ReportPrompt& prompt, QWidget* parent = nullptr);

  private:
    QWidget* MakeSummary(const ReportPrompt& prompt);
    void ShowSections(const std::vector<ReportPrompt::Section>& sections);
    QWidget* MakeButtons(const ReportPrompt& prompt);

    const ParentGuard guard_{*this};
    QPlainTextEdit* text_;
};

}  // namespace orvex
