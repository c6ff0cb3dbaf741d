#include <stdexcept>

#include "solver/data_files/polygon_division.h"
#include "solver/model/sibling_library.h"

namespace qvslv {

namespace {

decltype(&qvslv_divide_polygons) load() {
  try {
    return reinterpret_cast<decltype(&qvslv_divide_polygons)>(
        load_sibling(QVBRISK_POLYGON_MODULE, "qvslv_divide_polygons"));
  } catch (const std::runtime_error& reason) {
    throw MeshError(
        "it holds polygons of four or more corners, and the part of qvbrisk that splits them into triangles cannot be "
        "loaded (" +
        std::string(reason.what()) + "); split them in the program that made it, or install that part anew");
  }
}

}  // namespace

decltype(&qvslv_divide_polygons) polygon_division() {
  static const auto function = load();
  return function;
}

}  // namespace qvslv
