#include "solver/engine/time_spent.h"

#include <numeric>

namespace qvslv {

void TimeSpent::add_sample(size_t element, Ticks whole, Ticks services) {
  if (element >= m_of_elements.size()) m_of_elements.resize(element + 1, 0);
  m_of_elements[element] += whole - services;
  m_of_services += services;
}

std::vector<TimeShare> TimeSpent::shares(const Model& model, double wall_seconds) {
  begin(m_work);
  const auto total = static_cast<double>(std::accumulate(m_ticks.begin(), m_ticks.end(), Ticks{0}));
  std::vector<TimeShare> list;
  const auto add = [&](const char* part, const std::string& element, double ticks) {
    const double share = total > 0 ? ticks / total : 0;
    list.push_back({part, element, share * wall_seconds, share});
  };
  const auto spent = [&](Work work) { return static_cast<double>(m_ticks[static_cast<size_t>(work)]); };

  add("start-up", "", spent(Work::start_up));
  add("engine", "", spent(Work::engine));
  add("expressions", "", spent(Work::expressions));
  const auto sampled = static_cast<double>(std::accumulate(m_of_elements.begin(), m_of_elements.end(), m_of_services));
  const double scale = sampled > 0 ? spent(Work::subroutines) / sampled : 0;
  for (size_t i = 0; i < m_of_elements.size(); ++i)
    add("element", model.elements[i].name, scale * static_cast<double>(m_of_elements[i]));
  add("services", "", sampled > 0 ? scale * static_cast<double>(m_of_services) : spent(Work::subroutines));
  add("results", "", spent(Work::results));
  add("watch", "", spent(Work::watch));
  return list;
}

}  // namespace qvslv
