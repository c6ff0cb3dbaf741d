#include "cli/check_other.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <vector>

#include "cli/commands.h"
#include "cli/tell_findings.h"
#include "cli/terminal.h"
#include "solver/data_files/hull_mesh.h"

namespace qvcli {

namespace {

namespace fs = std::filesystem;

enum class Kind { none, folder, mesh, table, foreign };

/// Beginnings by which files of other programs are known.
struct Signature {
  std::string_view bytes;
  const char* what;
};
constexpr std::array<Signature, 5> k_signatures = {{{"\x89PNG\r\n\x1a\n", "a picture (PNG)"},
                                                    {"\xff\xd8\xff", "a picture (JPEG)"},
                                                    {"GIF8", "a picture (GIF)"},
                                                    {"%PDF-", "a PDF document"},
                                                    {"PK\x03\x04", "a ZIP archive, as spreadsheets are too"}}};

const Signature* signature_of(const std::string& path) {
  std::array<char, 8> head{};
  std::ifstream file(path, std::ios::binary);
  file.read(head.data(), head.size());
  const std::string_view begin(head.data(), static_cast<size_t>(file.gcount()));
  for (const Signature& signature : k_signatures)
    if (begin.substr(0, signature.bytes.size()) == signature.bytes) return &signature;
  return nullptr;
}

Kind kind_of(const std::string& path) {
  std::error_code unreadable;
  if (fs::is_directory(path, unreadable)) return Kind::folder;
  if (!fs::is_regular_file(path, unreadable)) return Kind::none;
  if (signature_of(path) != nullptr) return Kind::foreign;
  const std::string ending = ending_of(path);
  if (ending == ".stl" || ending == ".obj" || ending == ".ply") return Kind::mesh;
  return ending == ".csv" ? Kind::table : Kind::none;
}

/// The files in a folder that `check` can read, in the order of their names.
std::vector<std::string> readable_in(const std::string& folder) {
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    const std::string name = entry.path().filename().string(), ending = ending_of(name);
    const bool known = ending == ".toml" || ending == ".rdf" || ending == ".wave" || ending == ".current";
    if (known && entry.is_regular_file()) names.push_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string about_folder(const std::string& path) {
  if (fs::exists(fs::path(path) / "run.json"))
    return "this is a folder with the results of a run: open its report.html in a browser; check reads single files";
  constexpr size_t k_shown = 8;
  const std::vector<std::string> names = readable_in(path);
  if (names.empty())
    return "this is a folder without a model; check reads a model file, a road, a WAVE or a CURRENT file";
  std::string list;
  for (size_t k = 0; k < std::min(names.size(), k_shown); ++k) list += (k == 0 ? "" : ", ") + names[k];
  if (names.size() > k_shown) list += " and " + std::to_string(names.size() - k_shown) + " more";
  return "this is a folder; check reads single files, here " + list;
}

std::string about_table(const std::string& path) {
  std::ifstream file(path);
  std::string line;
  size_t columns = 0, lines = 0;
  for (; std::getline(file, line); ++lines)
    if (lines == 0) columns = static_cast<size_t>(std::count(line.begin(), line.end(), ',')) + 1;
  return "this is a table of " + std::to_string(lines) + " lines and " + std::to_string(columns) +
         " columns, which no run reads: a curve goes into the model as x and y of a [[spline]], a sea into a .wave "
         "file";
}

std::string about_foreign(const std::string& path) {
  return std::string("this is ") + signature_of(path)->what +
         "; check reads a model file (TOML), a road (.rdf), a WAVE (.wave), a CURRENT (.current) or a mesh file (.stl, "
         ".obj, .ply)";
}

/// Size of a mesh; "not closed" and the like follow as a finding.
void tell_mesh(const std::string& path, const qvslv::TriangleMesh& mesh) {
  const qvslv::MeshMeasures m = qvslv::calc_measures(mesh);
  print(stdout, "%s: a mesh of %zu points, %zu triangles, x %g to %g, y %g to %g, z %g to %g, area %.6g\n",
        path.c_str(), mesh.points.size(), mesh.triangles.size(), m.low[0], m.high[0], m.low[1], m.high[1], m.low[2],
        m.high[2], m.area);
}

void tell_volume(const qvslv::TriangleMesh& mesh) {
  const qvslv::MeshMeasures m = qvslv::calc_measures(mesh);
  print(stdout, "  closed, volume %.6g, centre of volume (%.4g, %.4g, %.4g)\n", m.volume, m.center[0], m.center[1],
        m.center[2]);
  print(stdout, "  can be a hull: mesh = \"...\" in an [[element]] of type \"hull\"\n");
}

qvslv::Findings check_mesh(const std::string& path, bool describe) {
  qvslv::TriangleMesh mesh;
  try {
    mesh = qvslv::read_mesh_file(path);
    if (describe) tell_mesh(path, mesh);
    qvslv::check_hull_mesh(mesh);
    if (describe) tell_volume(mesh);
  } catch (const qvslv::MeshError& error) {
    const std::string verdict = mesh.triangles.empty() ? "" : "cannot be a hull: ";
    return {qvslv::finding_in(path, 0, qvslv::Level::error, "mesh", verdict + error.what())};
  }
  return {};
}

qvslv::Findings findings_in(const std::string& path, bool describe) {
  const auto refused = [&path](const std::string& text) {
    return qvslv::Findings{qvslv::finding_in(path, 0, qvslv::Level::error, "file-kind", text)};
  };
  switch (kind_of(path)) {
    case Kind::folder:
      return refused(about_folder(path));
    case Kind::table:
      return refused(about_table(path));
    case Kind::foreign:
      return refused(about_foreign(path));
    case Kind::mesh:
      return check_mesh(path, describe);
    case Kind::none:
      break;
  }
  return {};
}

}  // namespace

std::string ending_of(const std::string& path) {
  std::string ending = fs::path(path).extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
  return ending;
}

bool is_other_file(const std::string& path) { return kind_of(path) != Kind::none; }

int check_other(const std::string& path, bool json) {
  const qvslv::Findings findings = findings_in(path, !json);
  if (!json) return conclude(findings, "can be used; see the warnings");
  print(stdout, "%s", json_text(findings).c_str());
  return qvslv::any_error(findings) ? k_bad_input : k_done;
}

}  // namespace qvcli
