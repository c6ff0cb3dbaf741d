#include <gtest/gtest.h>

#include <string>

#include "common/files/data_file.h"
#include "qvbrisk/services.h"
#include "soilrdf/rdf_reader.h"
#include "tests/support/temporary_folder.h"

// The ten services of a host that fills its text buffers to the brim or claims lengths it did not write.
namespace {

struct answer {
  int length = 0;
  std::wstring text;  // written as it is, without a terminator
  int flag = 0;
};
answer g_path, g_string;
bool g_buffer_was_zeroed = true;
bool g_length_was_zero = true;

void reply(const answer& a, int* length, wchar_t* buffer, int* err) {
  g_length_was_zero = *length == 0 && *err == 0;
  for (int k = 0; k < QV_TEXT_CAPACITY; ++k) g_buffer_was_zeroed = g_buffer_was_zeroed && buffer[k] == L'\0';
  a.text.copy(buffer, QV_TEXT_CAPACITY);
  *length = a.length;
  *err = a.flag;
}

}  // namespace

extern "C" {
void sysary(void*, const char*, const int*, int, double*, int*, int*) { ADD_FAILURE(); }
void sysfnc(void*, const char*, const int*, int, double*, int*) { ADD_FAILURE(); }
void get_string_s(void*, int, int* length, wchar_t* text, int* err) { reply(g_string, length, text, err); }
void GET_QVSPATH_S(void*, int* length, wchar_t* path, int* err) { reply(g_path, length, path, err); }
void stop_solver(void*, int, int, int, const char*, int*) { ADD_FAILURE(); }
void THROW_ERROR(void*, const char*, int, char**) { ADD_FAILURE(); }
void AKISPL(void*, double, double, int, int, double*, int*) { ADD_FAILURE(); }
void GTUNTS(void*, double*, void**, int*) { ADD_FAILURE(); }
void STEP(void*, double*, int*, double, double, double, double, double) { ADD_FAILURE(); }
void get_mass(void*, const int*, int, double*, int*) { ADD_FAILURE(); }
}

namespace {

std::string refusal(const std::wstring& name) {
  qvsoilrdf::CRoad road;
  int count = 3;
  char* slots[5] = {};
  try {
    qvsoilrdf::read_rdf(nullptr, name, road, count, slots);
  } catch (int number) {
    EXPECT_EQ(number, 1);
    EXPECT_EQ(count, 1);
    const std::string text = slots[0];
    delete[] slots[0];
    return text;
  }
  return "";
}

TEST(LyingHost, BuffersAreZeroedBeforeTheyAreHandedOver) {
  g_buffer_was_zeroed = g_length_was_zero = true;
  g_path = {0, L"", 0};
  refusal(L"/nowhere/none.rdf");
  g_string = {0, L"", 0};
  std::wstring text;
  int length = 7;
  qv::fetch_string(nullptr, 1, text, length);
  EXPECT_TRUE(g_buffer_was_zeroed);
  EXPECT_TRUE(g_length_was_zero);
}

TEST(LyingHost, APathLengthBeyondTheBufferIsRefused) {
  const std::string head = "READ RDF ERROR : The length of the model file's path is ";
  const std::string tail = "; it must lie between 0 and 1024.";
  g_path = {1025, L"/tmp/model.x", 0};
  EXPECT_EQ(refusal(L"none.rdf"), head + "1025" + tail);
  g_path = {-1, L"/tmp/model.x", 0};
  EXPECT_EQ(refusal(L"none.rdf"), head + "-1" + tail);
  g_path = {2147483647, L"", 0};
  EXPECT_EQ(refusal(L"none.rdf"), head + "2147483647" + tail);
}

TEST(LyingHost, APathThatFillsTheBufferIsReadToItsEndAndNoFarther) {
  const qvtest::TemporaryFolder folder;
  const std::wstring path = folder.wide_path("") + std::wstring(2000, L'm');
  folder.write("broken.rdf", "TIME = 'DAY'\n");
  g_path = {1024, path.substr(0, 1024), 0};
  EXPECT_EQ(refusal(L"broken.rdf"), "READ RDF ERROR : DAY is an unsupported TIME UNIT.");
}

TEST(LyingHost, TheErrorFlagIsNotTested) {
  const qvtest::TemporaryFolder folder;
  folder.write("broken.rdf", "TIME = 'DAY'\n");
  g_path = {5, folder.wide_path("model.x"), 1};
  EXPECT_EQ(refusal(L"broken.rdf"), "READ RDF ERROR : DAY is an unsupported TIME UNIT.");
}

TEST(LyingHost, AStringLengthBeyondTheBufferGivesNoText) {
  std::wstring text = L"kept";
  int length = 0;
  for (int lie : {1025, -1, -2147483647 - 1}) {
    g_string = {lie, L"road.rdf", 0};
    EXPECT_FALSE(qv::fetch_string(nullptr, 1, text, length)) << lie;
    EXPECT_EQ(length, lie);
    EXPECT_EQ(text, L"kept");
  }
  g_string = {1024, std::wstring(1024, L'n'), 0};
  EXPECT_TRUE(qv::fetch_string(nullptr, 1, text, length));
  EXPECT_EQ(text, g_string.text);
}

}  // namespace
