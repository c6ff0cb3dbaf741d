#pragma once

#include <memory>
#include <string>

#include "solver/watch/watch.h"

/// The subjects, each a file. The functions return null if the model has nothing to watch there. A new one is a row of
/// the table in watch.cpp.
namespace qvslv {

std::unique_ptr<Watcher> watch_roads(const Engine& engine, const Recording& recording);     ///< bodies leave their road
std::unique_ptr<Watcher> watch_waters(const Engine& engine, const Recording& recording);    ///< hulls leave their table
std::unique_ptr<Watcher> watch_headings(const Engine& engine, const Recording& recording);  ///< driven tracks turn
std::unique_ptr<Watcher> watch_thrown(const Engine& engine, const Recording& recording);    ///< soil that gives energy
std::unique_ptr<Watcher> watch_energy(const Engine& engine, const Recording& recording);    ///< of undriven models
std::unique_ptr<Watcher> watch_lost_digits(const Engine& engine, const Recording& recording);
std::unique_ptr<Watcher> watch_progress(const Engine& engine, const Recording& recording);  ///< slow or tiny steps

// A warning about an element, a body or the whole model.
void note(Findings& findings, const char* id, const Element& element, const std::string& text);
void note(Findings& findings, const char* id, const Body& body, const std::string& text);
void note(Findings& findings, const char* id, const Model& model, const std::string& text);

}  // namespace qvslv
