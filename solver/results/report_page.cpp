#include "solver/results/report_page.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "solver/results/report_page/page_data.h"

namespace qvslv {

/// Files embedded at build time (cmake/embed.cmake).
namespace page_files {
extern const std::string_view page_html;
extern const std::string_view style_css;
extern const std::string_view three_js;
extern const std::string_view chart_js;
extern const std::string_view theme_js;
extern const std::string_view page_data_js;
extern const std::string_view color_map_js;
extern const std::string_view camera_js;
extern const std::string_view labels_js;
extern const std::string_view body_shapes_js;
extern const std::string_view terrain_js;
extern const std::string_view afloat_js;
extern const std::string_view replay_js;
extern const std::string_view player_js;
extern const std::string_view curve_style_js;
extern const std::string_view header_js;
extern const std::string_view time_spent_js;
extern const std::string_view plots_js;
extern const std::string_view main_js;
}  // namespace page_files

namespace {

std::string html_text(const std::string& text) {
  std::string out;
  for (const char c : text) {
    switch (c) {
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '&':
        out += "&amp;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

void add_scripts(TextPieces& text) {
  using namespace page_files;
  for (const std::string_view script :
       {three_js, chart_js, theme_js, page_data_js, color_map_js, camera_js, labels_js, body_shapes_js, terrain_js,
        afloat_js, replay_js, player_js, header_js, time_spent_js, curve_style_js, plots_js, main_js}) {
    text.add_lasting("<script>\n");
    text.add_lasting(script);
    text.add_lasting("</script>\n");
  }
}

using AddPart = std::function<void(TextPieces&)>;

/// The template with each `<!--@name-->` replaced by the part of that name. A part is not searched for further names.
TextPieces filled(std::string_view page, const std::map<std::string_view, AddPart>& parts) {
  constexpr std::string_view k_open = "<!--@", k_close = "-->";
  TextPieces text;
  for (;;) {
    const size_t open = page.find(k_open);
    text.add_lasting(page.substr(0, open));
    if (open == std::string_view::npos) return text;
    page.remove_prefix(open + k_open.size());
    const size_t close = page.find(k_close);
    parts.at(page.substr(0, close))(text);
    page.remove_prefix(close + k_close.size());
  }
}

}  // namespace

TextPieces report_page(const Model& model, const Recording& recording, const RunRecord& record,
                       const ReportLimits& limits) {
  const std::string title = html_text(model.title.empty() ? model.path : model.title);
  return filled(page_files::page_html,
                {{"title", [&](TextPieces& text) { text.add(title); }},
                 {"style", [](TextPieces& text) { text.add_lasting(page_files::style_css); }},
                 {"data", [&](TextPieces& text) { add_page_data(text, model, recording, record, limits); }},
                 {"scripts", add_scripts}});
}

}  // namespace qvslv
