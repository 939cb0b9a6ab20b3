// Distances of pictures from a reference, for people and for programs.
#ifndef VOREL_TOOLS_MEASURE_DISTANCE_TABLE_H_
#define VOREL_TOOLS_MEASURE_DISTANCE_TABLE_H_

#include <jansson.h>

#include <string>
#include <vector>

#include "tools/measure/chart_figures.h"
#include "tools/measure/metrics.h"

namespace tool {

struct NamedDistance {
  std::string name;
  PictureDistance distance;
};

// One column per picture. From the second on each figure says how it differs from the first
// picture's and whether that is better. Ends with a line end.
[[nodiscard]] std::string distance_table(const std::vector<NamedDistance>& pictures);

// The same table as rows of cells: the names of the pictures, then a row for each figure.
[[nodiscard]] std::vector<std::vector<std::string>> distance_cells(
    const std::vector<NamedDistance>& pictures);

// A new array of objects with "file", "psnr_y", "psnr_u", "psnr_v" (null when the planes are equal)
// and "ciede2000".
[[nodiscard]] json_t* distance_list(const std::vector<NamedDistance>& pictures);

// A JSON object: "reference" and the list above as "pictures", each with "patches" and "edges" when
// `charts`, as many as pictures, has them. Ends with a line end.
[[nodiscard]] std::string distance_json(const std::string& reference,
                                        const std::vector<NamedDistance>& pictures,
                                        const std::vector<ChartFigures>& charts = {});

// "31.42", or "equal" for an infinite figure.
[[nodiscard]] std::string figure_text(double figure);

}  // namespace tool

#endif  // VOREL_TOOLS_MEASURE_DISTANCE_TABLE_H_
