#pragma once

#include <cstdint>
#include <vector>

#include "solver/results/report_page/page_parts.h"
#include "solver/results/water_surface.h"

namespace qvslv {

/// Hulls and waters as the page has them (page_data.h lists the arrays). In its JSON
///   hulls   [{element, body, nodes, patches}]: nodes and patches are counts, taken from the arrays hull after hull
///   waters  [{body, place, axes, y, columns}]: place and axes (x, y, z one after the other) of the water marker in the
///           frame of its body, or in the ground's; y: the sheet's edges; columns: their number
class AfloatData {
public:
  /// @param recording  outlives this; sheets are cut to what all of its frames need
  AfloatData(const Recording& recording, const Vec3& origin);

  /// Bytes that a frame adds to the arrays.
  size_t frame_bytes() const { return 4 * m_x.size() + (m_patches + 7) / 8; }

  void append(const Frame& frame);

  void add_to(PageParts& page) const;

private:
  void choose_strips();
  nlohmann::ordered_json hulls_json() const;
  nlohmann::ordered_json waters_json() const;
  void add_meshes(PageParts& page) const;

  const Recording& m_recording;
  Vec3 m_origin;
  std::vector<WaterStrip> m_strips;
  std::vector<float> m_x, m_levels;
  std::vector<std::uint8_t> m_wet;
  size_t m_patches = 0;
};

}  // namespace qvslv
