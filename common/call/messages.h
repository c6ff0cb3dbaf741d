#pragma once

#include <string>

/// The message channel: `ierr` counts the texts stored in `msg` so far, the first slot holds the first message.
/// Texts come from array new and belong to the host once reported.
namespace qv {

/// Stores a text in the next slot. A full channel keeps what it has: nobody reads past the last slot.
/// Throws std::bad_alloc and leaves the channel as it was if the text cannot be copied.
void add_message(const std::string& text, int& ierr, char** msg);

/// Stores a text in the first slot and sets the count to 1, whatever stood there.
void set_first_message(const std::string& text, int& ierr, char** msg);

/// add_message, then throws the integer 1: no standard exception, so it passes the modules' handlers and reaches
/// the frame.
[[noreturn]] void fault(const std::string& text, int& ierr, char** msg);

/// set_first_message, then throws the integer 1.
[[noreturn]] void first_fault(const std::string& text, int& ierr, char** msg);

/// The channel of a module, for the functions behind its entry.
struct fault_channel {
  const char* prefix;  ///< what the module's messages begin with; ends with a blank
  int& ierr;
  char** msg;
};

/// fault, with the module's prefix and what went wrong.
[[noreturn]] void fault(const fault_channel& channel, const std::string& detail);

}  // namespace qv
