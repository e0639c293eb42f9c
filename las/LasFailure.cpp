#include "las/LasFailure.h"

#include <algorithm>
#include <iterator>

#include "support/Text.h"

namespace orvex {
namespace {

/// A message for programmers, recognised by some of its words.
struct KnownMessage {
    std::wstring_view words;
    StringId text;
};
constexpr KnownMessage kKnownMessages[] = {
    {L"GetExtraByteOffsets: '", text::kLasExtraBytesTypeInvalid},
    {L"Unable to read EVLRs", text::kLasEvlrsUnreadable},
    {L"Failed to read EVLR ", text::kLasEvlrsUnreadable},
    {L"Moving file pointer to the eVlr offset", text::kLasEvlrsUnreadable},
    {L"when skipping record data for evlr", text::kLasEvlrsUnreadable},
    {L"' file does not exist. Cannot open.", text::kFileMissing},
    {L"CreateFile failed on '", text::kFileOpenRefused},
    {L"'. GetLastError: 1006.", text::kLasHeaderCutOff},  // an empty file has no mapping on Windows
    {L"CreateFileMapping failed on '", text::kFileOpenRefused},
    {L"ReadHeaderBlock failed on '", text::kLasHeaderCutOff},
    {L"bad_alloc", text::kOutOfMemory},
};

}  // namespace

std::wstring PlainLasFailure(const std::wstring& message) {
    const auto* const known = std::ranges::find_if(kKnownMessages, [&](const KnownMessage& entry) {
        return message.find(entry.words) != std::wstring::npos;
    });
    return known == std::end(kKnownMessages) ? message : Text(known->text);
}

}  // namespace orvex
