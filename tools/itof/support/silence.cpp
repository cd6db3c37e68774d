// Redirects a stream's descriptor to /dev/null. The library prints a line per frame and the picture decoders print
// their own messages; neither has a switch for that.
#include "support/silence.h"

#include <fcntl.h>
#include <unistd.h>

namespace itoftool {

Silence::Silence(FILE* stream) : stream_(stream), saved_(-1) {
  // Text that is still in the buffer must appear.
  std::fflush(stream_);
  const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (null < 0) return;
  saved_ = fcntl(fileno(stream_), F_DUPFD_CLOEXEC, 0);
  if (saved_ >= 0) dup2(null, fileno(stream_));
  close(null);
}

Silence::~Silence() {
  if (saved_ < 0) return;
  std::fflush(stream_);
  dup2(saved_, fileno(stream_));
  close(saved_);
}

}  // namespace itoftool
