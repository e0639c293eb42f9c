#pragma once
// The host's geocoding library.
#include <string>

#if defined(_WIN32)
#if defined(ORVEXGEOCODING_BUILD)
#define ORVEXGEOCODING_API __declspec(dllexport)
#else
#define ORVEXGEOCODING_API __declspec(dllimport)
#endif
#else
#define ORVEXGEOCODING_API __attribute__((visibility("default")))
#endif

/// Whether a file is a BigTIFF, by its own first bytes and in either byte order, whatever its name. True when
/// the file could be read (a file of another kind is none); false with a reason in plain words in `message`
/// when it could not; `isBigTiff` is false then. Safe from any thread.
ORVEXGEOCODING_API bool Is_BigTIFF(const std::wstring& path, bool& isBigTiff, std::wstring& message);
