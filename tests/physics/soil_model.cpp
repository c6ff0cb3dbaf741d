#include "tests/physics/soil_model.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

namespace qvtest {

const soil k_soils[5] = {{"dry sand", 1.10, 990, 1.52843e6},
                         {"sandy loam, 15 % moisture", 0.70, 5270, 1.51504e6},
                         {"clayey soil, 38 % moisture", 0.50, 13190, 692150},
                         {"Rubicon sandy loam, 43 % moisture", 0.66, 6900, 752000},
                         {"LETE sand", 0.793, 102000, 5.301e6}};

void write_level_road(const std::filesystem::path& file, const soil& ground, double half_length, double damp_ratio,
                      double boundary_sinkage) {
  std::ofstream out(file);
  out.imbue(std::locale::classic());
  out.precision(17);
  out << "FILE_TYPE = 'RDF'\nMETHOD = '3D_SOIL'\nNORMAL_PRESSURE=BEKKER\nSHEAR_PRESSURE=WONG\n"
      << "SINKAGE_EXPONENT = " << ground.n << "\nCOHESIVE_COEFF = " << ground.kc
      << "\nFRICTIONAL_COEFF = " << ground.kphi << "\nDAMP_RATIO = " << damp_ratio
      << "\nBOUNDARY_SINKAGE = " << boundary_sinkage << "\nFRICTION_ANGLE = 30\nSENSITIVITY = 1\n"
      << "MAX_SHEAR_DISP = 0.02\nNUMBER_OF_NODES = 4\n";
  const double h = half_length;
  out << "1 " << -h << " " << -h << " 0\n2 " << h << " " << -h << " 0\n3 " << h << " " << h << " 0\n4 " << -h << " "
      << h << " 0\n\nNUMBER_OF_ELEMENTS = 2\n1 2 3 0\n1 3 4 0\n\n";
}

ResultTable run_on_level_road(const std::string& model, const soil& ground, double damp_ratio,
                              double boundary_sinkage) {
  const std::filesystem::path folder = fresh_folder();
  write_level_road(folder / "level.rdf", ground, 2.0, damp_ratio, boundary_sinkage);
  write_text(folder / "model.toml", model);
  const CommandResult result = run_command({"run", "model.toml", "--out", "results", "--quiet"}, folder);
  EXPECT_EQ(result.code, 0) << result.out << result.err;
  return ResultTable(folder / "results/results.csv");
}

}  // namespace qvtest
