#include <boost/property_tree/ptree.hpp>

#include "orvexcommon/OrvexUtilities.h"
#include "support/Text.h"

using namespace orvex;

bool OrvexUtilities::GetExifTagPTreeForImages(const std::vector<std::wstring>& paths,
                                              boost::property_tree::wptree& tree) {
    boost::property_tree::wptree images;
    for (const std::wstring& path : paths) {
        boost::property_tree::wptree image;
        image.put(L"SourceFile", path);
        image.put(L"Error", Text(text::kPhotoFormatUnsupported));
        images.push_back({L"Image", std::move(image)});
    }
    tree.clear();
    tree.push_back({L"Images", std::move(images)});
    return false;
}

std::string OrvexUtilities::GetExifThumbnail(const std::wstring&) {
    return {};
}
