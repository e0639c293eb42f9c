#include "support/UtcTime.h"

#include <chrono>

#include "support/Format.h"

namespace orvex {

std::wstring UtcTimeText(std::int64_t milliseconds) {
    using namespace std::chrono;
    const sys_time<std::chrono::milliseconds> time{std::chrono::milliseconds(milliseconds)};
    const auto day = floor<days>(time);
    const year_month_day date{day};
    const hh_mm_ss clock{floor<minutes>(time - day)};
    return FormatText(L"%04d-%02u-%02u %02d:%02d",
                      {static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                       static_cast<unsigned>(date.day()), clock.hours().count(), clock.minutes().count()});
}

}  // namespace orvex
