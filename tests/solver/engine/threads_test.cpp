#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstring>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "qvbrisk/layouts.h"
#include "qvbrisk/services.h"
#include "solver/engine/independent_calls.h"
#include "tests/solver/test_hook.h"
#include "tests/solver/test_model.h"

namespace {

using namespace qvslv;
using Division = std::vector<std::vector<size_t>>;

constexpr int k_first_id = 500;  ///< of the elements

/// The plug-in's subroutine whose elements may be called on several threads.
constexpr char k_independent[] = "qvsoil_mtl_velocity";

TestRun run_on(const TestModel& model, int threads) {
  RunOptions options;
  options.threads = threads;
  return run(model, options);
}

/// Three balls, pulled by twelve forces that look at each other. Element k has the id k_first_id + k and k as par.
struct PulledBalls {
  static constexpr int k_forces = 12;
  TestModel built{0.4, 0.02};

  PulledBalls() {
    for (const char* name : {"a", "b", "c"}) built.add_body(name, 1.5, {0.2, 0.3, 0.4});
    built.body(1).position = {1, 0.5, 0.2};
    built.body(2).position = {-0.3, 1, 0.7};
    built.model.simulation.integrator = Integrator::semi_explicit_euler;
    built.model.simulation.step = 0.01;
    built.add_force(2, {"sin(9*t)", "1 - t", "0.5"}).id = 400;
    for (int k = 0; k < k_forces; ++k) {
      // Every fourth one has a subroutine that may share data with any other.
      add("pull" + std::to_string(k), k % 4 == 3 ? "scripted" : k_independent, ElementKind::force);
      built.model.elements.back().marker = 1 + k % 3;
      built.model.elements.back().reaction = k % 2 == 0 ? 1 + (k + 1) % 3 : k_none;
    }
    add("state", k_independent, ElementKind::evaluated);
    add("report", k_independent, ElementKind::report);
  }

