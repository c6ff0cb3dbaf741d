#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "solver/engine/call_order.h"
#include "solver/engine/load_table.h"
#include "solver/engine/readings.h"
#include "solver/engine/service_host.h"
#include "solver/engine/service_index.h"
#include "solver/engine/time_spent.h"
#include "solver/model/fault.h"
#include "solver/model/model.h"

namespace qvslv {

/// Answers the service requests of one element's subroutine: from the state of the call that is under way, between
/// calls not at all. What the subroutine reports is kept until `settle`.
class ElementHost : public ServiceHost {
public:
  using Report = std::function<void(const std::string&)>;

  /// The arguments must outlive this object.
  ElementHost(const ServiceIndex& index, const ModelReadings& readings, const LoadTable& loads, const Model& model,
              const Element& element);

  /// A call of the element at the state that the readings were last refreshed with. Services answer as long as this
  /// lives.
  struct Circumstances {
    const SimTK::State& state;
    bool measured = false;             ///< the time that sysary and sysfnc take is summed up
    size_t seen_loads = 0;             ///< number of force elements whose new loads are seen
    const CallOrder* order = nullptr;  ///< if calls run side by side: to wait for these loads
    size_t position = 0;               ///< of the call in that order
  };
  class Call {
  public:
    Call(ElementHost& host, const Circumstances& now) : m_host(host) {
      host.m_now = &now;
      host.m_request_time = 0;
    }
    ~Call() { m_host.m_now = nullptr; }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

  private:
    ElementHost& m_host;
  };

  /// Ends the run unless something did before: the element failed or asked to stop. It is the caller's words that end
  /// it, with the element and the time before them.
  void raise(RunOutcome outcome, const std::string& text) { m_fault.raise(outcome, place() + text); }
  bool failed() const { return m_fault.raised(); }

  /// Hands on what the calls since the last time reported, in its order: a fault, and warnings.
  /// @param report  is told once about each kind of request that could not be answered; may be empty
  void settle(Fault& fault, const Report& report);

  /// Of the last measured call.
  Ticks request_time() const { return m_request_time; }

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

  template <class Answer>
  bool timed(Answer&& answer);
  bool find_vector(const char* name, const int* ids, int nids, double* values, int& count);
  bool find_scalar(const char* name, const int* ids, int nids, double& value);
  bool rotation(const int* ids, int nids, double* values);
  bool relation(const char* name, MarkerRelation kind, const int* ids, int nids, double* values);
  bool force(const int* ids, int nids, double* values);
  bool speed(const char* name, MarkerRelation kind, const int* ids, int nids, double& value);
  bool variable_value(const int* ids, int nids, double& value);
  bool equation_value(const char* name, int derivative, const int* ids, int nids, double& value);
  bool force_magnitude(const int* ids, int nids, double& value);
  bool read_ids(const char* name, const int* ids, int nids, int most, Request& request);
  size_t seen_loads() const;
  bool check_count(const char* name, int nids, int most);
  template <class... Values>
  bool refuse(const char* service, const char* why, const Values&... values);
  std::string place() const;

  const ServiceIndex& m_index;
  const ModelReadings& m_readings;
  const LoadTable& m_loads;
  const Model& m_model;
  const Element& m_element;
  const Circumstances* m_now = nullptr;  ///< of the call that is under way; null between calls
  Ticks m_request_time = 0;
  Fault m_fault;
  std::vector<std::string> m_told;  ///< warnings and refused requests since the last `settle`
  std::set<std::string> m_refused;  ///< services that could not be answered, each told once
};

}  // namespace qvslv
