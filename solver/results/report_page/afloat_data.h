#pragma once

#include <cstdint>
#include <vector>

#include "solver/results/recording.h"
#include "solver/results/report_page/page_parts.h"
#include "solver/results/water_surface.h"

namespace qvslv {

/// Collects what the page holds about hulls and waters. page_data.h lists the arrays; the JSON holds
///   hulls   [{element, body, water, nodes, patches}]: water is the index of its water, -1 for none; nodes and patches
///           are counts; the arrays hold them hull after hull
///   waters  [{body, place, axes, y, columns}]: place and axes (x, y, z one after the other) of the water marker in the
///           frame of its body, or in the ground's; y: edges of the sheet; columns: their number
class AfloatData {
public:
  /// @param recording  must outlive this object; the sheets of water are cut to what all of its frames need
  /// @param origin     of the page, in ground axes
  AfloatData(const Recording& recording, const Vec3& origin);

  /// Number of bytes that a frame adds to the arrays.
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
