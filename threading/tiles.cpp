#include "vorel/tiles.h"

#include "platform/wraps.h"

namespace {

int32_t wrap(uint32_t value) { return static_cast<int32_t>(value); }

template <typename Tile>
VOREL_WRAPS Tile* cut(Tile* tiles, int count, int start, int end) {
  if (count < 1) return tiles;
  const uint32_t first = static_cast<uint32_t>(start);
  const uint32_t step = static_cast<uint32_t>(wrap(static_cast<uint32_t>(end) - first) / count);
  for (int i = 0; i < count; ++i) {
    const uint32_t index = static_cast<uint32_t>(i);
    tiles[i] = {wrap(first + index * step), wrap(first + (index + 1) * step)};
  }
  tiles[count - 1].end = end;
  return tiles;
}

}  // namespace

TilePosHorz* calcTilePosHorz(TilePosHorz* tiles, int count, int start, int end) {
  return cut(tiles, count, start, end);
}

TilePosVert* calcTilePosVert(TilePosVert* tiles, int count, int start, int end) {
  return cut(tiles, count, start, end);
}
