// The sRGB transfer curve, from additions, multiplications, divisions and square roots only, so
// that its values have the same bits on every machine.
#ifndef VOREL_TOOLS_PICTURES_GAMMA_H_
#define VOREL_TOOLS_PICTURES_GAMMA_H_

#include <array>
#include <cstdint>
#include <vector>

namespace tool {

// Light of an sRGB value, both on a scale from 0 to 1.
[[nodiscard]] double decode_srgb(double value);

class GammaTables {
 public:
  GammaTables();

  // Light of a byte, 0 to 1.
  [[nodiscard]] double decode(uint8_t value) const { return decode_[value]; }
  // The byte whose light is nearest on the sRGB scale; light outside 0..1 is clamped.
  [[nodiscard]] uint8_t encode(double light) const;

 private:
  std::array<double, 256> decode_;
  std::vector<uint8_t> encode_;
};

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_GAMMA_H_
