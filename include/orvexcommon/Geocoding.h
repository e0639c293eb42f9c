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

/// Detects a BigTIFF by its first bytes, in either byte order and whatever its name. Returns true if the file
/// could be read; else false with `isBigTiff` false and a reason in plain words in `message`. Any thread.
ORVEXGEOCODING_API bool Is_BigTIFF(const std::wstring& path, bool& isBigTiff, std::wstring& message);
