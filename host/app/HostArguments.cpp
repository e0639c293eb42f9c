#include "host/app/HostArguments.h"

#include "host/app/HostText.h"

namespace orvex {

namespace {

/// The value behind an option; sets the error when there is none.
QString TakeValue(const QStringList& arguments, qsizetype& i, HostArguments& parsed) {
    if (i + 1 < arguments.size()) {
        return arguments[++i];
    }
    parsed.error = HostText(text::kHostUnknownOption, {ToWide(arguments[i])});
    return {};
}

void ParseOption(const QStringList& arguments, qsizetype& i, HostArguments& parsed) {
    const QString& option = arguments[i];
    if (option == "--drive") {
        parsed.drive = true;
    } else if (option == "--dark") {
        parsed.dark = true;
    } else if (option == "--help" || option == "-h") {
        parsed.help = true;
    } else if (option == "--version") {
        parsed.version = true;
    } else if (option == "--pictures") {
        parsed.pictureFolder = TakeValue(arguments, i, parsed);
    } else if (option == "--project") {
        parsed.projectFolder = TakeValue(arguments, i, parsed);
    } else if (option == "--platform") {
        parsed.platform = TakeValue(arguments, i, parsed);
    } else if (option == "--scale") {
        parsed.scale = TakeValue(arguments, i, parsed).toDouble();
        if (!(parsed.scale >= 0.5 && parsed.scale <= 4)) {
            parsed.error = HostText(text::kHostUnknownOption, {ToWide(option)});
        }
    } else {
        parsed.error = HostText(text::kHostUnknownOption, {ToWide(option)});
    }
}

}  // namespace

HostArguments ParseHostArguments(const QStringList& arguments) {
    HostArguments parsed;
    bool onlyPaths = false;
    for (qsizetype i = 0; i < arguments.size() && parsed.error.isEmpty(); ++i) {
        if (!onlyPaths && arguments[i] == "--") {
            onlyPaths = true;
        } else if (!onlyPaths && arguments[i].startsWith('-') && arguments[i].size() > 1) {
            ParseOption(arguments, i, parsed);
        } else {
            parsed.paths.append(arguments[i]);
        }
    }
    return parsed;
}

QString PictureSuffix(const HostArguments& arguments) {
    QString suffix = arguments.dark ? "-dark" : "";
    if (arguments.scale != 1) {
        suffix += '@' + QString::number(arguments.scale) + 'x';
    }
    return suffix;
}

}  // namespace orvex
