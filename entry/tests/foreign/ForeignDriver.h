#pragma once
// What a host without Qt lets a library that has it do beside the component, when it is tested: work the
// dialog from inside, and be the host's class objects. The functions are C's, so that they are found by name.
#include <cstddef>

extern "C" {

/// Commands of DialogScript, one a line. `onStep` is called before each, with the number of those that are
/// left.
using DriverStep = void (*)(std::size_t left);
using DriverBeginFunction = void(const char* commands, DriverStep onStep);
/// How many commands have not been carried out.
using DriverLeftFunction = std::size_t();
/// Whether there is a QCoreApplication.
using DriverHasQtFunction = bool();
/// Makes the reference host's class objects this thread's, with their settings in a folder, and the options
/// of the process others than the user's; null: takes both back.
using DriverServeFunction = void(const wchar_t* folder);
/// Writes a small LAS file.
using DriverWriteLasFunction = bool(const wchar_t* path);
}
