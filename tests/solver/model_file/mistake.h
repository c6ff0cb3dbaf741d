#pragma once

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "solver/read_model.h"

/// One mistake: a passage of a correct model, what it was turned into, and the first line of what the user sees.
/// docs/bad-input.md shows the same rows.
struct mistake {
  const char* why;
  const char* from;
  const char* to;
  const char* message;
};

inline std::string message_of(const std::string& text, const std::vector<std::string>& overrides) {
  try {
    qvslv::read_model_text(text, "model.toml", overrides);
  } catch (const qvslv::ModelError& error) {
    return error.what();
  }
  return "no mistake was found";
}

/// The first line, without the folder the test happens to run in.
inline std::string comparable(std::string message) {
  message = message.substr(0, message.find('\n'));
  const size_t folder = message.find("beside the model in ");
  if (folder == std::string::npos) return message;
  const size_t begin = folder + std::string("beside the model in ").size(), end = message.find(" (", begin);
  return message.replace(begin, end - begin, "<folder>");
}

/// The text of docs/bad-input.md.
inline std::string bad_input_page() {
  std::ifstream stream(QVBRISK_BAD_INPUT_PAGE);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

/// A message as it stands in a table of that page.
inline std::string in_table(const std::string& message) {
  std::string cell;
  for (const char c : message) cell += c == '|' ? std::string("\\|") : std::string(1, c);
  return cell;
}
