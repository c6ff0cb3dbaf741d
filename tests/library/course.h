#pragma once

#include <memory>
#include <string>
#include <vector>

/// Elements on their way, each with a host of its own, for tests of calls that run at the same time.
namespace qvtest {

/// One element that is set up and moves on with every call.
class Course {
public:
  explicit Course(std::string of) : name(std::move(of)) {}
  virtual ~Course() = default;

  const std::string name;

  /// Moves the element to its place at call n, counted from 0, and calls it; every fourth call closes a step.
  /// @return  the call's results
  virtual const std::vector<double>& call(int n) = 0;

protected:
  static int flag_of(int n) { return n % 4 == 3 ? 2 : 0; }
  static double time_of(int n) { return 0.01 * n; }
};

using courses = std::vector<std::unique_ptr<Course>>;

/// A wheel and a plate on one road, a wheel on another one, and two tracks on roads of their own.
courses make_soil_courses();
/// Two hulls and two thrusters, each in water of its own.
courses make_water_courses();

}  // namespace qvtest
