#include "dialog/Images.h"

#include <QString>

// The resources lie in a static library, whose initialisers a linker drops unless they are named.
static void InitResources() {
    Q_INIT_RESOURCE(orvexcommon);
}

namespace orvex {
namespace {

QIcon Load(const char* name) {
    static const bool loaded = (InitResources(), true);
    Q_UNUSED(loaded);
    QIcon icon;
    for (const int size : {16, 32}) {
        icon.addFile(QStringLiteral(":/orvexcommon/%1-%2.png").arg(QLatin1String(name)).arg(size),
                     {size, size});
    }
    return icon;
}

}  // namespace

std::vector<QIcon> MakeImageList() {
    std::vector<QIcon> images;
    for (const char* name : kImageNames) {
        images.push_back(Load(name));
    }
    return images;
}

QIcon ButtonIcon(ButtonImage image) {
    switch (image) {
        case ButtonImage::AddFiles:
            return Load("add-files");
        case ButtonImage::AddFolder:
            return Load("add-folder");
        case ButtonImage::Remove:
            return Load("remove");
        case ButtonImage::Clear:
            return Load("clear");
        case ButtonImage::Help:
            return Load("help");
        case ButtonImage::Details:
            return Load("details");
        case ButtonImage::AllRows:
            return Load("all-rows");
        case ButtonImage::Refresh:
            return Load("refresh");
        case ButtonImage::Stop:
            return Load("stop");
        case ButtonImage::LookInside:
            return Load("look-inside");
    }
    return {};
}

QIcon ApplicationIcon() {
    return Load("application");
}

}  // namespace orvex
