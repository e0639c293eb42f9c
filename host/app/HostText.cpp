#include "host/app/HostText.h"

#include <QLocale>

namespace orvex {

QString HostText(StringId id) {
    return ToQString(Text(id));
}

QString HostText(StringId id, std::initializer_list<FormatArg> arguments) {
    return ToQString(FormatText(Text(id), arguments));
}

QString GroupedNumber(std::uint64_t number) {
    return QLocale().toString(static_cast<qulonglong>(number));
}

}  // namespace orvex
