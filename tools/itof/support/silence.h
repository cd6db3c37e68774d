// Keeps libraries that print by themselves off the tool's streams.
#ifndef ITOF_TOOL_SUPPORT_SILENCE_H_
#define ITOF_TOOL_SUPPORT_SILENCE_H_

#include <cstdio>

namespace itoftool {

/// While it lives, what anybody writes to `stream` or to its descriptor is lost. Not for use with several threads.
class Silence {
 public:
  explicit Silence(FILE* stream);
  ~Silence();
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;

 private:
  FILE* stream_;
  int saved_;  // the descriptor's duplicate; -1 if nothing was redirected
};

}  // namespace itoftool

#endif  // ITOF_TOOL_SUPPORT_SILENCE_H_
