// TimeConverter: GPS time runs without the leap seconds that UTC has.
#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "orvexcommon/Geocoding.h"
#include "support/Format.h"
#include "support/Text.h"

using namespace orvex;

namespace {

using namespace std::chrono;

constexpr sys_days kGpsEpoch = 1980y / January / 6;
constexpr double kAdjustment = 1e9;

// Days before which UTC got a leap second since GPS time began (IERS, Bulletin C).
constexpr std::array<sys_days, 18> kLeapDays{
    1981y / July / 1,    1982y / July / 1,    1983y / July / 1,    1985y / July / 1,    1988y / January / 1,
    1990y / January / 1, 1991y / January / 1, 1992y / July / 1,    1993y / July / 1,    1994y / July / 1,
    1996y / January / 1, 1997y / July / 1,    1999y / January / 1, 2006y / January / 1, 2009y / January / 1,
    2012y / July / 1,    2015y / July / 1,    2017y / January / 1};
// The table says nothing about the time after this day.
constexpr const char* kKnownUntil = "2026-06-28";

constexpr sys_days kEnd = 10000y / January / 1;

/// Seconds of UTC since the GPS epoch, leap seconds not counted, and whether this is a leap second, which
/// bears the number of the second before it.
struct UtcSecond {
    seconds sinceEpoch;
    bool isLeap = false;
};

UtcSecond UtcOf(seconds gps) {
    seconds leaps{0};
    for (const sys_days day : kLeapDays) {
        const seconds leapSecond = (day - kGpsEpoch) + leaps;
        if (gps == leapSecond) {
            return {gps - leaps - 1s, true};
        }
        if (gps < leapSecond) {
            break;
        }
        leaps += 1s;
    }
    return {gps - leaps};
}

/// Reads "2019-07-14 09:21:33" with or without a fraction; false if the text is none.
bool ReadUtc(const std::string& utc, sys_days& day, double& secondOfDay) {
    int year = 0;
    unsigned month = 0;
    unsigned dayOfMonth = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int length = 0;
    if (std::sscanf(utc.c_str(), "%4d-%2u-%2u %2d:%2d:%2d%n", &year, &month, &dayOfMonth, &hour, &minute,
                    &second, &length) != 6) {
        return false;
    }
    const year_month_day date{std::chrono::year(year), std::chrono::month(month),
                              std::chrono::day(dayOfMonth)};
    if (!date.ok() || hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 60) {
        return false;
    }
    double fraction = 0;
    double digit = 0.1;
    const std::string rest = utc.substr(static_cast<std::size_t>(length));
    for (std::size_t i = 1; i < rest.size(); ++i, digit /= 10) {
        if (rest[i] < '0' || rest[i] > '9') {
            return false;
        }
        fraction += digit * (rest[i] - '0');
    }
    day = date;
    secondOfDay = hour * 3600.0 + minute * 60.0 + second + fraction;
    return rest.empty() || (rest[0] == '.' && rest.size() > 1);
}

}  // namespace

bool TimeConverter::Init() {
    return true;
}

std::string TimeConverter::AdjGPSSecsToUTC(double adjustedGpsSeconds, bool withFraction) {
    const double limit = static_cast<double>(seconds(kEnd - kGpsEpoch).count());
    const double total = adjustedGpsSeconds + kAdjustment;
    if (!(total >= 0) || !(total < limit)) {
        return {};
    }
    // A text such as "33.1" is not exact as a double: what is nearer to the next microsecond belongs to it.
    const microseconds gps(std::llround(total * 1e6));
    const UtcSecond utc = UtcOf(floor<seconds>(gps));
    const sys_seconds time = sys_seconds(kGpsEpoch) + utc.sinceEpoch;
    const sys_days day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(time - day);
    const auto second = clock.seconds().count() + (utc.isLeap ? 1 : 0);
    std::wstring text =
        FormatText(L"%04d-%02u-%02u %02d:%02d:%02d",
                   {static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                    static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                    static_cast<int>(clock.minutes().count()), static_cast<int>(second)});
    if (withFraction) {
        const auto milli = floor<milliseconds>(gps - floor<seconds>(gps)).count();
        text += FormatText(L".%03d", {static_cast<int>(milli)});
    }
    return ToUtf8(text);
}

bool TimeConverter::UTCToAdjGPSSecs(const std::string& utc, double& adjustedGpsSeconds) {
    sys_days day;
    double secondOfDay = 0;
    if (!ReadUtc(utc, day, secondOfDay) || day < kGpsEpoch) {
        return false;
    }
    const auto leaps = std::ranges::upper_bound(kLeapDays, day) - kLeapDays.begin();
    adjustedGpsSeconds =
        static_cast<double>(seconds(day - kGpsEpoch).count() + leaps) + secondOfDay - kAdjustment;
    return true;
}

std::string TimeConverter::LeapSecondsKnownUntil() {
    return kKnownUntil;
}
