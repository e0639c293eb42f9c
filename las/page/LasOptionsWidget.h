#pragma once
#include <QWidget>
#include <string>

#include "las/page/LasPageOptions.h"

class QButtonGroup;
class QCheckBox;
class QGroupBox;
class QHBoxLayout;
class QLineEdit;

namespace orvex {

/// The groups of options below the grid of the LAS page. Every control is named "c" and its id.
class LasOptionsWidget final : public QWidget {
    Q_OBJECT

  public:
    explicit LasOptionsWidget(QWidget* parent = nullptr);

    void SetOptions(const LasPageOptions& options);
    /// The controls' values; what they do not show is taken from `base`.
    LasPageOptions Options(const LasPageOptions& base) const;
    std::wstring ThinningText() const;
    /// Puts the cursor where the thinning factor is to be corrected.
    void EditThinning();

  signals:
    void LayerRulesChanged();       ///< append, ignore CRS
    void OpenModeChanged();         ///< open and load mode
    void PyramidSettingsChanged();  ///< pyramid type, conversion, re-creation, backup

  private:
    QGroupBox* MakeOpenGroup();
    QGroupBox* MakeLoadGroup();
    QGroupBox* MakeOptionsGroup();
    QGroupBox* MakePyramidGroup();
    QGroupBox* MakeOriginalsGroup();
    QHBoxLayout* MakePyramidRow();
    QWidget* MakeThinning();

    QButtonGroup* openMode_;
    QButtonGroup* loadMode_;
    QButtonGroup* pyramidType_;
    QButtonGroup* backup_;
    QCheckBox* append_ = nullptr;
    QCheckBox* ignoreCrs_ = nullptr;
    QCheckBox* loadCorrupt_ = nullptr;
    QCheckBox* convertQvr_ = nullptr;
    QCheckBox* reCreate_ = nullptr;
    QLineEdit* thinning_ = nullptr;
};

}  // namespace orvex
