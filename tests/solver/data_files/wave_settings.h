#pragma once

#include "solver/data_files/make_wave.h"

/// Waves that several tests make; metres and seconds.
namespace qvtest {

using qvslv::WaveKind;
using qvslv::WaveSettings;

constexpr double k_two_pi = 6.283185307179586;
constexpr double k_g = 9.81;            // [m/s^2]
constexpr double k_rounding = 2.3e-16;  // one rounding of a number near 1

inline WaveSettings regular(double height = 1.0, double period = 6.0, double depth = 0) {
  WaveSettings s;
  s.height = height;
  s.period = period;
  s.depth = depth;
  s.gravity = k_g;
  return s;
}

inline WaveSettings sea(WaveKind kind, double height = 2.0, double period = 8.0) {
  WaveSettings s = regular(height, period);
  s.kind = kind;
  return s;
}

inline WaveSettings still_water(double extent) {
  WaveSettings s;
  s.kind = WaveKind::still;
  s.extent = extent;
  return s;
}

/// A sea whose table is a few thousand points.
inline WaveSettings small_sea(WaveKind kind) {
  WaveSettings s = sea(kind);
  s.duration = 30;
  s.time_step = 0.5;
  s.extent = 120;
  s.x_step = 2;
  return qvslv::completed(s);
}

}  // namespace qvtest
