#include "bench/pair/loaded_library.h"

#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>

namespace {

template <typename Function>
void find(void* library, const char* name, Function* function) {
  *function = reinterpret_cast<Function>(dlsym(library, name));
  if (*function == nullptr) throw std::runtime_error(dlerror());
}

}  // namespace

LoadedLibrary::LoadedLibrary(const std::string& path) {
  // A path with a folder: a bare name, and so a library's own name, would find the other one.
  void* library = dlopen(std::filesystem::absolute(path).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) throw std::runtime_error(dlerror());
  find(library, "vorel_init", &init);
  find(library, "vorel_run", &run);
  find(library, "vorel_release_frame_buffers", &release_frame_buffers);
  find(library, "vorel_deinit", &deinit);
}
