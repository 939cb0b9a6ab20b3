#include "tools/report/page.h"

#include <jansson.h>

#include <cmath>
#include <cstdio>
#include <functional>
#include <map>

#include "tools/files/json_text.h"
#include "tools/files/printable.h"
#include "tools/pictures/png_file.h"
#include "tools/report/page_parts.h"

namespace tool {
namespace {

// For text and for attributes in double quotes.
std::string escaped(const std::string& text) {
  std::string safe;
  for (const char c : printable(text)) {
    switch (c) {
      case '&':
        safe += "&amp;";
        break;
      case '<':
        safe += "&lt;";
        break;
      case '>':
        safe += "&gt;";
        break;
      case '"':
        safe += "&quot;";
        break;
      default:
        safe += c;
    }
  }
  return safe;
}

std::string base64(const std::vector<uint8_t>& bytes) {
  constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (size_t i = 0; i < bytes.size(); i += 3) {
    const size_t count = std::min<size_t>(bytes.size() - i, 3);
    uint32_t group = 0;
    for (size_t k = 0; k < 3; ++k) group = group << 8 | (k < count ? bytes[i + k] : 0U);
    for (size_t k = 0; k < 4; ++k) text += k <= count ? kDigits[group >> (18 - 6 * k) & 63] : '=';
  }
  return text;
}

std::string facts_html(const std::vector<PageFact>& facts) {
  std::string html;
  for (const PageFact& fact : facts) {
    html += "<div><dt>" + escaped(fact.name) + "</dt><dd>" + escaped(fact.value) + "</dd></div>\n";
  }
  return html;
}

std::string pictures_html(const std::vector<PagePicture>& pictures) {
  std::string html;
  for (const PagePicture& picture : pictures) {
    const std::string name = escaped(picture.name);
    html += "<figure class=\"source\"><figcaption>" + name + "</figcaption><img alt=\"" + name +
            "\" src=\"data:image/png;base64," + base64(encode_png(picture.image, {})) +
            "\"></figure>\n";
  }
  return html;
}

std::string table_html(const Table& table) {
  std::string html = "<div class=\"wide\" tabindex=\"0\" role=\"group\" aria-label=\"" +
                     escaped(table.title) + "\"><table>\n<caption>" + escaped(table.title) +
                     "</caption>\n<thead><tr>";
  for (const std::string& heading : table.headings) {
    html += "<th scope=\"col\">" + escaped(heading) + "</th>";
  }
  html += "</tr></thead>\n<tbody>\n";
  for (const std::vector<std::string>& row : table.rows) {
    html += "<tr>";
    for (size_t i = 0; i < row.size(); ++i) {
      html +=
          (i == 0 ? "<th scope=\"row\">" : "<td>") + escaped(row[i]) + (i == 0 ? "</th>" : "</td>");
    }
    html += "</tr>\n";
  }
  return html + "</tbody></table></div>\n";
}

std::string short_number(double value) {
  char text[32];
  std::snprintf(text, sizeof(text), "%.6g", value);
  return std::isfinite(value) ? text : "-";
}

Table numbers_of(const PageCurves& curves) {
  Table table{curves.title + ": the numbers", {curves.x_title}, {}};
  for (const PageCurves::Line& line : curves.lines) table.headings.push_back(line.name);
  for (size_t i = 0; i < curves.x.size(); ++i) {
    table.rows.push_back({short_number(curves.x[i])});
    for (const PageCurves::Line& line : curves.lines) {
      table.rows.back().push_back(short_number(line.values[i]));
    }
  }
  return table;
}

std::string curves_html(const std::vector<PageCurves>& all) {
  const bool has_charts = *kChartLibrary != '\0';
  std::string html;
  for (const PageCurves& curves : all) {
    const std::string title = escaped(curves.title);
    html += "<figure class=\"curves\"><figcaption>" + title + "</figcaption>\n";
    if (has_charts) {
      html += "<div class=\"plot\"><canvas role=\"img\" aria-label=\"" + title +
              "; the numbers follow in a table\"></canvas></div>\n";
    } else {
      html += "<p>Made by a program that was built without its chart library.</p>\n";
    }
    html += std::string("<details") + (has_charts ? "" : " open") + "><summary>Numbers</summary>" +
            table_html(numbers_of(curves)) + "</details></figure>\n";
  }
  return html;
}

json_t* numbers_json(const std::vector<double>& values) {
  json_t* list = json_array();
  for (const double value : values) {
    json_array_append_new(list, std::isfinite(value) ? json_real(value) : json_null());
  }
  return list;
}

json_t* curves_json(const PageCurves& curves) {
  json_t* lines = json_array();
  for (const PageCurves::Line& line : curves.lines) {
    json_array_append_new(lines, json_pack("{s:o, s:o}", "name", json_text(line.name), "y",
                                           numbers_json(line.values)));
  }
  return json_pack("{s:o, s:o, s:b, s:b, s:o, s:o}", "xTitle", json_text(curves.x_title), "yTitle",
                   json_text(curves.y_title), "xLogarithmic", curves.x_logarithmic ? 1 : 0,
                   "yLogarithmic", curves.y_logarithmic ? 1 : 0, "x", numbers_json(curves.x),
                   "lines", lines);
}

// What the scripts need. A "<" could end the element that holds it.
std::string data_json(const Page& page) {
  json_t* all = json_array();
  for (const PageCurves& curves : page.curves) json_array_append_new(all, curves_json(curves));
  const auto index = [](size_t value) { return static_cast<json_int_t>(value); };
  std::string text;
  for (const char c : json_lines(json_pack("{s:I, s:I, s:I, s:o}", "left", index(page.left),
                                           "right", index(page.right), "reference",
                                           index(page.reference), "curves", all))) {
    text += c == '<' ? "\\u003c" : std::string(1, c);
  }
  return text;
}

// Replaces every {{name}} of the template, once: what is put in is not looked at again.
std::string filled(const std::string& text,
                   const std::map<std::string, std::function<std::string()>>& parts) {
  std::string result;
  size_t at = 0;
  for (size_t open = text.find("{{"); open != std::string::npos; open = text.find("{{", at)) {
    const size_t close = text.find("}}", open);
    result += text.substr(at, open - at) + parts.at(text.substr(open + 2, close - open - 2))();
    at = close + 2;
  }
  return result + text.substr(at);
}

}  // namespace

std::string page_html(const Page& page) {
  std::string tables;
  for (const Table& table : page.tables) tables += table_html(table);
  const bool has_curves = !page.curves.empty();
  return filled(kPageTemplate, {{"title", [&] { return escaped(page.title); }},
                                {"style", [] { return kPageStyle; }},
                                {"facts", [&] { return facts_html(page.facts); }},
                                {"pictures", [&] { return pictures_html(page.pictures); }},
                                {"tables", [&] { return tables; }},
                                {"curves", [&] { return curves_html(page.curves); }},
                                {"data", [&] { return data_json(page); }},
                                {"chart library", [&] { return has_curves ? kChartLibrary : ""; }},
                                {"viewer script", [] { return kPageViewer; }},
                                {"curves script", [] { return kPageCurves; }}});
}

}  // namespace tool
