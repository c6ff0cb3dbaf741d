#include "solver/results/run_record.h"

#include <nlohmann/json.hpp>

namespace qvslv {

namespace {

using Json = nlohmann::ordered_json;

const char* outcome_name(RunOutcome outcome) {
  switch (outcome) {
    case RunOutcome::finished:
      return "finished";
    case RunOutcome::interrupted:
      return "interrupted";
    case RunOutcome::stopped:
      return "stopped";
    case RunOutcome::failed:
      return "failed";
  }
  return "failed";
}

Json versions(const RunRecord& record) {
  return {{"qvbrisk", QVBRISK_VERSION}, {"simbody", record.engine_version}, {"compiler", __VERSION__}};
}

Json result_names(const ResultKinds& kinds) {
  Json names = Json::array();
  if (kinds.table) names.push_back("table");
  if (kinds.frames) names.push_back("frames");
  if (kinds.page) names.push_back("page");
  return names;
}

Json settings(const Model& model) {
  const Simulation& s = model.simulation;
  const bool fixed = s.integrator != Integrator::runge_kutta_merson;
  Json json = {{"end_time", s.end_time},
               {"output_step", s.output_step},
               {"frame_step", find_frame_step(s)},
               {"frames_thinned", thins_frames(s)},
               {"results", result_names(s.results)},
               {"integrator", integrator_name(s.integrator)}};
  if (fixed) {
    json["step"] = s.step;
  } else {
    json["accuracy"] = s.accuracy;
    if (s.smallest_motion > 0) json["smallest_motion"] = s.smallest_motion;
    if (s.max_step > 0) json["max_step"] = s.max_step;
  }
  json["gravity"] = model.gravity;
  const Units& u = model.units;
  json["units"] = {{"length", u.length}, {"mass", u.mass}, {"time", u.time}, {"force", u.force}, {"angle", u.angle}};
  return json;
}

Json inputs(const RunRecord& record) {
  Json list = Json::array();
  for (const InputFile& input : record.inputs)
    list.push_back({{"role", input.role},
                    {"name", input.name},
                    {"path", input.path},
                    {"bytes", input.digest.bytes},
                    {"sha256", input.digest.sha256}});
  return list;
}

Json warnings(const RunRecord& record) {
  Json list = Json::array();
  for (const Finding& finding : record.warnings)
    list.push_back({{"id", finding.id},
                    {"file", finding.at.file},
                    {"line", finding.at.line},
                    {"column", finding.at.column},
                    {"text", finding.text}});
  return list;
}

Json time_spent(const RunRecord& record) {
  Json list = Json::array();
  for (const TimeShare& entry : record.time_spent) {
    Json json = {{"part", entry.part}};
    if (!entry.element.empty()) json["element"] = entry.element;
    json["seconds"] = entry.seconds;
    json["share"] = entry.share;
    list.push_back(json);
  }
  return list;
}

Json run_summary(const Model& model, const RunRecord& record) {
  const RunSummary& summary = record.summary;
  Json json;
  json["title"] = model.title;
  json["model"] = model.path;
  json["library"] = record.plugin_path;
  json["command"] = record.command;
  json["overrides"] = record.overrides;
  json["versions"] = versions(record);
  json["settings"] = settings(model);
  json["started"] = record.started;
  json["outcome"] = record.running ? "running" : outcome_name(summary.outcome);
  json["complete"] = !record.running && summary.outcome == RunOutcome::finished;
  json["message"] = summary.message;
  json["warnings"] = warnings(record);
  json["messages"] = record.messages;
  json["time_reached"] = summary.time;
  json["wall_seconds"] = summary.wall_seconds;
  json["time_spent"] = time_spent(record);
  json["steps"] = summary.steps;
  json["evaluations"] = summary.evaluations;
  json["files"] = summary.files;
  json["inputs"] = inputs(record);
  return json;
}

// A text that is no UTF-8 (a subroutine's message) must not fail the run: its bad bytes are replaced.
std::string text_of(const Json& json) { return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n'; }

}  // namespace

std::string run_summary_text(const Model& model, const RunRecord& record) {
  return text_of(run_summary(model, record));
}

std::string run_record_text(const Model& model, const RunRecord& record) {
  Json json = run_summary(model, record);
  json["model_text"] = record.model_text;
  json["resolved_model"] = Json::parse(record.resolved_model, nullptr, false);
  if (json["resolved_model"].is_discarded()) json["resolved_model"] = nullptr;  // a model that was built in memory
  return text_of(json);
}

}  // namespace qvslv
