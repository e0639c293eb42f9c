#include "dialog/page/LoadFlag.h"

#include "dialog/ImageIndex.h"

namespace orvex {

int LoadFlagImage(LoadFlag flag) {
    switch (flag) {
        case LoadFlag::Good:
            return kImageLoadable;
        case LoadFlag::Findings:
            return kImageWarning;
        case LoadFlag::NotLoadable:
            return kImageNotLoadable;
    }
    return -1;
}

}  // namespace orvex
