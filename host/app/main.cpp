// orvex-host: a small desktop program that adds data to a project with the Add Files dialog.
#include <QApplication>
#include <filesystem>
#include <iostream>

#include "host/app/HostArguments.h"
#include "host/app/HostRun.h"
#include "host/app/HostText.h"
#include "host/app/ParentConsole.h"
#include "support/Environment.h"
#include "support/LDataError.h"

namespace orvex {

namespace {

QStringList ArgumentsOf(int argc, char** argv) {
    QStringList arguments;
    for (const std::wstring& argument : ProgramArguments(argc, argv)) {
        arguments.append(ToQString(argument));
    }
    return arguments;
}

/// Tells on the console which of the files to be shown are not there.
bool AreThere(const QStringList& paths) {
    bool all = true;
    for (const QString& path : paths) {
        std::error_code error;
        if (!std::filesystem::exists(ToPath(ToWide(path)), error)) {
            std::cerr << HostText(40815_lsid, {ToWide(path)}).toStdString() << '\n';
            all = false;
        }
    }
    return all;
}

int RunHost(int argc, char** argv) {
    const HostArguments arguments = ParseHostArguments(ArgumentsOf(argc, argv));
    if (arguments.help || !arguments.error.isEmpty()) {
        std::ostream& out = arguments.help ? std::cout : std::cerr;
        if (!arguments.error.isEmpty()) {
            out << arguments.error.toStdString() << '\n';
        }
        out << HostText(40922_lsid).toStdString() << '\n';
        return arguments.help ? 0 : 2;
    }
    if (!AreThere(arguments.paths)) {
        return 1;
    }
    if (arguments.scale != 1) {
        qputenv("QT_SCALE_FACTOR", QByteArray::number(arguments.scale));
    }
    QApplication::setOrganizationName("orvex");
    QApplication::setApplicationName("orvex-host");
    QApplication::setApplicationVersion(ORVEX_VERSION);
    return arguments.drive ? RunDriven(argc, argv, arguments) : RunInteractive(argc, argv, arguments);
}

}  // namespace
}  // namespace orvex

int main(int argc, char** argv) {
    const orvex::ParentConsole console;
    try {
        return orvex::RunHost(argc, argv);
    } catch (...) {
        std::cerr << orvex::ToUtf8(orvex::CurrentExceptionText()) << '\n';
        return 3;
    }
}
