#include "platform/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <string>

namespace kalmira {

void openMissingStreams() {
  // The lowest free number is taken first, so each null device lands on the missing stream.
  int fd = 0;
  while (fd >= 0 && fd <= STDERR_FILENO) fd = ::open("/dev/null", O_RDWR);
  if (fd > STDERR_FILENO) ::close(fd);
}

void printError(std::string_view line) {
  const std::string text = std::string(line) + '\n';
  (void)!::write(STDERR_FILENO, text.data(), text.size());
}

}  // namespace kalmira