  void add(const std::string& name, const std::string& subroutine, ElementKind kind) {
    const int k = static_cast<int>(built.model.elements.size());
    built.add_element(name, subroutine, kind, {static_cast<double>(k)}, 6).id = k_first_id + k;
  }
};

double scalar(const HookCall& call, const char* name, std::vector<int> ids) {
  double value = 0;
  int err = 0;
  sysfnc(call.handle, name, ids.data(), static_cast<int>(ids.size()), &value, &err);
  EXPECT_EQ(err, 0) << name;
  return value;
}

/// A force that depends on where its ball is and on the forces of elements before and behind it: as all see them in
/// file order, each digit of the motion depends on the order.
void pull(const HookCall& call) {
  const int k = static_cast<int>(call.par[0]), forces = PulledBalls::k_forces;
  const int ids[1] = {1 + k % 3};
  double way[3] = {0, 0, 0};
  int count = 3, err = 0;
  sysary(call.handle, "TDISP", ids, 1, way, &count, &err);
  const double before = scalar(call, "FM", {k_first_id + (k + forces - 1) % forces});
  const double behind = scalar(call, "FM", {k_first_id + (k + 1) % forces});
  const double at_ball = k % 5 == 0 ? scalar(call, "FM", {ids[0]}) : 0;
  for (int i = 0; i < 3; ++i) call.result[i] = -4 * way[i] + 0.1 * before - 0.07 * behind + 0.01 * at_ball + 0.3;
  call.result[3 + k % 3] = 0.01 * std::sin(before);
}

TEST(Threads, AnyNumberGivesTheSameResultsThoughElementsReadEachOther) {
  std::mutex noting;
  std::set<std::thread::id> used;
  const Script script([&](const HookCall& call) {
    pull(call);
    const std::lock_guard<std::mutex> alone(noting);
    used.insert(std::this_thread::get_id());
  });
  const PulledBalls balls;
  const TestRun alone = run_on(balls.built, 1);
  ASSERT_EQ(alone.summary.outcome, RunOutcome::finished) << alone.summary.message;
  EXPECT_EQ(used.size(), 1u);
  const std::string expected = read_text(alone.folder + "/results.csv");
  for (const int threads : {2, 3, 4, 100}) {
    used.clear();
    const TestRun out = run_on(balls.built, threads);
    EXPECT_EQ(read_text(out.folder + "/results.csv"), expected) << threads << " threads";
    // Nine independent forces and an evaluated element, and those that share data with one another.
    EXPECT_EQ(used.size(), std::min<size_t>(static_cast<size_t>(threads), 11)) << threads << " threads";
    EXPECT_EQ(out.summary.evaluations, alone.summary.evaluations);
  }
}

char* message(const char* text) {
  char* copy = new char[std::strlen(text) + 1];
  std::strcpy(copy, text);
  return copy;
}

TEST(Threads, TheFirstFaultInFileOrderEndsTheRunAndWhatWasToldBeforeItStands) {
  const Script script([&](const HookCall& call) {
    pull(call);
    const int k = static_cast<int>(call.par[0]);
    if (call.time < 0.1 || call.iflag != 0) return;
    // The later a fault stands in the file, the sooner it comes.
    std::this_thread::sleep_for(std::chrono::milliseconds(3 * (10 - k)));
    double value = 0;
    int err = 0;
    sysfnc(call.handle, ("ASKED" + std::to_string(k)).c_str(), nullptr, 0, &value, &err);
    if (k != 4 && k != 5 && k != 9) return;
    char* slots[1] = {message(("FAULT OF " + std::to_string(k)).c_str())};
    THROW_ERROR(call.handle, "USUB ERROR", 1, slots);
  });
  const PulledBalls balls;
  const TestRun alone = run_on(balls.built, 1);
  ASSERT_EQ(alone.summary.outcome, RunOutcome::failed);
  EXPECT_NE(alone.summary.message.find("element pull4"), std::string::npos) << alone.summary.message;
  EXPECT_EQ(alone.told.size(), 6u) << "five requests of elements 0 to 4, and the fault";
  for (const int threads : {2, 4, 11}) {
    const TestRun out = run_on(balls.built, threads);
    EXPECT_EQ(out.summary.message, alone.summary.message) << threads << " threads";
    EXPECT_EQ(out.told, alone.told) << threads << " threads";
    EXPECT_EQ(out.rows, alone.rows) << threads << " threads";
  }
}

Element element(const std::string& subroutine, std::vector<double> par, ElementKind kind = ElementKind::force) {
  Element made;
  made.subroutine = subroutine;
  made.par = std::move(par);
  made.kind = kind;
  return made;
}

std::vector<double> soil_par(int road, int number) {
  std::vector<double> par(QV_SOIL_LENGTH, 0.0);
  par[QV_SOIL_ROAD] = road;
  par[QV_SOIL_ELEMENT] = number;
  return par;
}

std::vector<double> track_par(int road) {
  std::vector<double> par(QV_TRACK_LENGTH, 0.0);
  par[QV_TRACK_ROAD] = road;
  return par;
}

TEST(DividedCalls, AreThoseOfATrackOrOneHydroForceTogetherAndOfWheelsEachAlone) {
  std::vector<double> hull(QV_HULL_LENGTH, 0.0), other_hull = hull;
  other_hull[QV_HULL_FORCE_ID] = 1;
  Model model;
  model.elements = {
      element("qvsoil_interaction_mtl", track_par(0), ElementKind::evaluated),
      element("qvsoil_interaction_mtl", track_par(1), ElementKind::evaluated),
      element("qvsoil_shearforce_mtl", {0, 0}),
      element("qvsoil_shearforce_mtl", {0, 1}),
      element("qvsoil_normalforce_mtl", {0, 3, 1}),
      element("qvhydro_force", hull),
      element("qvhydro_force", other_hull),
      element("qvhydro_force", hull),
      element("qvhydro_report", {}, ElementKind::report),
      element("qvsoil_interaction", soil_par(0, 0)),
      element("qvsoil_interaction", soil_par(0, 1)),
  };
  Division division = divide_calls(model, 100);
  std::sort(division.begin(), division.end());
  EXPECT_EQ(division, (Division{{0, 2}, {1, 3, 4}, {5, 7}, {6}, {9}, {10}}));
  EXPECT_EQ(divide_calls(model, 1), (Division{{0, 1, 2, 3, 4, 5, 6, 7, 9, 10}}));
}

TEST(DividedCalls, KeepSubroutinesThatAreNotTheLibrarysTogether) {
  Model model;
  model.elements = {element("one", {}), element("qvsoil_interaction", soil_par(0, 0)), element("other", {})};
  Division division = divide_calls(model, 8);
  std::sort(division.begin(), division.end());
  EXPECT_EQ(division, (Division{{0, 2}, {1}}));
}

TEST(DividedCalls, KeepSoilElementsTogetherWithSumsThatAreEvaluatedBesideThem) {
  Model model;
  model.elements = {element("qvsoil_interaction", soil_par(0, 0)), element("qvsoil_interaction", soil_par(1, 0)),
                    element("qvsoil_interaction_Sum", {0}, ElementKind::evaluated)};
  EXPECT_EQ(divide_calls(model, 4), (Division{{0, 1, 2}}));
  model.elements[2].kind = ElementKind::report;  // called when all others are done
  EXPECT_EQ(divide_calls(model, 4).size(), 2u);
}

TEST(DividedCalls, GiveEachThreadAsMuchToDo) {
  Model model;
  for (const int points : {100, 300, 900, 500, 700, 300}) {
    model.elements.push_back(element("qvsoil_interaction", soil_par(0, static_cast<int>(model.elements.size()))));
    model.elements.back().result_length = 8 * points;
  }
  EXPECT_EQ(divide_calls(model, 2), (Division{{1, 2, 5}, {0, 3, 4}})) << "1500 and 1300 points";
  EXPECT_EQ(divide_calls(Model{}, 4), Division{{}});
}

}  // namespace
