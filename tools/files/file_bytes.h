// Whole files in memory.
#ifndef VOREL_TOOLS_FILES_FILE_BYTES_H_
#define VOREL_TOOLS_FILES_FILE_BYTES_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tool {

// Throws an input error that says why the file cannot be read, or that it is longer than `limit`.
[[nodiscard]] std::vector<uint8_t> read_file(const std::string& path, size_t limit);

// The same as text, for tuning files.
[[nodiscard]] std::string read_text_file(const std::string& path);

// Whether both names lead to one existing file.
[[nodiscard]] bool is_same_file(const std::string& a, const std::string& b);

}  // namespace tool

#endif  // VOREL_TOOLS_FILES_FILE_BYTES_H_
