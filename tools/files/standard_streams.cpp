#include "tools/files/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

namespace tool {

void hold_standard_streams() {
  // Opened for what the stream is not used for. The lower numbers are taken by then.
  constexpr int kModes[] = {O_WRONLY, O_RDONLY, O_WRONLY};
  for (int number = STDIN_FILENO; number <= STDERR_FILENO; ++number) {
    if (fcntl(number, F_GETFD) == -1) static_cast<void>(open("/dev/null", kModes[number]));
  }
}

}  // namespace tool
