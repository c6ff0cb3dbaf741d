#include "soilrdf/load_road.h"

#include <string>

#include "common/files/data_file.h"
#include "qvbrisk/services.h"
#include "soilrdf/rdf_reader.h"

namespace qvsoilrdf {

void load_road(void* handle, int string_id, int index, CRoad& road, const qv::fault_channel& channel) {
  std::wstring file_name;
  int length = 0;
  if (!qv::fetch_string(handle, string_id, file_name, length)) {
    qv::fault(channel, "The length of string " + std::to_string(string_id) + " is " + std::to_string(length) +
                           "; it must lie between 0 and 1024.");
  }
  if (!read_rdf(handle, file_name, road, channel.ierr, channel.msg)) {
    int status = 0;
    stop_solver(handle, 1, 0, 1, channel.msg[0], &status);
  }
  road.road_id = index;  // even if its reading broke off, so that it is not read again
}

}  // namespace qvsoilrdf
