#include "common/call/messages.h"

#include <cstring>

#include "common/call/entry_frame.h"

namespace qv {
namespace {

char* copy_text(const std::string& text) {
  char* copy = new char[text.size() + 1];
  std::memcpy(copy, text.c_str(), text.size() + 1);
  return copy;
}

}  // namespace

void add_message(const std::string& text, int& ierr, char** msg) {
  if (ierr >= k_message_slots) return;
  msg[ierr] = copy_text(text);
  ++ierr;  // after the copy, which may throw: the count never covers an empty slot
}

void set_first_message(const std::string& text, int& ierr, char** msg) {
  msg[0] = copy_text(text);
  ierr = 1;
}

void fault(const std::string& text, int& ierr, char** msg) {
  add_message(text, ierr, msg);
  throw 1;
}

void fault(const fault_channel& channel, const std::string& detail) {
  fault(channel.prefix + detail, channel.ierr, channel.msg);
}

void first_fault(const std::string& text, int& ierr, char** msg) {
  set_first_message(text, ierr, msg);
  throw 1;
}

}  // namespace qv
