#include "host/app/NewShapefile.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {

namespace {

/// What GDAL writes. The .shp comes last: until then there is no shapefile of the name.
constexpr std::array<const wchar_t*, 5> kWritten = {L".shx", L".dbf", L".prj", L".cpg", L".shp"};
/// What programs add; left from an older shapefile, it would be wrong of a new one.
constexpr std::array<const wchar_t*, 4> kFurther = {L".qix", L".sbn", L".sbx", L".idm"};

std::wstring Stem(const std::wstring& path) {
    return WithExtension(path, L"");
}

bool IsFree(const std::wstring& stem) {
    const auto isMissing = [&stem](const wchar_t* extension) {
        return KindOf(stem + extension) == FileKind::Missing;
    };
    return std::ranges::all_of(kWritten, isMissing) && std::ranges::all_of(kFurther, isMissing);
}

std::wstring FreeStem(const std::wstring& stem) {
    std::wstring free = stem;
    for (int number = 2; !IsFree(free); ++number) {
        free = stem + L" " + std::to_wstring(number);
    }
    return free;
}

void UndoAll(const std::vector<std::pair<std::wstring, std::wstring>>& renamed) {
    for (auto step = renamed.rbegin(); step != renamed.rend(); ++step) {
        RenameFile(step->second, step->first);
    }
}

}  // namespace

NewShapefile::NewShapefile(std::wstring target) : target_(std::move(target)), temporary_(target_) {}

NewShapefile::~NewShapefile() {
    for (const wchar_t* extension : kWritten) {
        RemoveFile(temporary_.Path() + extension);
    }
}

std::wstring NewShapefile::FreeTarget(const std::wstring& target) {
    return FreeStem(Stem(target)) + L".shp";
}

void NewShapefile::Rename(const std::wstring& from, const std::wstring& to, Renamed& done) const {
    bool taken = false;
    if (const SystemError error = RenameToFreeName(from, to, taken); error != 0) {
        throw LDataError(taken ? FormatText(Text(text::kPyramidsFileExists), {to})
                               : to + L": " + SystemErrorText(error));
    }
    done.emplace_back(from, to);
}

void NewShapefile::NameParts(Renamed& done) const {
    for (const wchar_t* extension : kWritten) {
        const std::wstring part = temporary_.Path() + extension;
        if (KindOf(part) != FileKind::Missing) {
            Rename(part, extension == kWritten.back() ? target_ : Stem(target_) + extension, done);
        }
    }
}

void NewShapefile::Commit(const std::vector<std::wstring>& replaced) {
    // The old files get names that nobody takes for rubbish: they are all there is if the process ends now.
    const std::wstring kept = FreeStem(Stem(target_) + L".old");
    Renamed done;
    try {
        for (const std::wstring& path : replaced) {
            Rename(path, kept + path.substr(Stem(path).size()), done);
        }
        NameParts(done);
    } catch (...) {
        UndoAll(done);
        throw;
    }
    for (std::size_t i = 0; i < replaced.size(); ++i) {
        RemoveFile(done[i].second);
    }
}

}  // namespace orvex
