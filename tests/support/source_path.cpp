#include "tests/support/source_path.h"

#include <filesystem>

std::string source_path(const std::string& name) {
#if defined(VOREL_SOURCE_DIR)
  const std::filesystem::path top = VOREL_SOURCE_DIR;
#else
  std::error_code ignored;
  const auto top = std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
#endif
  return (top / name).string();
}
