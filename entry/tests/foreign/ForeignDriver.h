#pragma once
// Functions of a library with Qt that a host without Qt loads beside the component: they drive the dialog
// from inside and provide the host's class objects. C functions, so that they are found by name from any
// language. A program that does not load it by itself can have it preloaded or linked in: ORVEX_DRIVER in the
// environment then works its first dialog.
#include <cstddef>

extern "C" {

/// Runs commands of DialogScript, one per line; see DialogScript::MayGoOn.
using DriverMayGoOn = bool (*)();
using DriverBeginFunction = void(const char* commands, DriverMayGoOn mayGoOn);
/// Number of commands that have not been carried out.
using DriverLeftFunction = std::size_t();
/// True if there is a QCoreApplication.
using DriverHasQtFunction = bool();
/// Registers the reference host's class objects on this thread, with their settings in a folder and private
/// options, and writes small LAS files "a.las" and "\u00fcber b.las" there; null: removes the objects.
using DriverServeFunction = void(const wchar_t* folder);
}
