#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "solver/data_files/make_current.h"
#include "solver/model/nearest_name.h"
#include "solver/model/number_text.h"

namespace qvslv {

namespace {

constexpr const char* k_forms = "none, uniform:SPEED, linear:SPEED:SPEED@AXIS:BEGIN:END or power:SPEED@AXIS:BEGIN:END";

[[noreturn]] void wrong(const std::string& text, const std::string& cause) {
  throw std::invalid_argument("'" + text + "': " + cause);
}

std::vector<std::string> parts_of(const std::string& text) {
  std::vector<std::string> parts(1);
  for (const char c : text) {
    if (c == ':') {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  return parts;
}

double number_in(const std::string& part, const std::string& text) {
  double value = 0;
  const char* first = part.data() + (part.size() > 1 && part[0] == '+' ? 1 : 0);
  const char* last = part.data() + part.size();
  const auto end = std::from_chars(first, last, value);
  if (end.ec != std::errc() || end.ptr != last) wrong(text, "'" + part + "' is no number");
  return value;
}

/// Reads what stands behind the @: the axis and two positions.
void take_stretch(CurrentProfile& profile, const std::string& stretch, const std::string& text) {
  const std::vector<std::string> parts = parts_of(stretch);
  if (parts.size() != 3 || (parts[0] != "x" && parts[0] != "y"))
    wrong(text, "behind the @ an axis and two positions are expected, for instance @y:0:40");
  profile.over_x = parts[0] == "x";
  profile.begin = number_in(parts[1], text);
  profile.end = number_in(parts[2], text);
}

}  // namespace

CurrentProfile parse_profile(const std::string& text) {
  const size_t at = text.find('@');
  const std::vector<std::string> parts = parts_of(text.substr(0, at));
  const std::vector<std::string>& names = profile_kind_names();
  const auto name = std::find(names.begin(), names.end(), parts[0]);
  if (name == names.end()) wrong(text, "'" + parts[0] + "' is not known; " + name_hint(parts[0], names));
  CurrentProfile profile;
  profile.kind = static_cast<ProfileKind>(name - names.begin());
  const bool linear = profile.kind == ProfileKind::linear;
  const size_t speeds = profile.kind == ProfileKind::none ? 0 : linear ? 2 : 1;
  if (parts.size() != speeds + 1) wrong(text, std::string("a profile is ") + k_forms);
  if (speeds > 0) profile.speed = number_in(parts[1], text);
  if (linear) profile.speed_end = number_in(parts[2], text);
  const bool has_stretch = linear || profile.kind == ProfileKind::power;
  if (has_stretch != (at != std::string::npos)) wrong(text, std::string("a profile is ") + k_forms);
  if (has_stretch) take_stretch(profile, text.substr(at + 1), text);
  return profile;
}

std::string profile_text(const CurrentProfile& p) {
  std::string text = profile_kind_names()[static_cast<size_t>(p.kind)];
  if (p.kind == ProfileKind::none) return text;
  text += ":" + number_text(p.speed);
  if (p.kind == ProfileKind::uniform) return text;
  if (p.kind == ProfileKind::linear) text += ":" + number_text(p.speed_end);
  return text + (p.over_x ? "@x:" : "@y:") + number_text(p.begin) + ":" + number_text(p.end);
}

}  // namespace qvslv
