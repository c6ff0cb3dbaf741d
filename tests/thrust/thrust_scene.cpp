#include "tests/thrust/thrust_scene.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "qvbrisk/layouts.h"
#include "qvbrisk/subroutines.h"

namespace qvtest {
namespace {

int thrusters_taken = 0;

}  // namespace

std::vector<double> thrust_parameters::list() const {
  return {static_cast<double>(id),
          k_thrusters,
          k_thrust_marker,
          k_poison,
          k_second_marker,
          k_thrust_water,
          mode,
          k_spline,
          k_variable,
          k_equation,
          gains[0],
          gains[1],
          gains[2],
          switch_on_waves,
          k_thrust_string};
}

ThrustScene::ThrustScene(const qvref::wave_file& wave) {
  if (thrusters_taken > k_thrusters) std::abort();
  parameters.id = thrusters_taken++;
  host.strings[k_thrust_string] = wide(write_file("thrust" + std::to_string(parameters.id) + ".txt", wave_text(wave)));
  host.markers[k_thrust_marker] = host.markers[k_thrust_water] = {};
  set_variable(0.0);
  set_equation(0.0, 0.0, 0.0);
}

void ThrustScene::set_equation(double value, double rate, double second) {
  host.scalars[{"DIF20", k_equation}] = value;
  host.scalars[{"DIF21", k_equation}] = rate;
  host.scalars[{"DIF22", k_equation}] = second;
}

const std::vector<double>& ThrustScene::call(double time, int iflag) {
  m_result.assign(QV_THRUST_RESULT_LENGTH + 1, k_poison);
  std::vector<double> par = parameters.list();
  qvsoil_thrustforce(host.handle(), time, par.data(), -1, 7, iflag, m_result.data());
  EXPECT_EQ(first_difference(par, parameters.list()), -1) << "the parameter list is the host's";
  EXPECT_EQ(m_result.back(), k_poison) << "written behind the result";
  EXPECT_EQ(host.unanswered, 0);
  m_result.pop_back();
  return m_result;
}

double ThrustScene::thrust(double time, int iflag) {
  const std::vector<double>& r = call(time, iflag);
  for (std::size_t i = 1; i < QV_THRUST_RESULT_LENGTH; ++i) EXPECT_EQ(r[i], 0.0);
  EXPECT_EQ(take_report(), "");
  return r[0];
}

std::string ThrustScene::take_report() {
  std::string said;
  for (const ScriptedHost::report& report : host.reports) {
    EXPECT_EQ(report.title, "USUB ERROR");
    EXPECT_EQ(report.messages.size(), 1U);
    for (const std::string& message : report.messages) said += message;
  }
  host.reports.clear();
  return said;
}

std::string ThrustScene::wave_file() const {
  const std::wstring& text = host.strings.at(k_thrust_string);
  return {text.begin(), text.end()};
}

double call_velocity_error(ScriptedHost& host, std::vector<double> par, int iflag) {
  double result[2] = {k_poison, k_poison};
  qvsoil_error_velocity(host.handle(), 0.5, par.data(), -1, 7, iflag, result);
  EXPECT_EQ(result[1], k_poison) << "only one number is the error's";
  return result[0];
}

}  // namespace qvtest
