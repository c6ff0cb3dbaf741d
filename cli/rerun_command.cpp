#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/run_model.h"
#include "cli/terminal.h"
#include "solver/data_files/find_data_file.h"
#include "solver/data_files/input_file.h"
#include "solver/data_files/made_file.h"
#include "solver/read_model.h"

namespace qvcli {

namespace {

using Json = nlohmann::json;

struct RerunRequest {
  std::string folder, out, typed;
  std::string made = qvslv::default_made_folder();
  bool quiet = false, force = false;
};

/// What a run.json says of the run to repeat.
struct EarlierRun {
  std::string model_path, model_text, plugin_path;
  std::vector<std::string> overrides;
  std::vector<qvslv::InputFile> inputs;
  bool complete = false, has_table = true;
};

std::string whole_file(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  if (!stream) throw UsageError("cannot read " + path + ": is this the folder of a run?");
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

EarlierRun read_record(const std::string& path) {
  try {
    const Json json = Json::parse(whole_file(path));
    EarlierRun run;
    run.model_text = json.at("model_text").get<std::string>();
    run.overrides = json.at("overrides").get<std::vector<std::string>>();
    run.complete = json.at("complete").get<bool>();
    if (const Json& settings = json.value("settings", Json::object()); settings.contains("results")) {
      const auto kinds = settings["results"].get<std::vector<std::string>>();
      run.has_table = std::find(kinds.begin(), kinds.end(), "table") != kinds.end();
    }
    for (const Json& entry : json.at("inputs")) {
      qvslv::InputFile input{entry.at("role"), entry.at("name"), entry.at("path")};
      input.digest = {entry.at("bytes").get<std::uintmax_t>(), entry.at("sha256").get<std::string>()};
      if (input.role == "model") run.model_path = input.path;
      if (input.role == "library") run.plugin_path = input.path;
      run.inputs.push_back(std::move(input));
    }
    return run;
  } catch (const Json::exception&) {  // its words would mean nothing to a user
    throw UsageError(path + " is no record of a whole run: the model, its overrides and its inputs are expected in it");
  }
}

/// Tells which inputs are no longer what they were. The model's own file does not count: its text is in the record.
void tell_changes(const EarlierRun& earlier, const std::vector<qvslv::InputFile>& now) {
  for (const qvslv::InputFile& before : earlier.inputs)
    for (const qvslv::InputFile& input : now) {
      if (input.role != before.role || input.name != before.name || before.role == "model") continue;
      if (input.digest.sha256 == before.digest.sha256) continue;
      print(stderr, "warning: the %s %s is not what it was: sha256 %s, now %s\n", before.role.c_str(),
            input.path.c_str(), before.digest.sha256.c_str(), input.digest.sha256.c_str());
    }
}

/// The columns of a results.csv, each as the texts of its cells with the heading first.
std::vector<std::vector<std::string>> columns_of(const std::string& path) {
  std::istringstream stream(whole_file(path));
  std::vector<std::vector<std::string>> columns;
  std::string line;
  while (std::getline(stream, line)) {
    bool quoted = false;
    size_t column = 0;
    std::string cell;
    line += ',';
    for (const char c : line) {
      if (c == '"') quoted = !quoted;
      if (c != ',' || quoted) {
        cell += c;
        continue;
      }
      if (columns.size() <= column) columns.resize(column + 1);
      columns[column++].push_back(std::move(cell));
      cell.clear();
    }
  }
  return columns;
}

/// Says which columns differ. Numbers are written with all their digits, so equal texts are equal bits.
int compare(const std::string& before, const std::string& now) {
  const auto old_columns = columns_of(before + "/results.csv"), new_columns = columns_of(now + "/results.csv");
  const size_t count = std::max(old_columns.size(), new_columns.size());
  size_t different = 0;
  for (size_t i = 0; i < count; ++i) {
    const bool both = i < old_columns.size() && i < new_columns.size();
    if (both && old_columns[i] == new_columns[i]) continue;
    ++different;
    const std::string& name = (i < old_columns.size() ? old_columns : new_columns)[i].front();
    size_t row = 0;
    while (both && row < std::min(old_columns[i].size(), new_columns[i].size()) &&
           old_columns[i][row] == new_columns[i][row])
      ++row;
    print(stdout, "  %s differs%s\n", name.c_str(), both ? (" from row " + std::to_string(row) + " on").c_str() : "");
  }
  if (different == 0) {
    print(stdout, "all %zu columns came out with the same bits\n", count);
    return k_done;
  }
  print(stdout, "%zu of %zu columns came out different\n", different, count);
  return k_fault;
}

int rerun(RerunRequest request) {
  qvslv::EngineLibrary engine;
  const EarlierRun earlier = read_record(request.folder + "/run.json");
  if (!earlier.has_table)
    throw UsageError(request.folder + " holds no table to compare with: its run was asked for other results only");
  if (request.out.empty())
    request.out = std::filesystem::path(request.folder + "/.").lexically_normal().parent_path().string() + "-rerun";
  std::error_code failure;
  if (std::filesystem::equivalent(request.folder, request.out, failure))
    throw UsageError("--out: the new results need another folder than those they are compared with");
  const qvslv::ModelFile file =
      qvslv::read_model_text(earlier.model_text, earlier.model_path, earlier.overrides, request.made);
  RunRequest run;
  run.model = earlier.model_path;
  run.out = request.out;
  run.plugin_path = earlier.plugin_path;
  run.typed = request.typed;
  run.quiet = request.quiet;
  run.force = request.force;
  run.overrides = earlier.overrides;
  const int code = run_model_file(file, run, engine);
  if (code != k_done && earlier.complete) return code;
  tell_changes(earlier, read_record(request.out + "/run.json").inputs);
  return compare(request.folder, request.out);
}

}  // namespace

void add_rerun_command(CLI::App& app, Action& action, const std::string& typed) {
  auto request = std::make_shared<RerunRequest>();
  request->typed = typed;
  CLI::App* command = app.add_subcommand("rerun", "Run again from a run.json and compare the results bit for bit");
  command->add_option("folder", request->folder, "Folder of the earlier run")->required();
  command->add_option("-o,--out", request->out, "Folder for the new results; FOLDER-rerun when not given");
  add_made_option(command, request->made);
  command->add_flag("--force", request->force, "Take the results folder from a run that still goes on");
  command->add_flag("-q,--quiet", request->quiet, "Print warnings, faults and the comparison only");
  command->callback([request, &action] { action = [request] { return rerun(*request); }; });
}

}  // namespace qvcli
