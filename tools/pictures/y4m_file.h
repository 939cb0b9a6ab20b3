// YUV4MPEG2 video, 8-bit 4:2:0.
#ifndef VOREL_TOOLS_PICTURES_Y4M_FILE_H_
#define VOREL_TOOLS_PICTURES_Y4M_FILE_H_

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "tools/files/atomic_file.h"
#include "tools/pictures/picture.h"

namespace tool {

class Y4mReader {
 public:
  // `colour` holds unless the file itself names a range and `range_is_given` is false.
  Y4mReader(const std::string& path, Colour colour, bool range_is_given);

  [[nodiscard]] Size size() const { return size_; }
  [[nodiscard]] Colour colour() const { return colour_; }
  // Stream parameters other than the size.
  [[nodiscard]] const std::string& tags() const { return tags_; }
  // Number of frames by the file's length; nothing for pipes.
  [[nodiscard]] std::optional<int> expected_frames() const { return expected_frames_; }

  // The next frame; nothing after the last. A cut frame throws.
  [[nodiscard]] std::optional<Nv21Frame> next();

 private:
  struct Closer {
    void operator()(FILE* file) const { std::fclose(file); }
  };
  void parse_header(const std::string& line, bool range_is_given);
  void count_frames(size_t header_bytes);

  std::string path_;
  std::unique_ptr<FILE, Closer> file_;
  Size size_{};
  Colour colour_;
  std::string tags_;
  std::optional<int> expected_frames_;
  int frames_read_ = 0;
};

class Y4mWriter {
 public:
  explicit Y4mWriter(const std::string& path) : file_(path) {}

  // The first frame decides the size. `tags` are the source's stream parameters, or empty.
  void write(const Nv21Frame& frame, const std::string& tags);
  void finish() { file_.commit(); }

 private:
  AtomicFile file_;
  std::optional<Size> size_;
};

}  // namespace tool

#endif  // VOREL_TOOLS_PICTURES_Y4M_FILE_H_
