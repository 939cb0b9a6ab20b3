#include "tools/report/table.h"

#include <algorithm>

#include "tools/files/printable.h"
#include "tools/files/utf8.h"

namespace tool {
namespace {

constexpr size_t kGap = 2;

size_t letters_of(const std::string& text) {
  size_t letters = 0;
  for (size_t i = 0; i < text.size(); ++letters) i += std::max<size_t>(utf8_length(text, i), 1);
  return letters;
}

std::string csv_cell(const std::string& cell) {
  if (cell.find_first_of(",\"\r\n") == std::string::npos) return cell;
  std::string quoted = "\"";
  for (const char c : cell) quoted += c == '"' ? "\"\"" : std::string(1, c);
  return quoted + "\"";
}

std::string csv_line(const std::vector<std::string>& cells) {
  std::string line;
  for (size_t i = 0; i < cells.size(); ++i) line += (i > 0 ? "," : "") + csv_cell(cells[i]);
  return line + "\n";
}

}  // namespace

std::string table_text(const Table& table) {
  std::vector<std::vector<std::string>> lines{table.headings};
  lines.insert(lines.end(), table.rows.begin(), table.rows.end());
  std::vector<size_t> widths(table.headings.size());
  for (std::vector<std::string>& line : lines) {
    for (size_t i = 0; i < line.size(); ++i) {
      line[i] = printable(line[i]);
      widths[i] = std::max(widths[i], letters_of(line[i]));
    }
  }
  std::string text;
  for (const std::vector<std::string>& line : lines) {
    std::string padded;
    for (size_t i = 0; i < line.size(); ++i) {
      const std::string pad(widths[i] - letters_of(line[i]), ' ');
      padded += i == 0 ? line[i] + pad : std::string(kGap, ' ') + pad + line[i];
    }
    text += padded.substr(0, padded.find_last_not_of(' ') + 1) + "\n";
  }
  return text;
}

std::string table_csv(const Table& table) {
  std::string text = csv_line(table.headings);
  for (const std::vector<std::string>& row : table.rows) text += csv_line(row);
  return text;
}

}  // namespace tool
