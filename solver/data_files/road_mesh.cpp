#include "solver/data_files/road_mesh.h"

#include <array>
#include <fstream>
#include <utility>
#include <vector>

#include "solver/model/c_locale.h"

namespace qvslv {

namespace {

/// The whole number after the first '=' of a line, at least 0.
size_t count_of(const std::string& line) {
  const size_t equals = line.find('=');
  if (equals == std::string::npos) return 0;
  const double count = read_double(line.c_str() + equals + 1);
  return count > 0 && count < 1e9 ? static_cast<size_t>(count) : 0;
}

/// Reads the leading numbers of a line, at most four; returns how many there are.
int read_numbers(const std::string& line, std::array<double, 4>& numbers) {
  const char* text = line.c_str();
  int count = 0;
  while (count < 4) {
    char* end = nullptr;
    numbers[static_cast<size_t>(count)] = read_double(text, &end);
    if (end == text) break;
    text = end;
    ++count;
  }
  return count;
}

/// Hands the numbers of `count` lines to `take`, passing over lines that begin with a brace, and reads the spacer line
/// after them too.
template <class Take>
void read_block(std::istream& in, size_t count, Take&& take) {
  std::string line;
  std::array<double, 4> numbers{};
  for (size_t k = 0; std::getline(in, line);) {
    if (!line.empty() && line.front() == '{') continue;
    if (k == count) return;
    ++k;
    numbers.fill(0);
    const int found = read_numbers(line, numbers);
    take(numbers, found);
  }
}

bool is_quoted(const std::string& line) { return line.find('\'') != std::string::npos; }

void drop_bad_triangles(TriangleMesh& mesh) {
  const int nodes = static_cast<int>(mesh.points.size());
  std::vector<std::array<int, 3>> good;
  for (const auto& triangle : mesh.triangles) {
    bool inside = true;
    for (const int corner : triangle) inside = inside && corner >= 0 && corner < nodes;
    if (inside) good.push_back(triangle);
  }
  mesh.triangles.swap(good);
}

}  // namespace

std::optional<TriangleMesh> read_road_mesh(const std::string& path) {
  std::ifstream in(path);
  if (!in) return std::nullopt;
  TriangleMesh mesh;
  std::string line;
  while (std::getline(in, line)) {
    if (is_quoted(line)) continue;
    if (line.find("NUMBER_OF_NODES") != std::string::npos) {
      mesh.points.clear();
      read_block(in, count_of(line), [&](const std::array<double, 4>& numbers, int) {
        mesh.points.push_back({numbers[1], numbers[2], numbers[3]});
      });
    } else if (line.find("NUMBER_OF_ELEMENTS") != std::string::npos) {
      mesh.triangles.clear();
      read_block(in, count_of(line), [&](const std::array<double, 4>& numbers, int found) {
        if (found < 3) return;
        std::array<int, 3> corners{};
        for (size_t k = 0; k < 3; ++k) {
          const bool sensible = numbers[k] >= 1 && numbers[k] < 2e9;
          corners[k] = sensible ? static_cast<int>(numbers[k]) - 1 : -1;  // node numbers count from 1
        }
        mesh.triangles.push_back(corners);
      });
    }
  }
  drop_bad_triangles(mesh);
  if (mesh.triangles.empty()) return std::nullopt;
  return mesh;
}

void RoadMeshes::read_ahead(const std::string& path) {
  if (m_meshes.count(path) == 0) m_meshes.emplace(path, read_road_mesh(path));
}

std::optional<TriangleMesh> RoadMeshes::take(const std::string& path) {
  const auto found = m_meshes.find(path);
  if (found == m_meshes.end()) return read_road_mesh(path);
  std::optional<TriangleMesh> mesh = std::move(found->second);
  m_meshes.erase(found);
  return mesh;
}

}  // namespace qvslv
