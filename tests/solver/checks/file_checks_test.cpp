#include <gmock/gmock.h>

#include <filesystem>

#include "solver/checks/checks.h"
#include "solver/data_files/made_file.h"
#include "solver/read_model.h"
#include "tests/solver/checks/sound_models.h"
#include "tests/support/temporary_folder.h"

/// Checks that look at files beside the model, and at elements that are written plainly.
namespace {

using namespace qvslv;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class FileChecks : public testing::Test {
protected:
  std::vector<std::string> findings_of(const std::string& text) const {
    return finding_texts(read_model_text(text, m_folder.path("model.toml")).findings);
  }

  qvtest::TemporaryFolder m_folder;
};

std::string with(std::string text, const std::string& from, const std::string& to) {
  const size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return text.replace(at, from.size(), to);
}

std::string of_file(const std::string& model, const std::string& name, const std::string& file) {
  std::string text = model;
  for (size_t at; (at = text.find(name)) != std::string::npos;) text.replace(at, name.size(), file);
  return text;
}

const std::string k_head = "SOIL_TYPE=CONCRETE\nNUMBER_OF_NODES=6\n";
/// Two squares along x from -4 to 4, and a hole in the second one.
const std::string k_road_with_hole =
    k_head +
    "1 -4 -2 0\n2 0.5 -2 0\n3 4 -2 0\n4 -4 2 0\n5 0.5 2 0\n6 4 2 0\n\nNUMBER_OF_ELEMENTS=3\n"
    "1 2 5 0\n1 5 4 0\n2 3 5 0\n";

TEST_F(FileChecks, RoadFileIsCheckedWhenAModelUsesIt) {
  m_folder.write("bad.rdf", "COHESION=1,5\n" + k_road_with_hole);
  const std::string model =
      with(of_file(k_wheel_model, "road = \"field\"", "road = \"bad.rdf\""), "[2, 0, 0.025]", "[-2, 0, 0.025]");
  EXPECT_THAT(findings_of(model), ElementsAre(HasSubstr("bad.rdf:1: COHESION: '1,5' is read as 1")));
}

TEST_F(FileChecks, BodyOverAHoleOfTheRoadIsBesideIt) {
  m_folder.write("hole.rdf", k_road_with_hole);
  const std::string model =
      with(of_file(k_wheel_model, "road = \"field\"", "road = \"hole.rdf\""), "[2, 0, 0.025]", "[3, 1.5, 0.025]");
  EXPECT_THAT(findings_of(with(model, "motion = \"0.5*t\"", "")),
              ElementsAre(HasSubstr("element 'plate', road: the plate's middle starts at x = 3, y = 1.5 of the road "
                                    "'hole.rdf', where it has a hole: no soil carries it")));
}

TEST_F(FileChecks, RoadThatIsMadeFromSettingsNeedsNoFile) {
  EXPECT_THAT(findings_of(k_wheel_model), IsEmpty());
  EXPECT_FALSE(std::filesystem::exists(m_folder.path("field.rdf")));
}

TEST_F(FileChecks, WaveAndCurrentFilesAreCheckedWhenAModelUsesThem) {
  m_folder.write("a.wave", "2,2\n0,70\n0,0.1,0.1,0,0\n1,0.1,0.1,0,0\n5\n");
  m_folder.write("a.current", "1,3\n0,0.5\n1,0\n0,0\n");
  const std::string waves = of_file(sound_afloat_model(), "wave = \"sea\"", "wave = \"a.wave\"");
  const std::string model = of_file(waves, "current = \"stream\"", "current = \"a.current\"");
  EXPECT_THAT(
      findings_of(model),
      ElementsAre(HasSubstr("a.wave:5: more numbers follow than the counts promise"),
                  HasSubstr("a.current: mode 3 of the table along x acts like 0 (over y)"),
                  AllOf(HasSubstr("a.wave: the table ends at 1, the run at 2: from there on the water keeps its "
                                  "last shape; make a longer table"))));
}

TEST_F(FileChecks, LevelWaterMayEndBeforeTheRun) {
  m_folder.write("a.wave", "2,2\n0,70\n0,0,0,0,0\n1,0,0,0,0\n");
  EXPECT_THAT(findings_of(of_file(sound_afloat_model(), "wave = \"sea\"", "wave = \"a.wave\"")), IsEmpty());
}

TEST_F(FileChecks, HullThatStaysInStillWaterNeedsNoFineMesh) {
  const std::string coarse = with(sound_afloat_model(), "divisions = [8, 4, 32]", "divisions = [2, 1, 1]");
  EXPECT_THAT(findings_of(coarse), ElementsAre(HasSubstr("the triangles at the waterline are 1 high")));
  const std::string still = with(coarse, "kind = \"regular\"\nheight = 0.2\nperiod = 3", "kind = \"still\"");
  EXPECT_THAT(findings_of(still), ElementsAre(HasSubstr("the triangles at the waterline are 1 high")));
  const std::string no_current = with(still, "speed = 0.5", "speed = 0");
  EXPECT_THAT(findings_of(no_current), ElementsAre(HasSubstr("the triangles at the waterline are 1 high")));
  const std::string held = with(no_current, "position = [30, 0, 0]",
                                "\n[[joint]]\nname = \"rod\"\ntype = \"slider\"\nbody = \"barge\"\n"
                                "position = [30, 0, 0]\naxis = \"z\"");
  EXPECT_THAT(findings_of(held), IsEmpty());
  const std::string towed = with(held, "axis = \"z\"", "axis = \"x\"");
  EXPECT_THAT(findings_of(towed), ElementsAre(HasSubstr("the triangles at the waterline are 1 high")));
}

/// The findings of a model whose hull is taken for one that was written plainly, with its `par` changed.
template <class Change>
std::vector<std::string> findings_of_plain_hull(Change change) {
  ModelFile file = read_model_text(sound_afloat_model(), "model.toml");
  file.hulls.clear();
  for (Element& element : file.model.elements)
    if (element.subroutine == "qvhydro_force") change(element.par);
  check_model(file);
  return finding_texts(file.findings);
}

TEST(PlainHull, OfClosedPatchesIsQuiet) {
  EXPECT_THAT(findings_of_plain_hull([](std::vector<double>&) {}), IsEmpty());
}

TEST(PlainHull, OfOpenPatchesIsWarnedOf) {
  EXPECT_THAT(findings_of_plain_hull([](std::vector<double>& par) {
                const size_t patches = 21 + 3 * static_cast<size_t>(par[20]);
                par[patches] -= 1;
                par.resize(par.size() - 3);
              }),
              ElementsAre(HasSubstr("element 'hull', par: the patches bound no hull: the mesh is not closed: 3 edges "
                                    "belong to one triangle only")));
}

TEST(PlainHull, OfPatchesThatFaceInwardsIsWarnedOf) {
  EXPECT_THAT(
      findings_of_plain_hull([](std::vector<double>& par) {
        const size_t patches = 21 + 3 * static_cast<size_t>(par[20]);
        for (size_t at = patches + 1; at < par.size(); at += 3) std::swap(par[at], par[at + 1]);
      }),
      ElementsAre(HasSubstr("the patches bound no hull: the triangles face inwards (the volume comes out as -8)")));
}

TEST(HullInParts, CountsAsOneHull) {
  const std::string model = with(sound_afloat_model(), "density = \"rho\"", "density = \"rho\"\nparts = 3");
  const std::string whole = with(model, "report = { force = \"wind\",", "report = { force = \"wind\",");
  EXPECT_THAT(finding_texts(read_model_text(whole, "model.toml").findings), IsEmpty());
  EXPECT_THAT(finding_texts(read_model_text(with(whole, "mass = 500", "mass = 8001"), "model.toml").findings),
              ElementsAre(HasSubstr("element 'hull_1', body: 'barge' and what hangs on it have the mass 8001")));
}

}  // namespace
