#pragma once

namespace orvex {

/// The console that a program with windows was started from, for as long as this lives: what the program
/// writes to its standard streams is read there, as UTF-8. Streams that lead somewhere else, to a file or a
/// pipe, stay as they are; a program that was not started from a console has none.
class ParentConsole {
  public:
    ParentConsole();
    ~ParentConsole();  // NOLINT(performance-trivially-destructible): not so in the other half
    ParentConsole(const ParentConsole&) = delete;
    ParentConsole& operator=(const ParentConsole&) = delete;

  private:
    [[maybe_unused]] unsigned codePage_ = 0;  ///< of the console before; 0: nothing to put back
};

}  // namespace orvex
