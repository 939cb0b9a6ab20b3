// Files of this tree that tests read.
#ifndef VOREL_TESTS_SUPPORT_SOURCE_PATH_H_
#define VOREL_TESTS_SUPPORT_SOURCE_PATH_H_

#include <string>

// `name` counts from the top of the tree. Test programs on a device have their files beside them.
[[nodiscard]] std::string source_path(const std::string& name);

#endif  // VOREL_TESTS_SUPPORT_SOURCE_PATH_H_
