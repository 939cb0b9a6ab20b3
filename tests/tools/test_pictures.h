// Small pictures for the command's tests.
#ifndef VOREL_TESTS_TOOLS_TEST_PICTURES_H_
#define VOREL_TESTS_TOOLS_TEST_PICTURES_H_

#include <string>

#include "tools/pictures/picture.h"

// Smooth colour gradients with a few hard edges.
tool::RgbImage gradient_picture(int width, int height);

// Every sample different from its neighbours, in luma and in chroma.
tool::Nv21Frame patterned_frame(int width, int height);

// Writes a picture to a file whose name decides the kind.
void save(const std::string& path, const tool::RgbImage& image);
void save(const std::string& path, const tool::Nv21Frame& frame);

// The FNV-1a hash of bytes, for results that must be the same on every machine.
uint64_t digest(const std::vector<uint8_t>& bytes);

#endif  // VOREL_TESTS_TOOLS_TEST_PICTURES_H_
