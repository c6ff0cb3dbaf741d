#include "cli/progress_line.h"

#include <unistd.h>

#include <cstdio>
#include <utility>

namespace qvcli {

namespace {

std::string duration(double seconds) {
  char text[40];
  if (seconds < 100) {
    std::snprintf(text, sizeof text, "%.0f s", seconds);
  } else if (seconds < 6000) {
    std::snprintf(text, sizeof text, "%.0f min", seconds / 60);
  } else {
    std::snprintf(text, sizeof text, "%.1f h", seconds / 3600);
  }
  return text;
}

}  // namespace

std::string progress_text(const qvslv::Progress& progress, const std::string& time_unit) {
  char head[120];
  const double share = progress.end_time > 0 ? progress.time / progress.end_time : 0;
  std::snprintf(head, sizeof head, "%7.3f / %g %s  %3.0f %%   step %.2g %s", progress.time, progress.end_time,
                time_unit.c_str(), 100 * share, progress.step, time_unit.c_str());
  if (!(share > 0 && progress.wall_seconds > 0)) return head;
  char tail[60];
  std::snprintf(tail, sizeof tail, "   %.2g x real time   ", progress.time / progress.wall_seconds);
  return std::string(head) + tail + duration(progress.wall_seconds * (1 - share) / share) + " left";
}

ProgressLine::ProgressLine(bool wanted, std::string time_unit)
    : m_on(wanted && isatty(STDERR_FILENO) != 0), m_time_unit(std::move(time_unit)) {}

void ProgressLine::show(const qvslv::Progress& progress) {
  constexpr double k_interval = 0.1;  // [s]
  if (!m_on || progress.wall_seconds < m_next) return;
  m_next = progress.wall_seconds + k_interval;
  std::fprintf(stderr, "\r\033[K%s", progress_text(progress, m_time_unit).c_str());
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
