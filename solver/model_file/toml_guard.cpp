#include "solver/model_file/toml_guard.h"

#include <cstddef>

#include "solver/model/model.h"

namespace qvslv {

namespace {

/// Walks over a text and counts dots up to the next character that ends a key; dots in texts and comments do not count.
class DotCount {
public:
  DotCount(std::string_view text, const std::string& file) : m_text(text), m_file(file) {}

  void run() {
    while (m_at < m_text.size()) {
      const char c = m_text[m_at];
      if (c == '"' || c == '\'') {
        pass_text(c);
      } else if (c == '#') {
        while (m_at < m_text.size() && m_text[m_at] != '\n') ++m_at;
      } else {
        count(c);
        step();
      }
    }
  }

private:
  void step() { m_line += m_text[m_at++] == '\n' ? 1 : 0; }

  void count(char c) {
    constexpr int k_most = 10;  // no key of a model file has more parts
    if (std::string_view("=,{}[]\n").find(c) != std::string_view::npos) m_parts = 1;
    if (c == '.' && ++m_parts > k_most)
      throw ModelError({m_file, m_line, 1},
                       "a key of more than " + std::to_string(k_most) + " parts; is a dot too many?");
  }

  /// Goes behind a text in quotes, or in three of them, which may have several lines.
  void pass_text(char quote) {
    const std::string_view three = quote == '"' ? "\"\"\"" : "'''";
    const bool many_lines = m_text.substr(m_at, 3) == three;
    const std::string_view end = many_lines ? three : three.substr(0, 1);
    m_at += end.size();
    while (m_at < m_text.size() && m_text.substr(m_at, end.size()) != end) {
      if (!many_lines && m_text[m_at] == '\n') return;  // the parser will say so
      if (quote == '"' && m_text[m_at] == '\\' && m_at + 1 < m_text.size() && m_text[m_at + 1] != '\n') ++m_at;
      step();
    }
    m_at += end.size();
  }

  std::string_view m_text;
  const std::string& m_file;
  std::size_t m_at = 0;
  int m_line = 1, m_parts = 1;
};

}  // namespace

void refuse_deep_keys(std::string_view text, const std::string& file) { DotCount(text, file).run(); }

}  // namespace qvslv
