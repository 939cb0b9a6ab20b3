// Cuts a range of columns or rows into consecutive tiles.
#ifndef VOREL_TILES_H_
#define VOREL_TILES_H_

#include <cstdint>

#include "vorel/export.h"

/// A tile of columns [begin, end).
struct TilePosHorz {
  int32_t begin;
  int32_t end;
};

/// A tile of rows [begin, end).
struct TilePosVert {
  int32_t begin;
  int32_t end;
};

/// Callers: divides the columns [start, end) into `count` tiles of (end - start) / count columns
/// each, the last one up to `end`. Fills tiles[0 .. count - 1] and returns `tiles`. Writes nothing
/// when `count` is below 1. Arithmetic wraps in 32 bits.
VOREL_EXPORT TilePosHorz* calcTilePosHorz(TilePosHorz* tiles, int count, int start, int end);

/// Callers: the same for rows.
VOREL_EXPORT TilePosVert* calcTilePosVert(TilePosVert* tiles, int count, int start, int end);

#endif  // VOREL_TILES_H_
