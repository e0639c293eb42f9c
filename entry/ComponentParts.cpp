#include "entry/ComponentParts.h"

#include "support/ModuleFolder.h"
#include "support/UserPromptsQt.h"

namespace orvex {

ComponentParts::ComponentParts(QWidget* owner)
    : registry_(MakeRegistryStore()),
      hostObjects_(MakeHostObjects()),
      prompts_(std::make_unique<UserPromptsQt>(owner)),
      pickers_(MakeFilePickers()),
      help_(MakeHelpViewer(ModuleFolder())),
      options_(*registry_),
      services_{*prompts_, *pickers_, *help_, options_, *hostObjects_} {}

}  // namespace orvex
