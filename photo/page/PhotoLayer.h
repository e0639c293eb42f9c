#pragma once
#include <functional>
#include <optional>
#include <span>
#include <string>

#include "support/HostObjects.h"
#include "support/UserPrompts.h"

namespace orvex {

/// Where photos go.
struct PhotoLayerChoice {
    std::wstring
        path;  ///< of an existing layer, or of one that the user wants to be made; empty: a new layer
    bool replace = false;  ///< photos that the layer holds already get new records
};

/// True if a layer can take photos: it says that it is a photo layer, or it holds points with the fields of
/// one. A layer that does not answer cannot.
bool CanTakePhotos(OrvexLayer& layer);

/// Settles with the user whether `photos` (full paths) can go to the layer with the path that was typed.
/// `project`: null when the host gives none. Nullopt keeps the dialog open; the user knows why.
std::optional<PhotoLayerChoice> ChoosePhotoLayer(const std::wstring& typed, OrvexProject* project,
                                                 std::span<const std::wstring> photos, UserPrompts& prompts);

}  // namespace orvex
