#include "solver/data_files/polygon_division.h"

// Fuzz targets have the division of polygons in themselves, where the solver loads its module.
decltype(&qvslv_divide_polygons) qvslv::polygon_division() { return &qvslv_divide_polygons; }
