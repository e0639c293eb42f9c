#include "support/FilePickersQt.h"

namespace orvex {

std::unique_ptr<FilePickers> MakeFilePickers() {
    return std::make_unique<FilePickersQt>();
}

}  // namespace orvex
