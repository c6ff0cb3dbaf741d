#include "solver/data_files/water_check.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "solver/data_files/made_line.h"
#include "solver/data_files/table_tokens.h"
#include "solver/data_files/wave_reading.h"
#include "solver/model/number_text.h"

namespace qvslv {

namespace {

Finding warning(const char* id, int line, const std::string& text) { return {Level::warning, id, {"", line, 0}, text}; }

Finding error(const char* id, int line, const std::string& text) {
  return finding_in("", line, Level::error, id, text);
}

/// Notes trouble that the tokens themselves show: a part of a number taken for a separator, or an end of the file
/// before the counts are fulfilled.
void note_tokens(const TableTokens& tokens, Findings& found) {
  if (tokens.odd_line() != 0)
    found.push_back(
        warning("table-separator", tokens.odd_line(),
                std::string("'") + tokens.odd_separator() +
                    "' was taken for the separator between two numbers, which may be any one character; put a "
                    "comma between all of them (a point is the decimal sign)"));
  if (!tokens.stopped()) return;
  const std::string cause =
      tokens.stop_word().empty() ? "the file ends here" : "'" + tokens.stop_word() + "' cannot be read";
  found.push_back(
      warning("table-cut-off", tokens.stop_line(), cause + ", but the counts promise more; all the rest stays 0"));
}

void note_refused_count(const char* name, const char* what, int count, Findings& found) {
  if (count <= 0)
    found.push_back(error("table-count", 0,
                          std::string("the number of ") + what + " (" + name + ") is " + std::to_string(count) +
                              "; it must be 1 or more"));
}

/// Notes numbers behind the last one that is read. Any other text there is a remark and does no harm.
void note_what_follows(const std::string& text, TableTokens& tokens, Findings& found) {
  if (tokens.stopped()) return;
  const size_t next = text.find_first_not_of(" \t\n\v\f\r,;", tokens.position());
  if (next == std::string::npos || std::string("0123456789.+-").find(text[next]) == std::string::npos) return;
  const auto lines = std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(next), '\n');
  found.push_back(warning("table-more-numbers", static_cast<int>(lines) + 1,
                          "more numbers follow than the counts promise; they are not read"));
}

/// Notes the first entry of an axis that is not greater than the one before it.
void note_axis(const std::vector<double>& axis, const char* what, Findings& found) {
  for (size_t i = 1; i < axis.size(); ++i) {
    if (axis[i] > axis[i - 1]) continue;
    found.push_back(warning("table-axis", 0,
                            std::string(what) + " must increase; number " + std::to_string(i + 1) + " is " +
                                number_text(axis[i]) + " after " + number_text(axis[i - 1])));
    return;
  }
}

void note_positions(const std::vector<double>& x, Findings& found) {
  if (x.size() == 1)
    found.push_back(
        warning("wave-one-position", 0, "there is one position only: no point of a hull ever lies between two"));
  if (x.front() > 0)
    found.push_back(warning("wave-begins-late", 0,
                            "the positions begin at " + number_text(x.front()) +
                                ": between 0 and there the water stands at 0; let them begin at 0"));
  if (x.front() < 0)
    found.push_back(warning("wave-begins-early", 0,
                            "the positions begin at " + number_text(x.front()) +
                                ": below 0 the table is not used, the water is level and there is no drag; "
                                "move the water marker and begin at 0"));
}

void note_current_table(const CurrentTable& table, const std::string& which, Findings& found) {
  if (table.mode != 0 && table.mode != 1)
    found.push_back(warning("current-mode", 0,
                            "mode " + std::to_string(table.mode) + " of the table along " + which +
                                " acts like 0 (over y); write 0, or 1 for a table over x"));
  if (table.mode == 1 && table.key.size() == 1)
    found.push_back(
        warning("current-one-pair", 0,
                "the table along " + which + " has one pair and mode 1: no position lies between two, the speed is 0"));
  note_axis(table.key, ("the keys of the table along " + which).c_str(), found);
}

}  // namespace

namespace {

WaveCheck check_wave(const std::string& text) {
  WaveCheck check;
  TableTokens tokens(text);
  const WaveHeader header = read_wave_header(tokens);
  note_refused_count("T", "times", header.rows, check.found);
  note_refused_count("X", "positions", header.columns, check.found);
  if (check.found.empty() && cannot_hold(header, text.size()))
    check.found.push_back(
        error("table-too-large", 1, "the counts declare a table of more than 1 GiB, which the file cannot fill"));
  if (check.found.empty()) check.wave = read_wave_table(tokens, header);
  note_tokens(tokens, check.found);
  if (!check.wave) return check;
  note_what_follows(text, tokens, check.found);
  if (tokens.stopped()) return check;
  note_axis(check.wave->time, "the times", check.found);
  note_axis(check.wave->x, "the positions", check.found);
  note_positions(check.wave->x, check.found);
  return check;
}

CurrentCheck check_current(const std::string& text) {
  CurrentCheck check;
  TableTokens tokens(text);
  const auto read = [&](const char* name, const std::string& which, CurrentTable& table) {
    int declared = 0;
    table = read_current_table(tokens, declared);
    note_refused_count(name, ("pairs of the table along " + which).c_str(), declared, check.found);
    if (declared > 0 && table.key.empty())
      check.found.push_back(error("table-too-large", 0,
                                  "the table along " + which + " is of more than 1 GiB, which the file cannot fill"));
    if (!table.key.empty() && !tokens.stopped()) note_current_table(table, which, check.found);
  };
  read("C1", "x", check.current.along_x);
  read("C2", "y", check.current.along_y);
  note_tokens(tokens, check.found);
  note_what_follows(text, tokens, check.found);
  return check;
}

void note_tampering(const std::optional<Tampering>& tampering, Findings& found) {
  if (tampering) found.push_back(warning("made-file-changed", tampering->line, tampering_text(*tampering)));
}

template <class Check>
Check with_path(Check check, const std::string& path) {
  for (Finding& finding : check.found) finding.at.file = path;
  return check;
}

}  // namespace

WaveCheck check_wave_text(const std::string& text, const std::string& path) {
  WaveCheck check = check_wave(text);
  note_tampering(find_tampering_in_wave(text), check.found);
  return with_path(std::move(check), path);
}

CurrentCheck check_current_text(const std::string& text, const std::string& path) {
  CurrentCheck check = check_current(text);
  note_tampering(find_tampering_in_current(text), check.found);
  return with_path(std::move(check), path);
}

}  // namespace qvslv
