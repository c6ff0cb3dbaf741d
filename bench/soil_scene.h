#pragma once

#include <array>
#include <cmath>
#include <vector>

#include "bench/bench_host.h"
#include "bench/road_maker.h"
#include "qvbrisk/subroutines.h"

/// A body on a road, driven through the exported function.
namespace qvbench {

/// A wheel sunk so far that a third of its rim is in contact, or a plate that is wholly in contact.
struct body {
  bool wheel;
  int nx, ny;

  double size() const { return wheel ? 0.5 : 0.6; }  // radius or length [m]
  double width() const { return wheel ? 0.3 : 0.6; }
  double height() const { return wheel ? 0.25 : -0.2; }  // of the marker over the terrain under it [m]
  int points() const { return nx * ny; }
};

class SoilScene {
public:
  /// Roads are read once per file; elements of one body on one road share their set-up.
  SoilScene(const body& what, int triangles);

  /// Puts the marker over (x, y) [m], at its height over the terrain.
  void place(double x, double y);
  void call(int iflag) { qvsoil_interaction(m_host.handle(), 0.0, m_par.data(), 15, 0, iflag, m_result.data()); }

  int points_in_contact() const;
  double road_length() const { return m_road.length; }
  const std::string& complaint() const { return m_host.complaint; }

private:
  /// Throws if the vertical force at rest on fresh soil differs from Bekker's law over the terrain's own formula: a
  /// faster wrong answer must fail.
  void check_lift();
  double expected_lift() const;

  body m_body;
  const road_file& m_road;
  BenchHost m_host;
  std::array<double, 15> m_par;
  std::vector<double> m_result;
};

}  // namespace qvbench
