#pragma once
#include <cstddef>
#include <deque>
#include <functional>
#include <string>

namespace orvex::testing {

/// Works the component's modal windows from inside, in a host that has no Qt of its own. It wakes with each
/// QApplication that comes, and takes its commands from one queue for the process:
///
///   click NAME        clicks the button of that object name in the topmost modal window
///   drop PATH|PATH    drops files on it
///   picture FILE      saves a picture of it
///   hold MS           lets it stand
///   close             closes it as its title bar does
///
/// A command waits until there is a modal window, for `click` one with that button.
class DialogScript {
  public:
    /// `onStep` is called before each command, with the number of commands that are left.
    static void Begin(std::deque<std::string> commands, std::function<void(std::size_t)> onStep = {});

    /// How many commands have not been carried out.
    static std::size_t Left();
};

}  // namespace orvex::testing
