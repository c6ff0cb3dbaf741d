#pragma once

#include <clocale>
#include <locale>
#include <string>

namespace qvtest {

/// The locale of a host, for C and for C++, while this object lives. Throws std::runtime_error if this machine does not
/// have it; scripts/setup makes the ones that tests use.
class ForeignLocale {
public:
  explicit ForeignLocale(const char* name)
      : m_before(std::setlocale(LC_ALL, nullptr)), m_before_in_cpp(std::locale::global(std::locale(name))) {
    std::setlocale(LC_ALL, name);
  }
  ~ForeignLocale() {
    std::locale::global(m_before_in_cpp);
    std::setlocale(LC_ALL, m_before.c_str());
  }
  ForeignLocale(const ForeignLocale&) = delete;
  ForeignLocale& operator=(const ForeignLocale&) = delete;

private:
  std::string m_before;
  std::locale m_before_in_cpp;
};

/// Numbers have a decimal comma and a point at the thousands.
constexpr const char* k_german = "de_DE.UTF-8";
/// The capital letter of "i" is not "I".
constexpr const char* k_turkish = "tr_TR.UTF-8";

}  // namespace qvtest
