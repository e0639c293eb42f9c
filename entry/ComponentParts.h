#pragma once
#include <memory>

#include "dialog/DialogServices.h"
#include "settings/OptionStore.h"
#include "settings/RegistryKey.h"
#include "support/FilePickers.h"
#include "support/HelpViewer.h"
#include "support/HostObjects.h"
#include "support/UserPrompts.h"

class QWidget;

namespace orvex {

/// What the component needs from its platform, for the duration of one call. The only place where a half of a
/// seam is chosen.
class ComponentParts {
  public:
    /// The platform's halves. `owner` is the window that messages belong to; null: the active one.
    explicit ComponentParts(QWidget* owner = nullptr);

    DialogServices& Services() { return services_; }

  private:
    std::unique_ptr<RegistryStore> registry_;
    std::unique_ptr<HostObjects> hostObjects_;
    std::unique_ptr<UserPrompts> prompts_;
    std::unique_ptr<FilePickers> pickers_;
    std::unique_ptr<HelpViewer> help_;
    OptionStore options_;
    DialogServices services_;
};

}  // namespace orvex
