#pragma once

namespace orvex {

struct HostArguments;

/// Opens the host's window and, where there is something to add, the dialog with it. Returns the exit code.
int RunInteractive(int& argc, char** argv, const HostArguments& arguments);

/// Opens the dialog, uses it without a person (on a project and with options of its own, so that nothing of
/// the user's changes), prints the record and leaves pictures. 0 when the record holds files.
int RunDriven(int& argc, char** argv, const HostArguments& arguments);

}  // namespace orvex
