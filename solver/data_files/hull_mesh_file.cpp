#include <assimp/config.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <algorithm>
#include <array>
#include <assimp/Importer.hpp>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <string>

#include "solver/data_files/hull_mesh.h"

namespace qvslv {

namespace {

/// Throws for other formats than those tested here; the importer knows many more.
void check_extension(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
  if (extension != ".stl" && extension != ".obj" && extension != ".ply")
    throw MeshError("'" + path + "' is no mesh file known here; known: .stl, .obj, .ply");
}

void append(const aiMesh& from, TriangleMesh& mesh) {
  const int first = static_cast<int>(mesh.points.size());
  for (unsigned i = 0; i < from.mNumVertices; ++i) {
    const aiVector3D& p = from.mVertices[i];
    if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z))
      throw MeshError("a point of it is no finite number");
    mesh.points.push_back({p.x, p.y, p.z});
  }
  for (unsigned i = 0; i < from.mNumFaces; ++i) {
    const aiFace& face = from.mFaces[i];
    if (face.mNumIndices != 3) continue;  // points and lines are no part of a surface
    std::array<int, 3> triangle{};
    for (unsigned k = 0; k < 3; ++k) triangle[k] = first + static_cast<int>(face.mIndices[k]);
    mesh.triangles.push_back(triangle);
  }
}

}  // namespace

TriangleMesh read_mesh_file(const std::string& path) {
  check_extension(path);
  Assimp::Importer importer;
  importer.SetPropertyInteger(AI_CONFIG_PP_RVC_FLAGS, aiComponent_NORMALS | aiComponent_TEXCOORDS | aiComponent_COLORS |
                                                          aiComponent_MATERIALS | aiComponent_TEXTURES);
  const aiScene* scene = importer.ReadFile(
      path, aiProcess_RemoveComponent | aiProcess_Triangulate | aiProcess_PreTransformVertices | aiProcess_SortByPType);
  if (scene == nullptr) throw MeshError("'" + path + "' cannot be read: " + importer.GetErrorString());
  TriangleMesh mesh;
  for (unsigned i = 0; i < scene->mNumMeshes; ++i) append(*scene->mMeshes[i], mesh);
  if (mesh.triangles.empty()) throw MeshError("'" + path + "' holds no triangles");
  return welded(mesh);
}

}  // namespace qvslv
