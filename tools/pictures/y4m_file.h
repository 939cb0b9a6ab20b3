// YUV4MPEG2 video, 8-bit 4:2:0.
#ifndef VOREL_TOOLS_PICTURES_Y4M_FILE_H_
#define VOREL_TOOLS_PICTURES_Y4M_FILE_H_

#include <optional>
#include <string>
#include <vector>

#include "tools/files/atomic_file.h"
#include "tools/files/input_file.h"
#include "tools/pictures/picture.h"

namespace tool {

[[nodiscard]] bool is_y4m(const std::vector<uint8_t>& bytes);

class Y4mReader {
 public:
  // `colour` holds unless the file itself names a range and `range_is_given` is false.
  Y4mReader(InputFile file, Colour colour, bool range_is_given);

  [[nodiscard]] Colour colour() const { return colour_; }
  // Number of frames by the file's length; nothing for pipes.
  [[nodiscard]] std::optional<int> expected_frames() const { return expected_frames_; }

  // The next frame; nothing after the last. A cut frame throws.
  [[nodiscard]] std::optional<Picture> next();

 private:
  void parse_header(const std::string& line, bool range_is_given);
  void count_frames(size_t header_bytes);

  InputFile file_;
  Size size_{};
  Colour colour_;
  std::string tags_;
  std::optional<int> expected_frames_;
  int frames_read_ = 0;
  std::vector<uint8_t> chroma_;  // planes of the frame being read
};

class Y4mWriter {
 public:
  explicit Y4mWriter(const std::string& path) : file_(path) {}

  // The first frame decides the size, and its metadata the stream's parameters if it has any.
  void write(const Nv21Frame& frame, const Metadata& metadata);
  void finish() { file_.commit(); }

 private:
  AtomicFile file_;
  bool started_ = false;
};

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_Y4M_FILE_H_
