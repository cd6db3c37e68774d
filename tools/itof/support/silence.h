// Silences libraries that print to the tool's standard streams.
#ifndef ITOF_TOOL_SUPPORT_SILENCE_H_
#define ITOF_TOOL_SUPPORT_SILENCE_H_

#include <cstdio>

namespace itoftool {

/// Discards everything that is written to `stream` or its descriptor during its lifetime. Not for use with several
/// threads.
class Silence {
 public:
  explicit Silence(FILE* stream);
  ~Silence();
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;

 private:
  FILE* stream_;
  int saved_;  // duplicate of the descriptor; -1 if it could not be redirected
};

}  // namespace itoftool

#endif  // ITOF_TOOL_SUPPORT_SILENCE_H_
