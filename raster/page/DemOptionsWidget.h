#pragma once
#include <QWidget>
#include <string>

#include "raster/page/DemPageOptions.h"

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLayout;
class QLineEdit;

namespace orvex {

/// The groups of options below the grid of the DEM page. Every control is named "c" and its id.
class DemOptionsWidget final : public QWidget {
    Q_OBJECT

  public:
    explicit DemOptionsWidget(QWidget* parent = nullptr);

    void SetOptions(const DemPageOptions& options);
    /// The controls' values; the thinning factor is what was set.
    DemPageOptions Options() const;
    std::wstring ThinningText() const;
    /// Puts the cursor where the thinning factor is to be corrected.
    void EditThinning();
    void SetFolder(const std::wstring& folder);

  signals:
    void LayerRulesChanged();  ///< append, ignore CRS
    void BrowseRequested();
    void InsertProjectPathRequested();

  private:
    QGroupBox* MakeOpenGroup();
    QGroupBox* MakeOptionsGroup();
    QGroupBox* MakeConversionGroup();
    QLayout* MakeFolderButtons();
    QLayout* MakeFormatRow();
    void MakeThinning();
    /// The formats that the chosen version has; the first is chosen.
    void FillFormats();

    QButtonGroup* openMode_;
    QCheckBox* append_ = nullptr;
    QCheckBox* ignoreCrs_ = nullptr;
    QCheckBox* pyramid_ = nullptr;
    QLineEdit* folder_ = nullptr;
    QComboBox* version_ = nullptr;
    QComboBox* format_ = nullptr;
    QLineEdit* thinning_ = nullptr;
};

}  // namespace orvex
