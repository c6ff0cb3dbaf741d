#include "solver/data_files/polygon_division.h"

#include <assimp/BaseImporter.h>
#include <assimp/importerdesc.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <algorithm>
#include <assimp/Importer.hpp>

namespace {

using qvslv::PolygonMesh;
using qvslv::TriangleMesh;

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

}  // namespace

void qvslv_divide_polygons(const PolygonMesh& polygons, TriangleMesh& mesh, std::string& reason) {
  Assimp::Importer importer;
  importer.RegisterLoader(new PolygonHandover(polygons));  // the importer deletes it
  const char nothing = 0;
  const aiScene* scene =
      importer.ReadFileFromMemory(&nothing, sizeof nothing, aiProcess_Triangulate, PolygonHandover::k_ending);
  if (scene == nullptr || scene->mNumMeshes != 1) {
    reason = std::string("the import library says '") + importer.GetErrorString() + "'";
  } else {
    append(*scene->mMeshes[0], mesh);
  }
}
