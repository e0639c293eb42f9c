#include "host/dem/LasPointWriter.h"

#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::size_t kBufferBytes = std::size_t{1} << 20U;

}  // namespace

LasPointWriter::LasPointWriter(const std::wstring& path, const std::wstring& shownPath,
                               const std::string& front, const std::string& record)
    : shownPath_(shownPath), recordLength_(record.size()) {
    low_.fill(std::numeric_limits<std::int32_t>::max());
    high_.fill(std::numeric_limits<std::int32_t>::min());
    records_.reserve(kBufferBytes);
    for (std::size_t i = 0; i < kBufferBytes / recordLength_; ++i) {
        records_ += record;
    }
    ForgetStreamError();
    file_.open(ToPath(path), std::ios::binary | std::ios::trunc);
    if (!file_ || !file_.write(front.data(), static_cast<std::streamsize>(front.size()))) {
        Fail(LastStreamError());
    }
}

void LasPointWriter::Flush() {
    ForgetStreamError();
    if (!file_.write(records_.data(), static_cast<std::streamsize>(used_))) {
        Fail(LastStreamError());
    }
    flushed_ += used_ / recordLength_;
    used_ = 0;
}

void LasPointWriter::Finish(const std::string& front) {
    Flush();
    ForgetStreamError();
    file_.seekp(0);
    file_.write(front.data(), static_cast<std::streamsize>(front.size()));
    file_.close();
    if (!file_) {
        Fail(LastStreamError());
    }
}

void LasPointWriter::Fail(SystemError error) const {
    throw LDataError(FormatText(Text(41388_lsid), {shownPath_, SystemErrorText(error)}));
}

}  // namespace orvex
