// A file, a pipe or standard input, read from front to back.
#ifndef VOREL_TOOLS_FILES_INPUT_FILE_H_
#define VOREL_TOOLS_FILES_INPUT_FILE_H_

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tool {

// Standard input or output, as an input's or output's name.
inline constexpr char kStandardStream[] = "-";

class InputFile {
 public:
  // "-" is standard input, which must not be a terminal. Failures here and below are input errors
  // that name the file.
  explicit InputFile(const std::string& path);

  // For messages: the path, or "standard input".
  [[nodiscard]] const std::string& name() const { return name_; }
  // Bytes of a regular file; nothing for pipes and devices.
  [[nodiscard]] std::optional<uint64_t> length() const { return length_; }

  // The first bytes, at most `count`, without taking them. Only before the first read.
  [[nodiscard]] const std::vector<uint8_t>& peek(size_t count);
  // Fills `bytes` as far as the file goes and returns how many there were.
  size_t read(uint8_t* bytes, size_t count);
  // All that is left; longer files than `limit` are an error.
  [[nodiscard]] std::vector<uint8_t> read_all(size_t limit);
  // A line without its end, or what there is of one in `limit` bytes; nothing at the end.
  [[nodiscard]] std::optional<std::string> read_line(size_t limit);

 private:
  struct Closer {
    void operator()(FILE* file) const { std::fclose(file); }
  };
  void check_error() const;

  std::string name_;
  std::unique_ptr<FILE, Closer> file_;
  std::optional<uint64_t> length_;
  std::vector<uint8_t> front_;  // what was peeked
  size_t taken_ = 0;            // of it
};

}  // namespace tool

#endif  // VOREL_TOOLS_FILES_INPUT_FILE_H_
