// The CIEDE2000 colour difference (CIE 142-2001, weights 1).
#ifndef VOREL_TOOLS_MEASURE_CIEDE2000_H_
#define VOREL_TOOLS_MEASURE_CIEDE2000_H_

#include <array>
#include <cstdint>

namespace tool {

struct Lab {
  double l;
  double a;
  double b;
};

[[nodiscard]] double ciede2000(const Lab& first, const Lab& second);

// sRGB bytes to CIE L*a*b* (D65).
class LabConverter {
 public:
  LabConverter();
  [[nodiscard]] Lab operator()(const uint8_t* rgb) const;

  // Sum of the colour differences of two rows of `width` pixels.
  [[nodiscard]] double difference_sum(const uint8_t* first, const uint8_t* second, int width) const;

 private:
  std::array<double, 256> light_;
};

}  // namespace tool

#endif  // VOREL_TOOLS_MEASURE_CIEDE2000_H_
