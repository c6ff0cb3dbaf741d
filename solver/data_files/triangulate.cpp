#include <assimp/BaseImporter.h>
#include <assimp/importerdesc.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <algorithm>
#include <assimp/Importer.hpp>

#include "solver/data_files/mesh_formats.h"

namespace qvslv {

namespace {

/// Hands polygons that are in memory already to the import library, for its division into triangles. The library never
/// sees a file: its readers trust what they read.
class PolygonHandover : public Assimp::BaseImporter {
public:
  explicit PolygonHandover(const PolygonMesh& mesh) : m_mesh(mesh) {}
  static constexpr const char* k_ending = "polygons";

  bool CanRead(const std::string&, Assimp::IOSystem*, bool) const override { return true; }

private:
  const aiImporterDesc* GetInfo() const override {
    static const aiImporterDesc description = {"polygons in memory", "", "", "", 0, 0, 0, 0, 0, k_ending};
    return &description;
  }

  void InternReadFile(const std::string&, aiScene* scene, Assimp::IOSystem*) override {
    scene->mRootNode = new aiNode;
    scene->mMeshes = new aiMesh*[1];
    scene->mMeshes[0] = new aiMesh;
    scene->mNumMeshes = 1;
    fill(*scene->mMeshes[0]);
  }

  void fill(aiMesh& to) const {
    to.mVertices = new aiVector3D[m_mesh.points.size()];
    to.mNumVertices = static_cast<unsigned>(m_mesh.points.size());
    for (std::size_t i = 0; i < m_mesh.points.size(); ++i)
      to.mVertices[i] = aiVector3D(m_mesh.points[i][0], m_mesh.points[i][1], m_mesh.points[i][2]);
    to.mFaces = new aiFace[m_mesh.ends.size()];
    to.mNumFaces = static_cast<unsigned>(m_mesh.ends.size());
    std::size_t begin = 0;
    for (std::size_t i = 0; i < m_mesh.ends.size(); begin = m_mesh.ends[i], ++i) {
      aiFace& face = to.mFaces[i];
      face.mNumIndices = static_cast<unsigned>(m_mesh.ends[i] - begin);
      face.mIndices = new unsigned[face.mNumIndices];
      std::copy(m_mesh.corners.begin() + static_cast<std::ptrdiff_t>(begin),
                m_mesh.corners.begin() + static_cast<std::ptrdiff_t>(m_mesh.ends[i]), face.mIndices);
    }
  }

  const PolygonMesh& m_mesh;
};

void append(const aiMesh& from, TriangleMesh& mesh) {
  for (unsigned i = 0; i < from.mNumFaces; ++i) {
    const aiFace& face = from.mFaces[i];
    if (face.mNumIndices != 3) continue;
    std::array<int, 3> triangle{};
    for (unsigned k = 0; k < 3; ++k) triangle[k] = static_cast<int>(face.mIndices[k]);
    mesh.triangles.push_back(triangle);
  }
}

/// Splitting a polygon takes time by the square of its corners. Throws when that would come to minutes.
void check_effort(const PolygonMesh& mesh) {
  constexpr double k_most = 1e9;
  double effort = 0;
  std::size_t begin = 0;
  for (const std::size_t end : mesh.ends) {
    const auto corners = static_cast<double>(end - begin);
    if (corners > 4) effort += corners * corners;
    begin = end;
  }
  if (effort > k_most)
    throw MeshError(
        "it holds too many polygons of many corners; split them into triangles in the program that made it");
}

/// Divides polygons of four and more corners, which must be there.
void append_divided(const PolygonMesh& polygons, TriangleMesh& mesh) {
  check_effort(polygons);
  Assimp::Importer importer;
  importer.RegisterLoader(new PolygonHandover(polygons));  // the importer deletes it
  const char nothing = 0;
  const aiScene* scene =
      importer.ReadFileFromMemory(&nothing, sizeof nothing, aiProcess_Triangulate, PolygonHandover::k_ending);
  if (scene == nullptr || scene->mNumMeshes != 1)
    throw MeshError(std::string("its polygons cannot be split into triangles: ") + importer.GetErrorString());
  append(*scene->mMeshes[0], mesh);
}

}  // namespace

void PolygonMesh::close_polygon() {
  if (open_corners() < 3) {
    corners.resize(ends.empty() ? 0 : ends.back());
  } else {
    ends.push_back(corners.size());
  }
}

TriangleMesh triangulated(const PolygonMesh& polygons) {
  TriangleMesh mesh;
  mesh.points.reserve(polygons.points.size());
  for (const std::array<float, 3>& p : polygons.points) mesh.points.push_back({p[0], p[1], p[2]});
  if (polygons.corners.size() != 3 * polygons.ends.size()) {
    append_divided(polygons, mesh);
    return mesh;
  }
  mesh.triangles.reserve(polygons.ends.size());
  for (std::size_t k = 0; k < polygons.corners.size(); k += 3)
    mesh.triangles.push_back({static_cast<int>(polygons.corners[k]), static_cast<int>(polygons.corners[k + 1]),
                              static_cast<int>(polygons.corners[k + 2])});
  return mesh;
}

}  // namespace qvslv
