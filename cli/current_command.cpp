#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>

#include "cli/check_water.h"
#include "cli/commands.h"
#include "cli/terminal.h"
#include "solver/data_files/current_file.h"
#include "solver/data_files/make_current.h"

namespace qvcli {

namespace {

struct CurrentRequest {
  std::string along_x = "none", along_y = "none", out;
};

qvslv::CurrentProfile profile_of(const char* option, const std::string& text) {
  try {
    return qvslv::parse_profile(text);
  } catch (const std::invalid_argument& error) {
    throw UsageError(std::string(option) + " " + error.what());
  }
}

int make_current(const CurrentRequest& request) {
  const qvslv::CurrentSettings settings{profile_of("--along-x", request.along_x),
                                        profile_of("--along-y", request.along_y)};
  const std::string mistake = qvslv::mistake_in(settings);
  if (!mistake.empty()) throw UsageError(mistake);
  qvslv::write_current_file(settings, request.out);
  const qvslv::CurrentFile current = qvslv::current_tables(settings);
  print(stdout, "made current %s\n", request.out.c_str());
  tell_current_table("x", current.along_x);
  tell_current_table("y", current.along_y);
  return k_done;
}

}  // namespace

void add_make_current(CLI::App& make, Action& action) {
  auto request = std::make_shared<CurrentRequest>();
  CLI::App* current = make.add_subcommand("current", "Make a CURRENT file: horizontal speed of the water");
  current->footer(
      "PROFILE is one of\n"
      "  none\n"
      "  uniform:SPEED                        the same everywhere\n"
      "  linear:SPEED:SPEED@AXIS:BEGIN:END    straight from the first speed at BEGIN to the second at END\n"
      "  power:SPEED@AXIS:BEGIN:END           1/7 power law: 0 at BEGIN, as at a bank, SPEED at END\n"
      "AXIS is y (held beyond the ends) or x (0 beyond the ends). Example: --along-x power:1.5@y:0:40");
  current->add_option("-o,--out", request->out, "CURRENT file to write")->required();
  current->add_option("--along-x", request->along_x, "Speed along the water marker's x axis")
      ->type_name("PROFILE")
      ->capture_default_str();
  current->add_option("--along-y", request->along_y, "Speed along the water marker's y axis")
      ->type_name("PROFILE")
      ->capture_default_str();
  current->callback([request, &action] { action = [request] { return make_current(*request); }; });
}

}  // namespace qvcli
