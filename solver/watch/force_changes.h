#pragma once

#include <string>
#include <vector>

#include "solver/engine/engine.h"

namespace qvslv {

/// Finds the force that changes fastest, which is what keeps steps short. It looks at the loads as they are after every
/// step, and asks no subroutine for more.
class ForceChanges {
public:
  explicit ForceChanges(const Model& model);

  /// Adds what the forces have changed by since the last call.
  void follow(const LoadTable& loads);
  /// Begins the sums anew.
  void forget();

  /// "the force of element 'tyre' changes fastest", or that no force changes at all.
  std::string fastest() const;

private:
  /// A load as it was last seen, and the sum of its changes as accelerations of the lighter body that it acts on.
  struct Followed {
    std::string name;
    double mass = 0;    ///< of the lighter body
    double radius = 0;  ///< of gyration, which makes a force out of a torque
    SimTK::Vec3 force = SimTK::Vec3(0), torque = SimTK::Vec3(0);
    double change = 0;
  };

  void add(const std::string& name, int marker, int reaction);
  const AppliedLoad& load_of(const LoadTable& loads, size_t followed) const;

  const Model& m_model;
  std::vector<Followed> m_followed;  ///< elements of kind force, then applied forces
  std::vector<size_t> m_elements;    ///< indices of the elements of kind force
  bool m_seen = false;
};

}  // namespace qvslv
