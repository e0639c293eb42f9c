#pragma once

class QString;

namespace orvex {

struct HostArguments;

/// Chooses Qt's platform before there is an application: that of the command line, else that of
/// QT_QPA_PLATFORM, else, for a driven run, "offscreen". The offscreen platform gets a screen that a window
/// fits on at any scale (described by a file in `folder`), and the system's fonts.
void ChoosePlatform(const HostArguments& arguments, const QString& folder);

}  // namespace orvex
