// Files of this tree that tests read.
#ifndef VOREL_TESTS_SUPPORT_SOURCE_PATH_H_
#define VOREL_TESTS_SUPPORT_SOURCE_PATH_H_

#include <filesystem>
#include <string>

// `name` counts from the top of the tree. Test programs on a device have their files beside them.
inline std::string source_path(const std::string& name) {
#if defined(VOREL_SOURCE_DIR)
  const std::filesystem::path top = VOREL_SOURCE_DIR;
#else
  std::error_code ignored;
  const auto top = std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
#endif
  return (top / name).string();
}

#endif  // VOREL_TESTS_SUPPORT_SOURCE_PATH_H_
