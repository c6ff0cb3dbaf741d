#pragma once

#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "solver/engine/load_table.h"
#include "solver/engine/marker_relation.h"
#include "solver/engine/multibody.h"
#include "solver/engine/readings.h"
#include "solver/engine/service_host.h"
#include "solver/model/fault.h"
#include "solver/model/model.h"

namespace qvslv {

/// Answers the service requests of user subroutines from the state of the call that is under way.
class EngineHost : public ServiceHost {
public:
  using Report = std::function<void(const std::string&)>;

  /// @param report  is told once per element about each kind of request that could not be answered
  /// The other arguments must outlive this object.
  EngineHost(const ModelReadings& readings, const Multibody& multibody, Fault& fault, Report report);

  /// A call of an element at a state, which is realized to Velocity or further. Services answer from this state as
  /// long as the object lives.
  class Call {
  public:
    Call(EngineHost& host, const SimTK::State& state, const Element& element);
    ~Call();
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

  private:
    EngineHost& m_host;
  };

  /// Forces of elements and applied forces as they were last evaluated.
  LoadTable& loads() { return m_loads; }
  const LoadTable& loads() const { return m_loads; }

  bool vector_quantity(const char* name, const int* ids, int nids, double* values, int& count) override;
  bool scalar_quantity(const char* name, const int* ids, int nids, double& value) override;
  bool string_entity(int id, std::wstring& text) override;
  bool model_path(std::wstring& path) override;
  void stop(const char* message) override;
  void throw_error(const char* title, int count, char** messages) override;
  bool spline(double x, double z, int id, int order, double& value) override;
  bool units(double scale[5], void* names[5]) override;
  bool mass(int id, double& value) override;

private:
  /// The markers that the ids of a request name, as indices into Model::markers.
  struct Request {
    int measured = k_none;
    int reference = k_none;
    int axes = k_none;
    bool with_reference = false;
  };

  bool rotation(const int* ids, int nids, double* values);
  bool relation(const char* name, MarkerRelation kind, const int* ids, int nids, double* values);
  bool force(const int* ids, int nids, double* values);
  bool speed(const char* name, MarkerRelation kind, const int* ids, int nids, double& value);
  bool variable_value(const int* ids, int nids, double& value);
  bool equation_value(const char* name, int derivative, const int* ids, int nids, double& value);
  bool force_magnitude(const int* ids, int nids, double& value);
  bool read_ids(const char* name, const int* ids, int nids, int most, Request& request);
  bool check_count(const char* name, int nids, int most);
  bool refuse(const char* service, const std::string& why);
  std::string place() const;

  const ModelReadings& m_readings;
  const Multibody& m_multibody;
  Fault& m_fault;
  Report m_report;
  // (id, index into the model), sorted by id
  std::vector<std::pair<int, int>> m_marker_of_id;
  std::vector<std::pair<int, int>> m_body_of_id;
  std::vector<std::pair<int, int>> m_variable_of_id;
  std::vector<std::pair<int, int>> m_equation_of_id;
  std::vector<std::pair<int, int>> m_spline_of_id;
  std::vector<std::pair<int, std::wstring>> m_strings;  ///< (id, text)
  std::wstring m_path;
  LoadTable m_loads;
  std::set<std::pair<const Element*, std::string>> m_reported;  ///< requests that `report` was told about
  const SimTK::State* m_state = nullptr;  ///< of the call that is under way; null between calls, as m_element
  const Element* m_element = nullptr;
};

/// Turns UTF-8 into wide characters. A byte that belongs to no UTF-8 sequence becomes a character of its own.
std::wstring widen(const std::string& text);

}  // namespace qvslv
