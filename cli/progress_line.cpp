#include "cli/progress_line.h"

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <utility>
#include <vector>

namespace qvcli {

namespace {

std::string duration(double seconds) {
  if (seconds < 100) return fmt::format("{:.0f} s", seconds);
  if (seconds < 6000) return fmt::format("{:.0f} min", seconds / 60);
  return fmt::format("{:.1f} h", seconds / 3600);
}

/// A piece of the line; pieces of a low rank are kept longest.
struct Piece {
  int rank;
  std::string text;
};

std::string joined(const std::vector<Piece>& pieces, int most) {
  std::string text;
  for (const Piece& piece : pieces)
    if (piece.rank <= most) text += (text.empty() ? "" : "   ") + piece.text;
  return text;
}

/// Characters that fit into a line of standard error without a wrap: the cursor needs the last one.
size_t terminal_width() {
  winsize size = {};
  const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return known ? size.ws_col - 1U : 79U;
}

}  // namespace

std::string progress_text(const qvslv::Progress& progress, const std::string& time_unit, size_t width) {
  const double share = progress.end_time > 0 ? progress.time / progress.end_time : 0;
  std::vector<Piece> pieces = {{2, fmt::format("{:7.3f} / {:g} {}", progress.time, progress.end_time, time_unit)},
                               {0, fmt::format("{:3.0f} %", 100 * share)},
                               {3, fmt::format("step {:.2g} {}", progress.step, time_unit)}};
  if (share > 0 && progress.wall_seconds > 0) {
    pieces.push_back({4, fmt::format("{:.2g} x real time", progress.time / progress.wall_seconds)});
    pieces.push_back({1, duration(progress.wall_seconds * (1 - share) / share) + " left"});
  }
  for (int most = 4; most > 0; --most) {
    std::string text = joined(pieces, most);
    if (text.size() <= width) return text;
  }
  return joined(pieces, 0).substr(0, width);
}

ProgressLine::ProgressLine(bool wanted, std::string time_unit)
    : m_on(wanted && isatty(STDERR_FILENO) != 0), m_time_unit(std::move(time_unit)) {}

void ProgressLine::show(const qvslv::Progress& progress) {
  constexpr double k_interval = 0.1;  // [s]
  if (!m_on || progress.wall_seconds < m_next) return;
  m_next = progress.wall_seconds + k_interval;
  std::fprintf(stderr, "\r\033[K%s", progress_text(progress, m_time_unit, terminal_width()).c_str());
  std::fflush(stderr);
  m_shown = true;
}

void ProgressLine::clear() {
  if (!m_shown) return;
  std::fputs("\r\033[K", stderr);
  std::fflush(stderr);
  m_shown = false;
}

}  // namespace qvcli
