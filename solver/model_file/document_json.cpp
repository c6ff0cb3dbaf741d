#include "solver/model_file/document_json.h"

#include <cmath>
#include <nlohmann/json.hpp>

namespace qvslv {

namespace {

using Json = nlohmann::ordered_json;

/// JSON has no word for infinite numbers; TOML writes them as texts of three letters.
Json json_of(double number) {
  if (std::isfinite(number)) return number;
  return std::isnan(number) ? "nan" : number > 0 ? "inf" : "-inf";
}

Json json_of(const Value& value) {
  switch (value.kind) {
    case Value::Kind::boolean:
      return value.boolean;
    case Value::Kind::integer:
    case Value::Kind::real:
      return json_of(value.number);
    case Value::Kind::text:
      return value.text;
    case Value::Kind::list: {
      Json list = Json::array();
      for (const Value& entry : value.list) list.push_back(json_of(entry));
      return list;
    }
    case Value::Kind::table: {
      Json table = Json::object();
      for (const Value::Entry& entry : value.table) table[entry.key] = json_of(entry.value);
      return table;
    }
    case Value::Kind::other:
      break;
  }
  return nullptr;
}

}  // namespace

std::string json_text(const Value& document) {
  return json_of(document).dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace qvslv
