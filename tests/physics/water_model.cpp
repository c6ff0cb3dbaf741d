#include "tests/physics/water_model.h"

#include <gtest/gtest.h>

#include <sstream>

namespace qvtest {

namespace {

std::string digits(double value) {
  std::ostringstream out;
  out.imbue(std::locale::classic());
  out.precision(17);
  out << value;
  return out.str();
}

}  // namespace

std::string water_head(const std::string& control) {
  return R"toml(gravity = [0, 0, -9.81]
[simulation]
end_time = "end"
output_step = "row"
frame_step = "end"
)toml" + control +
         R"toml(
[[marker]]
name = "water"
body = "ground"
position = [-500, 0, 0]
)toml";
}

std::string steady_steps() { return "integrator = \"runge-kutta-fixed\"\nstep = \"longest\"\n"; }

std::string hull_element(const std::string& mesh, const std::string& more, const std::string& wave) {
  return "[[element]]\nname = \"hull\"\ntype = \"hull\"\nbody = \"boat\"\nmesh = " + mesh +
         "\nwater = \"water\"\nwave = \"" + wave + "\"\ncurrent = \"stream.current\"\ndensity = 1000\n" + more;
}

ResultTable run_afloat(const std::string& model, const Parameters& parameters, double stream, std::string* record) {
  const std::filesystem::path folder = fresh_folder();
  write_text(folder / "calm.wave", "2,2\n0,1000\n0,0,0,0,0\n1e6,0,0,0,0\n");
  write_text(folder / "stream.current", "1,0\n0," + digits(stream) + "\n1,0\n0,0\n");
  std::string text = model + "[parameters]\n";
  for (const auto& [name, value] : parameters) text += name + " = " + digits(value) + "\n";
  write_text(folder / "model.toml", text);
  const CommandResult result = run_command({"run", "model.toml", "--out", "results", "--quiet"}, folder);
  EXPECT_EQ(result.code, 0) << result.out << result.err;
  ResultTable table(folder / "results/results.csv");
  if (record != nullptr) *record = file_text(folder / "results/run.json");
  return table;
}

double period_of(const std::vector<double>& time, const std::vector<double>& values) {
  std::vector<double> rising;  // times at which the value passes 0 upwards
  for (size_t i = 1; i < time.size(); ++i) {
    if (!(values[i - 1] < 0 && values[i] >= 0)) continue;
    const double share = values[i - 1] / (values[i - 1] - values[i]);
    rising.push_back(time[i - 1] + share * (time[i] - time[i - 1]));
  }
  if (rising.size() < 2) return 0;
  return (rising.back() - rising.front()) / static_cast<double>(rising.size() - 1);
}

}  // namespace qvtest
