#pragma once

#include <string>

#include "fuzz/memory_file.h"

/// The road files that the soil's fuzz targets choose from.
namespace soil_roads {

/// Text of a bumpy road of 5 x 5 nodes with the first `last_triangle` of its 32 triangles.
inline std::string flat_road(const char* soil_type, int last_triangle) {
  std::string text = std::string("SOIL_TYPE=") + soil_type +
                     "\nNORMAL_PRESSURE=BEKKER\nCOHESIVE_COEFF=5000\nFRICTIONAL_COEFF=1e6\nSINKAGE_EXPONENT=0.7\n"
                     "COHESION=1700\nSENSITIVITY=1.5\nMAX_SHEAR_DISP=0.025\nFRICTION_ANGLE=29\nCOEFFICIENT_DS=0.1\n"
                     "CRITICAL_PRESSUR=2e4\nEXPONENT_PR=0.8\nEXPONENT_SD=0.5\nNUMBER_OF_NODES=25\n";
  for (int i = 0; i < 25; ++i) {
    text += std::to_string(i + 1) + " " + std::to_string(i / 5) + " " + std::to_string(i % 5) + " " +
            std::to_string(0.1 * ((i * 7) % 3)) + "\n";
  }
  text += "\nNUMBER_OF_ELEMENTS=" + std::to_string(last_triangle) + "\n";
  for (int k = 0; k < last_triangle; ++k) {
    const int a = (k / 2) / 4 * 5 + (k / 2) % 4 + 1;
    text += k % 2 == 0 ? std::to_string(a) + " " + std::to_string(a + 5) + " " + std::to_string(a + 6) + " 0\n"
                       : std::to_string(a) + " " + std::to_string(a + 6) + " " + std::to_string(a + 1) + " 0\n";
  }
  return text;
}

/// A whole road, one with a hole, a hard one, one with extreme heights, and three that cannot be read.
inline const std::string k_roads[] = {
    flat_road("LOAM", 32),
    flat_road("LOAM", 17),
    flat_road("CONCRETE", 32),
    "SINKAGE_EXPONENT=-1\nNUMBER_OF_NODES=3\n1 0 0 1e300\n2 4 0 -1e300\n3 0 4 1\n\nNUMBER_OF_ELEMENTS=1\n1 2 3 0\n",
    "NUMBER_OF_NODES=4\n1 0 0 0\n2 1 0 0\n3 0 1 0\n4 1e9 1e9 0\n\nNUMBER_OF_ELEMENTS=1\n1 2 3 0\n",
    "LENGTH='CUBIT'\n",
    "",
};
constexpr std::size_t k_number_of_roads = sizeof k_roads / sizeof *k_roads;

/// Path of file number `id`, from 0; beyond the last one a name that no file has.
inline std::wstring path_of(int id) {
  static memory_file files[k_number_of_roads];
  static const bool written = [] {
    for (std::size_t i = 0; i < k_number_of_roads; ++i) files[i].write(k_roads[i].data(), k_roads[i].size());
    return true;
  }();
  const auto number = static_cast<std::size_t>(id);
  return written && number < k_number_of_roads ? files[number].path() : L"no such \x4e2d file";
}

}  // namespace soil_roads
