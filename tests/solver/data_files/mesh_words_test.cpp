#include "solver/data_files/mesh_words.h"

#include <assimp/fast_atof.h>
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include "solver/data_files/hull_mesh.h"

namespace {

template <class Real>
Real read(const std::string& word) {
  qvslv::MeshWords words(word);
  return words.number<Real>("the number");
}

/// Thrown by the import library's reader for a text that is no number.
struct NoNumber : qvslv::MeshError {
  template <class... Texts>
  explicit NoNumber(Texts&&...) : MeshError("no number") {}
};

template <class Real>
Real of_the_import_library(const std::string& word) {
  Real value = 0;
  Assimp::fast_atoreal_move<Real, NoNumber>(word.c_str(), value, false);
  return value;
}

template <class Real>
void expect_same_bits(const std::string& word) {
  const Real value = read<Real>(word), expected = of_the_import_library<Real>(word);
  EXPECT_EQ(std::memcmp(&value, &expected, sizeof value), 0) << word << ": " << value << ", not " << expected;
}

class Words {
public:
  std::string next() {
    std::string word = one_of({"", "", "-"}) + digits(18);
    const std::string decimals = one_of({"", ".", "."});
    word += decimals + (decimals.empty() ? "" : digits(20));
    const std::string exponent = one_of({"", "", "e", "E", "e-", "e+"});
    return word + exponent + (exponent.empty() ? "" : digits(1));
  }

private:
  int up_to(int most) { return std::uniform_int_distribution<int>(0, most)(m_random); }
  std::string one_of(const std::vector<const char*>& texts) {
    return texts[static_cast<size_t>(up_to(static_cast<int>(texts.size()) - 1))];
  }
  std::string digits(int most) {
    std::string text;
    for (int count = 1 + up_to(most - 1); count > 0; --count) text += static_cast<char>('0' + up_to(9));
    return text;
  }

  std::mt19937 m_random{1};
};

// Meshes of earlier results were read by that library.
TEST(MeshNumber, HasTheBitsOfTheImportLibrary) {
  for (const char* word :
       {"0", "-0", "-0.0", "5.", ".5", "-.5", "5.e3", "1e0", "0.1", "16777217", "1.0000000596046448"}) {
    expect_same_bits<float>(word);
    expect_same_bits<double>(word);
  }
  Words words;
  for (int k = 0; k < 20'000; ++k) {
    const std::string word = words.next();
    expect_same_bits<float>(word);
    expect_same_bits<double>(word);
  }
}

TEST(MeshNumber, WithMoreDigitsThanSixtyFourBitsIsRefused) {
  for (const char* word : {"99999999999999999999", "18446744073709551617", "99999999999999999999.5e400", "1e400"})
    EXPECT_THROW(read<double>(word), qvslv::MeshError) << word;
  EXPECT_EQ(read<double>("9999999999999999999"), 1e19);
}

}  // namespace
