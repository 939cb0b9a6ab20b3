// The files of tools/report/page, which the build puts into the program.
#ifndef VOREL_TOOLS_REPORT_PAGE_PARTS_H_
#define VOREL_TOOLS_REPORT_PAGE_PARTS_H_

namespace tool {

extern const char kPageTemplate[];
extern const char kPageStyle[];
extern const char kPageViewer[];
extern const char kPageCurves[];
// The chart library; empty where it was not there to build with.
extern const char kChartLibrary[];

}  // namespace tool

#endif  // VOREL_TOOLS_REPORT_PAGE_PARTS_H_
