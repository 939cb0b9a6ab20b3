// Whether chroma that was read as pairs looks like two planes, or the reverse.
//
// Chroma is cut into runs of 16 bytes, each with the mean of its even and of its odd bytes. In a
// plane both means are of one colour component and so nearly equal, and half a row of pairs further
// on lies the next row of the plane, which looks alike. In pairs the two means are of U and V, and
// half a row further on the picture shows something else.
#include <cmath>
#include <cstdlib>

#include "tools/pictures/raw_layout.h"

namespace tool {
namespace {

constexpr size_t kRun = 16;
// Less than this many steps of difference are no colour to go by.
constexpr double kLeastColour = 2.0;

struct Run {
  double even;
  double odd;
};

Run run_at(const uint8_t* bytes) {
  int even = 0;
  int odd = 0;
  for (size_t i = 0; i < kRun; i += 2) {
    even += bytes[i];
    odd += bytes[i + 1];
  }
  return {even / (kRun / 2.0), odd / (kRun / 2.0)};
}

double distance(Run a, Run b) { return (std::abs(a.even - b.even) + std::abs(a.odd - b.odd)) / 2; }

// Mean differences over all runs of rows as long as a row of pairs.
struct Statistics {
  double across = 0;     // even and odd bytes of a run
  double half_row = 0;   // a run and the one half a row further on
  double next_row = 0;   // a run and the one below
  double structure = 0;  // a run and the mean of all
};

Statistics look_at(const uint8_t* chroma, size_t row_bytes, size_t rows) {
  Statistics sum;
  Run mean{0, 0};
  size_t count = 0;
  for (const bool second_pass : {false, true}) {
    for (size_t y = 0; y + 1 < rows; ++y) {
      const uint8_t* row = chroma + y * row_bytes;
      for (size_t x = 0; x + kRun <= row_bytes / 2; x += kRun) {
        const Run run = run_at(row + x);
        if (!second_pass) {
          mean.even += run.even;
          mean.odd += run.odd;
          ++count;
          continue;
        }
        sum.across += std::abs(run.even - run.odd);
        sum.half_row += distance(run, run_at(row + row_bytes / 2 / 2 * 2 + x));
        sum.next_row += distance(run, run_at(row + row_bytes + x));
        sum.structure += distance(run, mean);
      }
    }
    if (count == 0) return sum;
    if (!second_pass) {
      mean.even /= static_cast<double>(count);
      mean.odd /= static_cast<double>(count);
    }
  }
  const auto n = static_cast<double>(count);
  return {sum.across / n, sum.half_row / n, sum.next_row / n, sum.structure / n};
}

}  // namespace

std::optional<Layout> likelier_layout(const std::vector<uint8_t>& bytes, const RawShape& shape) {
  const bool planar = is_planar(shape.layout);
  const size_t row_bytes = planar ? 2 * shape.chroma_stride() : shape.chroma_stride();
  const size_t rows = (static_cast<size_t>(shape.size.height) + 1) / 2;
  const uint8_t* chroma =
      bytes.data() + shape.luma_stride() * static_cast<size_t>(shape.size.height);
  const Statistics seen = look_at(chroma, row_bytes, rows);
  if (planar) {
    const bool pairs = seen.across > kLeastColour && seen.across > 4 * seen.next_row;
    return pairs ? std::optional(Layout::kNv12) : std::nullopt;
  }
  const bool planes = seen.structure > kLeastColour && seen.structure > 3 * seen.next_row &&
                      seen.half_row < 1.2 * seen.next_row && seen.across < 1.2 * seen.next_row;
  return planes ? std::optional(Layout::kI420) : std::nullopt;
}

}  // namespace tool
