#pragma once
#include <cstddef>
#include <deque>
#include <functional>
#include <string>

namespace orvex::testing {

/// Drives the component's modal windows from inside, in a host that has no Qt of its own. Starts with each
/// QApplication and takes its commands from one queue for the process:
///
///   click NAME        clicks the button of that object name in the topmost modal window
///   drop PATH|PATH    drops files on that window
///
/// A command waits until there is a modal window, `click` for one with that button enabled.
class DialogScript {
  public:
    /// Called before each command; the command waits while it returns false.
    using MayGoOn = std::function<bool()>;

    static void Begin(std::deque<std::string> commands, MayGoOn mayGoOn = {});

    /// Number of commands that have not been carried out.
    static std::size_t Left();
};

}  // namespace orvex::testing
