// What every file that a reader of the command meets must stand.
#ifndef VOREL_FUZZ_PICTURE_CHECK_H_
#define VOREL_FUZZ_PICTURE_CHECK_H_

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tools/files/failure.h"
#include "tools/pictures/read_options.h"

// Writes the one input file of this process, in memory, and returns its path. What no file can be
// called becomes a dot.
[[nodiscard]] std::string write_input(std::string name, const uint8_t* data, size_t size);

// Calls `body`, which may refuse its input with a sentence, as bad input or bad usage only.
template <typename Body>
void may_refuse(Body body) {
  try {
    body();
  } catch (const tool::Failure& failure) {
    const bool refused = failure.status() == tool::kBadInput || failure.status() == tool::kBadUsage;
    if (refused && failure.what()[0] != '\0') return;
    std::fprintf(stderr, "status %d: \"%s\"\n", failure.status(), failure.what());
    std::abort();
  }
}

// Reads a file to its end as the command does. Of each picture: its size is legal, it converts to
// both forms, a PNG of it holds the same pixels, and its own JPEG file takes others. Large pictures
// are left out: they are only slower.
void read_pictures(const std::string& path, const tool::ReadOptions& options);

#endif  // VOREL_FUZZ_PICTURE_CHECK_H_
