// Tables of figures for the terminal, for spreadsheets and for pages.
#ifndef VOREL_TOOLS_REPORT_TABLE_H_
#define VOREL_TOOLS_REPORT_TABLE_H_

#include <string>
#include <vector>

namespace tool {

// The first column names the rows; every row has as many cells as there are headings.
struct Table {
  std::string title;
  std::vector<std::string> headings;
  std::vector<std::vector<std::string>> rows;
};

// Columns padded, numbers to the right; without the title. Cells come as `printable` shows them.
[[nodiscard]] std::string table_text(const Table& table);

// With a line of headings; cells with commas, quotes or line ends are quoted.
[[nodiscard]] std::string table_csv(const Table& table);

}  // namespace tool

#endif  // VOREL_TOOLS_REPORT_TABLE_H_
