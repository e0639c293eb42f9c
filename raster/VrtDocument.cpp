#include "raster/VrtDocument.h"

#include <cpl_minixml.h>

#include <fstream>
#include <iterator>
#include <memory>

#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::uint64_t kMostBytes = std::uint64_t{8} << 20U;

std::string ReadWhole(const std::wstring& path) {
    if (FileSizeOf(path).value_or(0) > kMostBytes) {
        throw LDataError(Text(text::kRasterTooMuchToRead));
    }
    std::ifstream file(ToPath(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool IsElement(const CPLXMLNode& node, std::string_view name) {
    return node.eType == CXT_Element && EqualNoCase(FromUtf8(node.pszValue), FromUtf8(std::string(name)));
}

/// Folder at the root of a network path, such as L"//server/share"; empty for any other path.
std::wstring ShareOf(const std::wstring& path) {
    std::wstring share = ToUpper(path);
    for (wchar_t& letter : share) {
        letter = letter == L'\\' ? L'/' : letter;
    }
    if (!share.starts_with(L"//")) {
        return {};
    }
    const std::size_t server = share.find(L'/', 2);
    return server == std::wstring::npos ? share : share.substr(0, share.find(L'/', server + 1));
}

/// True if the name is that of a local file, or of one on the share that `beside` lies on. Servers, databases
/// and virtual file systems are named by a word and a colon, or by "/vsi".
bool IsLocal(const std::wstring& name, const std::wstring& beside) {
    const bool hasScheme = name.find(L':') != std::wstring::npos &&
                           (name.size() < 3 || name[1] != L':' || name.find(L':', 2) != std::wstring::npos);
    const std::wstring share = ShareOf(name);
    return !hasScheme && ToUpper(name).find(L"/VSI") == std::wstring::npos &&
           (share.empty() || share == ShareOf(beside));
}

/// Notes a source. Names are looked up, never opened.
void NoteSource(const CPLXMLNode& node, const std::wstring& path, VrtSources& sources) {
    // On a slow drive each takes a while.
    constexpr std::size_t kMostLookedUp = 16;
    const std::wstring name = FromUtf8(CPLGetXMLValue(&node, nullptr, ""));
    if (!IsLocal(name, path)) {
        sources.distant = sources.distant.empty() ? name : sources.distant;
        return;
    }
    const bool isRelative = std::string_view(CPLGetXMLValue(&node, "relativeToVRT", "0")) == "1";
    const std::wstring file = isRelative ? FromPath(ToPath(FolderOf(path)) / ToPath(name)) : name;
    if (sources.missing.empty() && ++sources.lookedUp <= kMostLookedUp && KindOf(file) == FileKind::Missing) {
        sources.missing = file;
    }
}

/// Checks the nodes from `node` on, and what they hold.
void CheckNodes(const CPLXMLNode* node, const std::wstring& path, VrtSources& sources) {
    for (; node != nullptr; node = node->psNext) {
        // A dataset or band of another class opens files when it is made; so do arrays.
        const std::string_view subclass = CPLGetXMLValue(node, "subClass", "VRTSourcedRasterBand");
        if (IsElement(*node, "Group") || (node->eType == CXT_Element && subclass != "VRTSourcedRasterBand")) {
            throw LDataError(Text(text::kRasterIsVrt));
        }
        if (IsElement(*node, "SourceFilename") || IsElement(*node, "SourceDataset")) {
            NoteSource(*node, path, sources);
        }
        CheckNodes(node->psChild, path, sources);
    }
}

}  // namespace

VrtSources CheckVrt(const std::wstring& path, std::string_view start) {
    VrtSources sources;
    if (start.find("<VRTDataset") == std::string_view::npos) {
        return sources;
    }
    struct Destroy {
        void operator()(CPLXMLNode* node) const { CPLDestroyXMLNode(node); }
    };
    const std::unique_ptr<CPLXMLNode, Destroy> root(CPLParseXMLString(ReadWhole(path).c_str()));
    if (!root) {
        throw LDataError(Text(text::kRasterDamagedOrUnsupported));
    }
    CheckNodes(root.get(), path, sources);
    return sources;
}

}  // namespace orvex
