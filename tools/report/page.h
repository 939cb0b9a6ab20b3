// A page that shows results in a browser: pictures behind a divider, figures, curves. One file that
// needs nothing else.
#ifndef VOREL_TOOLS_REPORT_PAGE_H_
#define VOREL_TOOLS_REPORT_PAGE_H_

#include <string>
#include <vector>

#include "tools/pictures/picture.h"
#include "tools/report/table.h"

namespace tool {

struct PagePicture {
  std::string name;
  RgbImage image;
};

// Lines over a common axis.
struct PageCurves {
  struct Line {
    std::string name;
    std::vector<double> values;  // one for each x; what is not finite leaves a gap
  };
  std::string title;
  std::string x_title;
  std::string y_title;
  bool x_logarithmic = false;
  bool y_logarithmic = false;
  std::vector<double> x;
  std::vector<Line> lines;
};

struct PageFact {
  std::string name;
  std::string value;
};

// All texts may hold anything, file names for instance.
struct Page {
  std::string title;
  std::vector<PageFact> facts;
  std::vector<PagePicture> pictures;  // at least two, of one size
  size_t left = 0;                    // what the divider parts at first
  size_t right = 1;
  size_t reference = 0;  // what differences are shown from
  std::vector<Table> tables;
  std::vector<PageCurves> curves;
};

[[nodiscard]] std::string page_html(const Page& page);

}  // namespace tool

#endif  // VOREL_TOOLS_REPORT_PAGE_H_
