#pragma once

#include <locale>
#include <string>
#include <vector>

/// Texts: conversion between wide and narrow, and splitting at a character.
namespace qv {

/// Converts wide to narrow text through the locale's conversion facet. Throws the integer 1 if a character has no
/// narrow form there.
std::string wcs_to_mbs(const std::wstring& text, const std::locale& locale = std::locale());

/// Converts narrow to wide text in the same way.
std::wstring mbs_to_wcs(const std::string& text, const std::locale& locale = std::locale());

}  // namespace qv

/// The pieces of a text that successive reads up to `delimiter` give, in order and untrimmed: "A=B" gives A and B, "A="
/// only A, "=B" an empty piece and B, "" nothing.
std::vector<std::string> splitStr(const std::string& text, char delimiter);

/// Appends these pieces to `pieces` and returns it.
std::vector<std::string>& splitStr(const std::string& text, char delimiter, std::vector<std::string>& pieces);
