#pragma once
#include <QIcon>
#include <QWidget>
#include <span>
#include <string>
#include <vector>

#include "las/LasDetails.h"

class QLabel;
class QPlainTextEdit;
class QTabWidget;
class QTextEdit;
class QToolButton;

namespace orvex {

/// The pane below the grid: everything about the selected file, or totals of several. It folds to its title.
class LasDetailsPanel final : public QWidget {
    Q_OBJECT

  public:
    /// `images`: the dialog's image list.
    explicit LasDetailsPanel(std::vector<QIcon> images, QWidget* parent = nullptr);

    /// `records`: what is selected, as indices into `rows`; nothing is kept of them.
    void ShowRows(std::span<const LasRow> rows, std::span<const std::size_t> records);

    /// What the user chose; a crowded pane shows only its title all the same.
    bool IsFolded() const { return folded_; }
    void SetFolded(bool folded);
    /// The window has no room for the pane.
    void SetCrowded(bool crowded);
    bool IsBodyShown() const { return !folded_ && !crowded_; }
    /// Height of what remains of a folded pane.
    int TitleHeight() const;

  signals:
    void BodyShownChanged(bool shown);
    void PaletteChanged();  ///< the colours of what is shown are out of date

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void MakeTitle();
    void ShowNothing();
    void ShowOne(const LasRow& row);
    void ShowTotals(const LasTotals& totals);
    void SetTitle(const std::wstring& title);
    void SetOverview(const QString& html);

    void ShowBody();

    std::vector<QIcon> images_;
    bool folded_ = false;
    bool crowded_ = false;
    QWidget* titleRow_ = nullptr;
    QToolButton* fold_ = nullptr;
    QLabel* title_ = nullptr;
    QTabWidget* tabs_ = nullptr;
    QTextEdit* overview_ = nullptr;
    QTextEdit* crs_ = nullptr;
    QPlainTextEdit* records_ = nullptr;
};

}  // namespace orvex
