#pragma once

#include <string>

#include "soilrdf/road.h"

namespace qvsoilrdf {

/// Reads an RDF soil road file and derives the triangles' planes, the plan bounds and the cell grid.
///
/// @param handle  the host's context, for the second attempt at the file in the model file's folder
/// @param path    file name as the user gave it
/// @param road    filled; normally freshly constructed
/// @param ierr, msg  message channel. A file that cannot be opened and every format error sets the count to 1,
///                stores one message in the first slot and throws the integer 1; the road keeps what it has so far.
/// @return        true if the road is ready, false if a standard exception (an allocation that failed) ended
///                the reader; that leaves the channel as it was.
bool read_rdf(void* handle, const std::wstring& path, CRoad& road, int& ierr, char** msg);

}  // namespace qvsoilrdf
