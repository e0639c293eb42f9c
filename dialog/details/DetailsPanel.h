#pragma once
#include <QIcon>
#include <QString>
#include <QWidget>
#include <span>
#include <string>
#include <vector>

#include "support/Text.h"

class QLabel;
class QPlainTextEdit;
class QTabWidget;
class QTextEdit;
class QToolButton;

namespace orvex {

/// One tab of a details pane.
struct DetailsTab {
    enum class Kind { Html, PlainText };

    const char* name;  ///< of its view
    StringId caption;
    Kind kind = Kind::Html;
};

/// What a pane shows.
struct DetailsContent {
    std::wstring title;         ///< behind "Details: "; empty: that word alone
    std::vector<QString> tabs;  ///< a text per tab, HTML or plain as its tab says; missing ones are empty
};

/// The pane below the grid: everything about the selected file, or totals of several. It folds to its title.
class DetailsPanel final : public QWidget {
    Q_OBJECT

  public:
    /// `images`: the dialog's image list, which HTML shows as "image:" and the index.
    DetailsPanel(std::vector<QIcon> images, std::span<const DetailsTab> tabs, QWidget* parent = nullptr);

    void Show(const DetailsContent& content);

    /// The colour of what explains a value, as "#rrggbb"; differs between light and dark themes.
    QString CaptionColour() const;

    /// What the user chose; a crowded pane shows only its title all the same.
    bool IsFolded() const { return folded_; }
    void SetFolded(bool folded);
    /// Unfolds the pane and gives its text the focus.
    void Open();
    /// The window has no room for the pane.
    void SetCrowded(bool crowded);
    bool IsBodyShown() const { return !folded_ && !crowded_; }
    /// Height of what remains of a folded pane.
    int TitleHeight() const;
    /// Height below which an unfolded pane shows too little to be of use.
    int LeastHeight() const;

  signals:
    void BodyShownChanged(bool shown);
    void PaletteChanged();  ///< the colours of what is shown are out of date

  protected:
    void changeEvent(QEvent* event) override;

  private:
    /// The view of one tab; one of the two is null.
    struct View {
        QTextEdit* html = nullptr;
        QPlainTextEdit* plain = nullptr;
    };

    void MakeTitle();
    View AddTab(const DetailsTab& tab);
    void SetTitle(const std::wstring& title);
    void SetHtml(QTextEdit& view, const QString& html) const;
    void ShowBody();

    std::vector<QIcon> images_;
    bool folded_ = false;
    bool crowded_ = false;
    QWidget* titleRow_ = nullptr;
    QToolButton* fold_ = nullptr;
    QLabel* title_ = nullptr;
    QTabWidget* tabs_;
    std::vector<View> views_;
};

}  // namespace orvex
