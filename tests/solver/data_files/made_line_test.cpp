#include "solver/data_files/made_line.h"

#include <gmock/gmock.h>

#include "solver/data_files/road_check.h"
#include "solver/data_files/water_check.h"

namespace {

using namespace qvslv;
using testing::HasSubstr;
using testing::IsEmpty;

RoadSettings road(RoadKind kind) {
  RoadSettings s;
  s.kind = kind;
  s.size_x = 3;
  s.size_y = 2;
  s.corner_x = -0.1;
  s.spacing = 0.7;
  s.height = 0.25;
  if (kind == RoadKind::slope) s.grade = -0.1;
  if (kind == RoadKind::sine || kind == RoadKind::rolling) {
    s.amplitude = 0.1;
    s.wavelength = 1.7;
  }
  if (kind == RoadKind::rolling) s.seed = 18446744073709551615U;
  s.soil_name = "LETE_sand";
  s.soil = find_soil_preset("LETE_sand")->soil;
  return s;
}

WaveSettings wave(WaveKind kind) {
  WaveSettings s;
  s.kind = kind;
  s.gravity = 9.81;
  s.extent = 40;
  s.duration = 6;
  if (kind == WaveKind::still) return s;
  s.height = 0.4;
  s.period = 4;
  s.components = 7;
  s.seed = 3;
  s.depth = kind == WaveKind::jonswap ? 5.5 : 0;
  s.gamma = kind == WaveKind::jonswap ? 2.2 : s.gamma;
  s.against_x = kind == WaveKind::regular;
  s.ramp = 1.5;
  return completed(s);
}

TEST(MadeLine, TellsTheSettingsThatMadeTheFile) {
  for (const RoadKind kind : {RoadKind::flat, RoadKind::slope, RoadKind::sine, RoadKind::rolling}) {
    const std::string text = road_text(road(kind)), line = made_line_at_head(text);
    EXPECT_EQ(line, settings_line(road(kind)));
    const std::optional<RoadSettings> told = road_settings_in(line);
    ASSERT_TRUE(told) << line;
    EXPECT_EQ(road_text(*told), text);
  }
  for (const WaveKind kind : {WaveKind::regular, WaveKind::pierson_moskowitz, WaveKind::jonswap, WaveKind::still}) {
    const std::string line = settings_line(wave(kind)), text = wave_text(wave_table(wave(kind)), line);
    EXPECT_EQ(made_line_at_end(text), line);
    const std::optional<WaveSettings> told = wave_settings_in(line);
    ASSERT_TRUE(told) << line;
    EXPECT_EQ(wave_text(wave_table(*told), line), text);
  }
  for (const char* profile : {"none", "uniform:-0.5", "linear:0.1:1.25@x:0:40", "power:1.5@y:30:-2"}) {
    const CurrentSettings settings{parse_profile("uniform:1"), parse_profile(profile)};
    const std::optional<CurrentSettings> told = current_settings_in(settings_line(settings));
    ASSERT_TRUE(told) << profile;
    EXPECT_EQ(settings_line(*told), settings_line(settings));
  }
}

TEST(MadeLine, OfAFileThatHoldsWhatItSaysIsQuiet) {
  EXPECT_THAT(finding_texts(check_road_text(road_text(road(RoadKind::rolling)), "a.rdf").found), IsEmpty());
  for (const WaveKind kind : {WaveKind::regular, WaveKind::jonswap, WaveKind::still})
    EXPECT_THAT(finding_texts(check_wave_text(wave_text(wave_table(wave(kind)), settings_line(wave(kind)))).found),
                IsEmpty());
  const CurrentSettings current{parse_profile("power:1.5@y:0:40"), parse_profile("none")};
  EXPECT_THAT(finding_texts(check_current_text(current_text(current_tables(current), settings_line(current))).found),
              IsEmpty());
}

std::string changed(std::string text, const std::string& from, const std::string& to) {
  const size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return text.replace(at, from.size(), to);
}

TEST(MadeLine, OfAFileThatHoldsSomethingElseIsWarnedOfAtTheFirstLineThatDiffers) {
  const std::string road_file = changed(road_text(road(RoadKind::flat)), "COHESION=1300", "COHESION=1400");
  EXPECT_THAT(
      finding_texts(check_road_text(road_file, "a.rdf").found),
      testing::ElementsAre("a.rdf:18: 'COHESION=1400' is not what the file's made-by line makes, 'COHESION=1300': "
                           "the file was changed by hand or made by another version; take the made-by line out, "
                           "or make the file anew"));
  const WaveSettings still = wave(WaveKind::still);
  const std::string wave_file = changed(wave_text(wave_table(still), settings_line(still)), "\n0,", "\n0.5,");
  EXPECT_THAT(finding_texts(check_wave_text(wave_file, "a.wave").found),
              testing::Contains(HasSubstr("a.wave:2: '0.5,40' is not what the file's made-by line makes, '0,40'")));
  const CurrentSettings current{parse_profile("uniform:1"), parse_profile("none")};
  const std::string current_file = changed(current_text(current_tables(current), settings_line(current)), "0,1", "0,2");
  EXPECT_THAT(finding_texts(check_current_text(current_file, "a.current").found),
              testing::ElementsAre(HasSubstr("a.current:2: '0,2' is not what the file's made-by line makes, '0,1'")));
}

TEST(MadeLine, ThatTellsNoSettingsIsWarnedOf) {
  const std::string text = changed(road_text(road(RoadKind::flat)), "spacing 0.7", "spacing zero");
  EXPECT_THAT(finding_texts(check_road_text(text, "a.rdf").found),
              testing::ElementsAre("a.rdf:1: this line tells no settings that qvbrisk makes a file of; take it out, or "
                                   "make the file anew"));
}

TEST(MadeLine, ThatAsksForMoreThanTheFileHoldsIsNotFollowed) {
  RoadSettings huge = road(RoadKind::flat);
  huge.size_x = huge.size_y = 3000;
  huge.spacing = 1;
  const std::string end =
      road_text(road(RoadKind::flat)).substr(made_line_at_head(road_text(road(RoadKind::flat))).size());
  EXPECT_THAT(
      finding_texts(check_road_text(settings_line(huge) + end, "a.rdf").found),
      testing::ElementsAre("a.rdf: the file is shorter than what its made-by line makes; take that line out, or "
                           "make the file anew"));
  WaveSettings long_sea = wave(WaveKind::jonswap);
  long_sea.components = 5000;
  long_sea.duration = 1000;
  const std::string sea = "2,2\n0,1\n0,0,0,0,0\n1,0,0,0,0\n" + settings_line(long_sea) + "\n";
  EXPECT_THAT(finding_texts(check_wave_text(sea, "a.wave").found),
              testing::ElementsAre(HasSubstr("a.wave: the file is shorter than what its made-by line makes")));
}

TEST(MadeLine, IsNotMissedByAFileThatNobodyMade) {
  EXPECT_EQ(made_line_at_head("FILE_TYPE = 'RDF'\n"), "");
  EXPECT_EQ(made_line_at_end(""), "");
  EXPECT_EQ(made_line_at_end("\n\n"), "");
  EXPECT_FALSE(find_tampering_in_wave("2,2\n0,1\n"));
}

}  // namespace
