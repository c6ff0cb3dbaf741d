#pragma once

#include <string>
#include <vector>

namespace qvslv {

/// A field of a CSV file, in quotes if its text needs them. A text that a spreadsheet would take for a formula (it
/// starts with = + - @, a tabulator or a carriage return) gets an apostrophe before it, which spreadsheets do not show.
std::string csv_field(const std::string& text);

/// A line of a CSV file with its line end.
std::string csv_line(const std::vector<std::string>& fields);

/// A line of numbers, each as the shortest text that reads back to the same bits; nan (no value) as an empty cell, inf
/// for itself.
std::string csv_line(const std::vector<double>& values);

}  // namespace qvslv
