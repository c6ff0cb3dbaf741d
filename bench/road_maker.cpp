#include "bench/road_maker.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>

namespace qvbench {

double terrain_height(double x, double y) {
  return 0.10 * std::sin(0.7 * x + 0.3) * std::cos(0.5 * y) + 0.03 * std::sin(2.1 * x - 1.3 * y);
}

namespace {

constexpr double k_spacing = 0.1;

void write_head(std::ofstream& out) {
  out << "FILE_TYPE = 'RDF'\nFILE_VERSION = 1\nLENGTH = 'METER'\nFORCE = 'NEWTON'\nANGLE = 'DEGREE'\nMASS = 'KG'\n"
         "TIME = 'SEC'\nMETHOD = '3D_SOIL'\nSOIL_TYPE=SANDY_LOAM\nNORMAL_PRESSURE=BEKKER\nSHEAR_PRESSURE=WONG\n"
         "COHESIVE_COEFF = 5270\nFRICTIONAL_COEFF = 1515040\nSINKAGE_EXPONENT = 0.7\nDAMP_RATIO = 0.01\n"
         "BOUNDARY_SINKAGE = 0.05\nCOEFFICIENT_DS = 0.02\nCRITICAL_PRESSUR = 40000\nEXPONENT_PR = 0.9\n"
         "EXPONENT_SD = 0.4\nCOHESION = 1720\nFRICTION_ANGLE = 29\nSENSITIVITY = 1.2\nMAX_SHEAR_DISP = 0.025\n";
}

void write_road(const std::string& path, int squares) {
  std::ofstream out(path);
  write_head(out);
  char line[128];
  const int side = squares + 1;
  out << "NUMBER_OF_NODES = " << side * side << "\n{ node x y z }\n";
  for (int i = 0; i < side; ++i) {
    for (int j = 0; j < side; ++j) {
      const double x = k_spacing * i, y = k_spacing * j;
      out.write(line,
                std::snprintf(line, sizeof line, "%d %.4f %.4f %.9f\n", i * side + j + 1, x, y, terrain_height(x, y)));
    }
  }
  out << "\nNUMBER_OF_ELEMENTS = " << 2 * squares * squares << "\n{ k l m value }\n";
  for (int i = 0; i < squares; ++i) {
    for (int j = 0; j < squares; ++j) {
      const int k = i * side + j + 1, l = k + side;
      out.write(line, std::snprintf(line, sizeof line, "%d %d %d 0\n%d %d %d 0\n", k, l, l + 1, k, l + 1, k + 1));
    }
  }
  out << "\n";
}

}  // namespace

const road_file& make_road(int triangles) {
  static std::map<int, road_file> made;
  const auto found = made.find(triangles);
  if (found != made.end()) return found->second;
  const int squares = static_cast<int>(std::lround(std::sqrt(triangles / 2.0)));
  const std::string path =
      (std::filesystem::temp_directory_path() / ("qvbench_road_" + std::to_string(triangles) + ".rdf")).string();
  if (!std::filesystem::exists(path)) {
    write_road(path + ".part", squares);
    std::filesystem::rename(path + ".part", path);
  }
  return made[triangles] = {path, k_spacing * squares, 2 * squares * squares, std::filesystem::file_size(path)};
}

}  // namespace qvbench
