#include "tests/soilinteraction/soil_scene.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "qvbrisk/subroutines.h"
#include "tests/support/exact_text.h"

namespace qvtest {
namespace {

int roads_taken = 0;

std::string key(const char* name, double value) { return std::string(name) + " = " + exact_text(value) + "\n"; }

std::string soil_text(const qvref::soil& s) {
  return "SOIL_TYPE=" + s.type + "\n" + key("COEFFICIENT_DS", s.coefficient_ds) +
         key("CRITICAL_PRESSUR", s.critical_pressure) + key("EXPONENT_PR", s.exponent_pr) +
         key("EXPONENT_SD", s.exponent_sd) + "NORMAL_PRESSURE=BEKKER\n" + key("COHESIVE_COEFF", s.kc) +
         key("FRICTIONAL_COEFF", s.kphi) + key("SINKAGE_EXPONENT", s.n) + key("DAMP_RATIO", s.damp_ratio) +
         key("BOUNDARY_SINKAGE", s.boundary_sinkage) + "SHEAR_PRESSURE=WONG\n" + key("COHESION", s.cohesion) +
         key("SENSITIVITY", s.sensitivity) + key("MAX_SHEAR_DISP", s.max_shear_disp) +
         key("FRICTION_ANGLE", s.friction_angle / 0.017453292519943295);
}

}  // namespace

int fresh_road() {
  if (roads_taken == k_roads) std::abort();
  return roads_taken++;
}

bool module_is_in_use() { return roads_taken > 0; }

void write_text(const std::string& path, const std::string& text) {
  std::ofstream file(path, std::ios::binary);
  file << text;
  if (!file.flush()) std::abort();
}

std::string rdf_text(const soil_mesh& mesh, const qvref::soil& soil) {
  std::string text = "FILE_TYPE = 'RDF'\nFILE_VERSION = 1\nLENGTH = 'M'\nFORCE = 'N'\nANGLE = 'DEG'\nMASS = 'KG'\n";
  text += "TIME = 'SEC'\nMETHOD = '3D_SOIL'\n" + soil_text(soil);
  text += "NUMBER_OF_NODES = " + std::to_string(mesh.nodes.size()) + "\n{ node x y z }\n";
  int k = 0;
  for (const qvref::v3& node : mesh.nodes) {
    text +=
        std::to_string(++k) + " " + exact_text(node[0]) + " " + exact_text(node[1]) + " " + exact_text(node[2]) + "\n";
  }
  text += "\nNUMBER_OF_ELEMENTS = " + std::to_string(mesh.triangles.size()) + "\n{ K L M value }\n";
  for (const auto& t : mesh.triangles) {
    text += std::to_string(t[0]) + " " + std::to_string(t[1]) + " " + std::to_string(t[2]) + " 0\n";
  }
  return text + "\n";
}

qvref::soil loam() {
  qvref::soil s;
  s.kc = 5270.0;
  s.kphi = 1515040.0;
  s.n = 0.7;
  s.damp_ratio = 0.02;
  s.boundary_sinkage = 0.05;
  s.cohesion = 1720.0;
  s.sensitivity = 1.5;
  s.max_shear_disp = 0.025;
  s.friction_angle = 0.5061454830783556;  // 29 degrees
  return s;
}

qvref::soil random_soil(random_source& random) {
  qvref::soil s = loam();
  const auto maybe = [&](double value) { return whole(random, 0, 5) == 0 ? 0.0 : value; };
  s.kc = maybe(uniform(random, -2000.0, 9000.0));
  s.kphi = uniform(random, 1e5, 2e6);
  s.n = uniform(random, 0.3, 1.6);
  s.damp_ratio = maybe(uniform(random, 0.001, 0.2));
  s.boundary_sinkage = uniform(random, 0.01, 0.3);
  s.cohesion = maybe(uniform(random, 0.0, 4000.0));
  s.sensitivity = maybe(uniform(random, 1.0, 3.0));
  s.max_shear_disp = maybe(uniform(random, 0.01, 0.1));
  s.friction_angle = maybe(uniform(random, 0.1, 0.7));
  s.critical_pressure = maybe(uniform(random, 1e3, 1e5));
  if (whole(random, 0, 5) == 0) s.critical_pressure = -s.critical_pressure;  // a negative ratio under a power
  s.coefficient_ds = uniform(random, -0.1, 0.4);
  s.exponent_pr = whole(random, 0, 1) == 0 ? 1.0 : uniform(random, 0.2, 1.5);
  s.exponent_sd = uniform(random, 0.2, 1.0);
  if (whole(random, 0, 7) == 0) s.type = "CONCRETE";
  return s;
}

qvref::soil as_read(const qvref::soil& soil) {
  qvref::soil s = soil;
  s.friction_angle = soil.friction_angle / 0.017453292519943295 * 0.017453292519943295;
  return s;
}

std::vector<double> element_parameters::list() const {
  return {static_cast<double>(element),
          k_body_marker,
          0.0,
          static_cast<double>(road),
          k_file_string,
          k_road_marker,
          0.0,
          static_cast<double>(elements),
          k_roads,
          static_cast<double>(body.shape),
          body.a,
          body.w,
          static_cast<double>(body.nx),
          static_cast<double>(body.ny),
          k_ground_marker};
}

SoilScene::SoilScene(const soil_mesh& mesh, const qvref::soil& soil, const qvref::body& body) {
  parameters.road = fresh_road();
  parameters.body = body;
  file = temporary_path("road" + std::to_string(parameters.road) + ".rdf");
  write_text(file, rdf_text(mesh, soil));
  host.strings[k_file_string] = std::wstring(file.begin(), file.end());
  host.markers[k_body_marker] = host.markers[k_road_marker] = host.markers[k_ground_marker] = {};
}

SoilScene::SoilScene(const SoilScene& on, int element, const qvref::body& body)
    : host(on.host), parameters(on.parameters), file(on.file) {
  parameters.element = element;
  parameters.body = body;
  host.requests.clear();
  host.reports.clear();
  host.stops.clear();
}

const std::vector<double>& SoilScene::call(int iflag) {
  const std::size_t size =
      7 + 8 * static_cast<std::size_t>(parameters.body.nx) * static_cast<std::size_t>(parameters.body.ny);
  m_result.assign(size + 1, k_poison);
  std::vector<double> par = parameters.list();
  const std::vector<double> before = par;
  qvsoil_interaction(host.handle(), 0.25, par.data(), static_cast<int>(par.size()), 0, iflag, m_result.data());
  EXPECT_EQ(par, before) << "the parameter list is the host's";
  EXPECT_EQ(m_result.back(), k_poison) << "written behind the result";
  m_result.pop_back();
  return m_result;
}

std::string SoilScene::take_report() {
  std::string said;
  for (const ScriptedHost::report& report : host.reports) {
    EXPECT_EQ(report.title, "USUB ERROR");
    EXPECT_EQ(report.messages.size(), 1U);
    for (const std::string& message : report.messages) said += message;
  }
  host.reports.clear();
  return said;
}

double SoilScene::point(int i, int j, std::size_t entry) const {
  return m_result.at(
      7 +
      8 * (static_cast<std::size_t>(i) * static_cast<std::size_t>(parameters.body.ny) + static_cast<std::size_t>(j)) +
      entry);
}

std::vector<double> call_sum(ScriptedHost& host, double road, int iflag) {
  std::vector<double> par = {road};
  std::vector<double> result(5, k_poison);
  qvsoil_interaction_Sum(host.handle(), 0.25, par.data(), 1, 0, iflag, result.data());
  EXPECT_EQ(result.back(), k_poison) << "written behind the result";
  result.pop_back();
  return result;
}

}  // namespace qvtest
