#pragma once
#include <QString>
#include <QStringList>

namespace orvex {

/// The command line of the host.
struct HostArguments {
    QStringList paths;      ///< files and folders to show in the dialog at first
    QString projectFolder;  ///< empty: the latest project, or the sample project
    bool drive = false;     ///< use the dialog without a person and leave
    QString pictureFolder;
    QString platform;  ///< Qt's platform plugin; empty: offscreen for a driven run, else the system's
    double scale = 1;
    bool dark = false;
    bool help = false;
    bool version = false;
    QString error;  ///< what is wrong with the command line; empty when nothing is
};

/// `arguments` without the program's name.
HostArguments ParseHostArguments(const QStringList& arguments);

/// What pictures taken with these arguments have behind their names: "", "-dark", "@2x", "-dark@2x".
QString PictureSuffix(const HostArguments& arguments);

}  // namespace orvex
