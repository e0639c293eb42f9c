#include "host/app/HostText.h"

#include <QLocale>

namespace orvex {

QString HostText(StringId id) {
    return ToQString(Text(id));
}

QString HostText(StringId id, std::initializer_list<FormatArg> arguments) {
    return ToQString(FormatText(Text(id), arguments));
}

QByteArray PathBytes(const std::wstring& path) {
    return QByteArray::fromStdString(ToUtf8(path));
}

std::wstring PathFromBytes(const QByteArray& bytes) {
    return FromUtf8(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
}

QString GroupedNumber(std::uint64_t number) {
    return QLocale().toString(static_cast<qulonglong>(number));
}

}  // namespace orvex
