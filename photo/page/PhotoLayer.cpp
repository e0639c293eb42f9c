#include "photo/page/PhotoLayer.h"

#include <algorithm>
#include <cwctype>
#include <memory>

#include "support/Files.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr const wchar_t* kFields[] = {L"TimeUTC",    L"Latitude", L"Longitude", L"Altitude",
                                      L"MasterTick", L"CameraID", L"PhotoPath"};

std::wstring Trimmed(const std::wstring& text) {
    const auto isSpace = [](wchar_t character) { return std::iswspace(static_cast<wint_t>(character)) != 0; };
    const auto first = std::ranges::find_if_not(text, isSpace);
    const auto last = std::find_if_not(text.rbegin(), text.rend(), isSpace).base();
    return first < last ? std::wstring(first, last) : std::wstring();
}

std::nullopt_t Refuse(UserPrompts& prompts, StringId why) {
    prompts.Show({Text(why), Text(text::kInvalidInputCaption), PromptIcon::Error, PromptButtons::Ok});
    return std::nullopt;
}

PromptAnswer Ask(UserPrompts& prompts, StringId question, PromptButtons buttons) {
    return prompts.Show({Text(question), Text(text::kPhotoMessageCaption), PromptIcon::Question, buttons});
}

bool HoldsAny(OrvexLayer& layer, std::span<const std::wstring> photos) {
    return std::ranges::any_of(photos, [&](const std::wstring& path) {
        bool has = false;
        return layer.HasPhoto(path, has) >= 0 && has;
    });
}

/// A layer that cannot be opened: one that is not there can be made, for any other it is the path or the file
/// that is wrong.
std::optional<PhotoLayerChoice> OfferNewLayer(const std::wstring& path, UserPrompts& prompts) {
    if (KindOf(path) != FileKind::Missing) {
        return Refuse(prompts, text::kPhotoLayerUnusable);
    }
    const bool isWanted =
        Ask(prompts, text::kPhotoCreateLayerQuestion, PromptButtons::YesNo) == PromptAnswer::Yes;
    return isWanted ? std::optional(PhotoLayerChoice{path, false}) : std::nullopt;
}

}  // namespace

bool CanTakePhotos(OrvexLayer& layer) {
    bool isPhotoLayer = false;
    if (layer.IsPhotoLayer(isPhotoLayer) >= 0 && isPhotoLayer) {
        return true;
    }
    std::int32_t type = 0;
    const bool hasType = layer.GetGeometryType(type) >= 0;
    return hasType && (type == kPointLayer || type == kPointZLayer) &&
           std::ranges::all_of(kFields, [&](const wchar_t* field) {
               bool has = false;
               return layer.HasField(field, has) >= 0 && has;
           });
}

std::optional<PhotoLayerChoice> ChoosePhotoLayer(const std::wstring& typed, OrvexProject* project,
                                                 std::span<const std::wstring> photos, UserPrompts& prompts) {
    const std::wstring path = Trimmed(typed);
    // Who asks for an existing layer and names none would not want a new one made.
    if (path.empty() || project == nullptr) {
        return Refuse(prompts, text::kPhotoLayerUnusable);
    }
    std::unique_ptr<OrvexLayer> layer;
    if (project->OpenLayer(path, layer) < 0 || layer == nullptr) {
        return OfferNewLayer(path, prompts);
    }
    if (!CanTakePhotos(*layer)) {
        return Refuse(prompts, text::kPhotoLayerFieldsMissing);
    }
    if (!HoldsAny(*layer, photos)) {
        return PhotoLayerChoice{path, false};
    }
    const PromptAnswer answer = Ask(prompts, text::kPhotoReplaceQuestion, PromptButtons::YesNoCancel);
    const bool isAnswered = answer == PromptAnswer::Yes || answer == PromptAnswer::No;
    return isAnswered ? std::optional(PhotoLayerChoice{path, answer == PromptAnswer::Yes}) : std::nullopt;
}

}  // namespace orvex
