#include "solver/data_files/made_line.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <stdexcept>
#include <vector>

namespace qvslv {

namespace {

/// What a made-by line holds behind its mark: items apart by ", ", each a word and what belongs to it.
using Items = std::map<std::string, std::string>;

std::vector<std::string> split(const std::string& text, const std::string& separator) {
  std::vector<std::string> parts;
  size_t from = 0;
  for (size_t at; (at = text.find(separator, from)) != std::string::npos; from = at + separator.size())
    parts.push_back(text.substr(from, at - from));
  parts.push_back(text.substr(from));
  return parts;
}

Items items_of(const std::string& line) {
  Items items;
  const std::string mark = k_made_mark;
  if (line.rfind(mark, 0) != 0) return items;
  for (const std::string& part : split(line.substr(mark.size()), ", ")) {
    const size_t blank = part.find(' ');
    items[part.substr(0, blank)] = blank == std::string::npos ? "" : part.substr(blank + 1);
  }
  return items;
}

/// Reads words one after another. A word that is missing or no number makes 0: settings_line of what was read differs
/// from the line then, by which the reader tells.
class Words {
public:
  Words(const Items& items, const std::string& key) {
    const auto found = items.find(key);
    if (found != items.end()) m_words = split(found->second, " ");
  }
  std::string text() { return m_next < m_words.size() ? m_words[m_next++] : ""; }
  template <class Number = double>
  Number number() {
    const std::string word = text();
    Number value{};
    std::from_chars(word.data(), word.data() + word.size(), value);
    return value;
  }
  void skip(size_t count) { m_next += count; }

private:
  std::vector<std::string> m_words;
  size_t m_next = 0;
};

template <class Settings>
std::optional<Settings> if_exact(const Settings& settings, const std::string& line) {
  if (!mistake_in(settings).empty() || settings_line(settings) != line) return std::nullopt;
  return settings;
}

RoadKind road_kind(const std::string& name) {
  if (name == "slope") return RoadKind::slope;
  if (name == "sine") return RoadKind::sine;
  return name == "rolling" ? RoadKind::rolling : RoadKind::flat;
}

RoadSoil read_soil(Words& words) {
  RoadSoil soil;
  for (double* value :
       {&soil.sinkage_exponent, &soil.cohesive_coeff, &soil.frictional_coeff, &soil.cohesion, &soil.friction_angle,
        &soil.shear_displacement, &soil.sensitivity, &soil.damp_ratio, &soil.boundary_sinkage})
    *value = words.number();
  return soil;
}

/// "60 in steps of 0.16"
void read_axis(const Items& items, const char* key, double& end, double& step) {
  Words words(items, key);
  end = words.number();
  words.skip(3);
  step = words.number();
}

std::string line_at(const std::string& text, size_t& from) {
  const size_t end = std::min(text.find('\n', from), text.size());
  std::string line = text.substr(from, end - from);
  from = end + 1;
  return line;
}

/// The first line in which two texts differ; none if they are equal.
std::optional<Tampering> first_difference(const std::string& is, const std::string& should) {
  if (is == should) return std::nullopt;
  const auto differ = std::mismatch(is.begin(), is.end(), should.begin(), should.end()).first;
  const auto number = std::count(is.begin(), differ, '\n');
  size_t from = static_cast<size_t>(differ - is.begin());
  from = from == 0 ? 0 : is.rfind('\n', from - 1) + 1;  // npos + 1 is 0
  size_t other = from;
  return Tampering{static_cast<int>(number) + 1, from < is.size() ? line_at(is, from) : "",
                   other < should.size() ? line_at(should, other) : ""};
}

/// Whether a file of so many bytes can hold what the settings make. What it cannot hold is not made: a short text could
/// otherwise ask for gigabytes.
bool can_hold(const RoadSettings& settings, size_t bytes) {
  constexpr double k_least_line = 8;  // "1 2 3 0" and a line end
  return static_cast<double>(triangle_count(settings)) * k_least_line <= static_cast<double>(bytes);
}
bool can_hold(const WaveSettings& settings, size_t bytes) {
  constexpr double k_least_point = 4;  // elevation and velocity, "0,0,"
  return static_cast<double>(time_rows(settings)) * columns_along_x(settings) * k_least_point <=
         static_cast<double>(bytes);
}

/// A file that is too short for its settings.
Tampering cut_off() { return {}; }

/// A line with the mark that names no settings, or impossible ones.
Tampering unreadable(const std::string& text, const std::string& line) {
  const auto begin = text.begin() + static_cast<std::ptrdiff_t>(text.find(line));
  return {static_cast<int>(std::count(text.begin(), begin, '\n')) + 1, line, ""};
}

std::string shortened(const std::string& line) {
  constexpr size_t k_longest = 60;
  return line.size() <= k_longest ? line : line.substr(0, k_longest) + "...";
}

}  // namespace

std::optional<RoadSettings> road_settings_in(const std::string& line) {
  const Items items = items_of(line);
  RoadSettings s;
  s.kind = road_kind(Words(items, "kind").text());
  Words size(items, "size"), corner(items, "corner"), soil(items, "soil"), units(items, "units");
  s.size_x = size.number();
  s.size_y = size.number();
  s.corner_x = corner.number();
  s.corner_y = corner.number();
  s.spacing = Words(items, "spacing").number();
  s.height = Words(items, "height").number();
  s.grade = Words(items, "grade").number();
  s.amplitude = Words(items, "amplitude").number();
  s.wavelength = Words(items, "wavelength").number();
  s.seed = Words(items, "seed").number<std::uint64_t>();
  s.soil_name = soil.text();
  s.soil = read_soil(soil);
  for (std::string* unit : {&s.units.length, &s.units.force, &s.units.mass, &s.units.time}) *unit = units.text();
  return if_exact(s, line);
}

std::optional<WaveSettings> wave_settings_in(const std::string& line) {
  const Items items = items_of(line);
  const std::string kind = Words(items, "wave").text();
  const std::vector<std::string>& kinds = wave_kind_names();
  if (std::find(kinds.begin(), kinds.end(), kind) == kinds.end()) return std::nullopt;
  WaveSettings s;
  s.kind = wave_kind(kind);
  s.height = Words(items, "height").number();
  s.period = Words(items, "period").number();
  if (items.count("gamma") != 0) s.gamma = Words(items, "gamma").number();
  if (items.count("seed") != 0) s.seed = Words(items, "seed").number<std::uint64_t>();
  if (items.count("components") != 0) s.components = Words(items, "components").number<int>();
  s.depth = Words(items, "depth").number();
  s.against_x = Words(items, "direction").text() == "-x";
  s.ramp = Words(items, "ramp").number();
  read_axis(items, "duration", s.duration, s.time_step);
  read_axis(items, "extent", s.extent, s.x_step);
  s.gravity = Words(items, "gravity").number();
  return if_exact(s, line);
}

std::optional<CurrentSettings> current_settings_in(const std::string& line) {
  const std::string mark = std::string(k_made_mark) + "current along x ", between = ", along y ";
  const size_t second = line.find(between);
  if (line.rfind(mark, 0) != 0 || second == std::string::npos) return std::nullopt;
  try {
    const CurrentSettings settings{parse_profile(line.substr(mark.size(), second - mark.size())),
                                   parse_profile(line.substr(second + between.size()))};
    return if_exact(settings, line);
  } catch (const std::invalid_argument&) {
    return std::nullopt;  // the caller says that the line is none of ours
  }
}

std::string made_line_at_head(const std::string& text) {
  constexpr int k_head_lines = 5;  // as many as road_file_state looks at
  size_t from = 0;
  for (int i = 0; i < k_head_lines && from < text.size(); ++i) {
    std::string line = line_at(text, from);
    if (line.rfind(k_made_mark, 0) == 0) return line;
  }
  return "";
}

std::string made_line_at_end(const std::string& text) {
  size_t end = text.size();
  while (end > 0 && text[end - 1] == '\n') --end;
  const size_t before = end == 0 ? std::string::npos : text.rfind('\n', end - 1);
  std::string line = text.substr(before + 1, end - before - 1);  // npos + 1 is 0
  return line.rfind(k_made_mark, 0) == 0 ? line : "";
}

std::optional<Tampering> find_tampering_in_road(const std::string& text) {
  const std::string line = made_line_at_head(text);
  if (line.empty()) return std::nullopt;
  const std::optional<RoadSettings> settings = road_settings_in(line);
  if (!settings) return unreadable(text, line);
  return can_hold(*settings, text.size()) ? first_difference(text, road_text(*settings)) : cut_off();
}

std::optional<Tampering> find_tampering_in_wave(const std::string& text) {
  const std::string line = made_line_at_end(text);
  if (line.empty()) return std::nullopt;
  const std::optional<WaveSettings> settings = wave_settings_in(line);
  if (!settings) return unreadable(text, line);
  return can_hold(*settings, text.size()) ? first_difference(text, wave_text(wave_table(*settings), line)) : cut_off();
}

std::optional<Tampering> find_tampering_in_current(const std::string& text) {
  const std::string line = made_line_at_end(text);
  if (line.empty()) return std::nullopt;
  const std::optional<CurrentSettings> settings = current_settings_in(line);
  return settings ? first_difference(text, current_text(current_tables(*settings), line)) : unreadable(text, line);
}

std::string tampering_text(const Tampering& tampering) {
  if (tampering.line == 0)
    return "the file is shorter than what its made-by line makes; take that line out, or make the file anew";
  const bool settings = tampering.is.rfind(k_made_mark, 0) == 0;
  if (settings) return "this line tells no settings that qvbrisk makes a file of; take it out, or make the file anew";
  return "'" + shortened(tampering.is) + "' is not what the file's made-by line makes, '" +
         shortened(tampering.should) +
         "': the file was changed by hand or made by another version; take the made-by line out, or make the file anew";
}

}  // namespace qvslv
