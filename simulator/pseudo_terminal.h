// The unit's end of a serial line: a pseudo-terminal that programs open like a port.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace chanplan {

/// Opened by the constructor in raw mode; throws std::system_error. The destructor hangs up.
class PseudoTerminal {
 public:
  /// `link`, unless empty, is made a symbolic link to the terminal. It replaces another symbolic
  /// link, never a file.
  explicit PseudoTerminal(const std::string& link);
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;
  ~PseudoTerminal();

  /// The path by which programs open the line.
  const std::string& Path() const { return path; }

  /// Whether no program has the line open. One that a program kept for itself and was killed is free again then.
  bool IsUnused();

  /// Waits up to `longest` for bytes from the program at the other end and returns them.
  std::string Read(std::chrono::milliseconds longest);
  /// Sends what the line takes at once; returns how many bytes that were.
  std::size_t Write(std::string_view bytes);

 private:
  // Closes itself, also when the constructor does not come to its end.
  struct Descriptor {
    int Number = -1;
    ~Descriptor();
  };

  Descriptor unitEnd;
  Descriptor programEnd;  // kept open, so that the line stays up between two programs
  std::string path;
  std::string linkPath;
};

}  // namespace chanplan
