// The test chart as a picture.
#ifndef VOREL_TOOLS_REPORT_CHART_PICTURE_H_
#define VOREL_TOOLS_REPORT_CHART_PICTURE_H_

#include "tools/pictures/picture.h"

namespace tool {

// The same bytes on every machine.
[[nodiscard]] RgbImage chart_picture();

}  // namespace tool

#endif  // VOREL_TOOLS_REPORT_CHART_PICTURE_H_
