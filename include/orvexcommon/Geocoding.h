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

/// Conversion between GPS time and UTC. Any thread.
class ORVEXGEOCODING_API TimeConverter {
  public:
    /// Checks the table of leap seconds. Always true; the table is part of the library.
    static bool Init();
    /// UTC of adjusted standard GPS seconds (GPS seconds minus 1e9) as "2019-07-14 09:21:33", with
    /// `withFraction` as "2019-07-14 09:21:33.250". Seconds are cut off, not rounded, so that a time never
    /// gets ahead of itself; during a leap second they are 60. Empty for a time before 1980-01-06 (the start
    /// of GPS time), after the year 9999, or not finite. Times after LeapSecondsKnownUntil are converted with
    /// the last known offset.
    static std::string AdjGPSSecsToUTC(double adjustedGpsSeconds, bool withFraction);
    /// The reverse of a text as AdjGPSSecsToUTC writes it. False if it is none, or before GPS time.
    static bool UTCToAdjGPSSecs(const std::string& utc, double& adjustedGpsSeconds);
    /// Date up to which the leap seconds are known, as "2027-06-28".
    static std::string LeapSecondsKnownUntil();
};
