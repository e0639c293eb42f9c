#pragma once
#include <QApplication>
#include <memory>

namespace orvex {

struct HostArguments;

/// Makes the application on the platform plugin of the command line, else of QT_QPA_PLATFORM, else, for a
/// driven run, on "offscreen". The offscreen platform gets a screen that a window fits on at any scale (a
/// file in `folder` describes it), and the system's fonts.
std::unique_ptr<QApplication> MakeApplication(int& argc, char** argv, const HostArguments& arguments,
                                              const QString& folder);

/// Gives the whole application light or dark colours; open windows change as well.
void ApplyAppearance(bool dark);

}  // namespace orvex
