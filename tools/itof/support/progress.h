// Shows how far a command is.
#ifndef ITOF_TOOL_SUPPORT_PROGRESS_H_
#define ITOF_TOOL_SUPPORT_PROGRESS_H_

#include <cstddef>

namespace itoftool {

/// Shows a progress bar on standard error if that is a terminal and `off` is false. The destructor erases it.
class Progress {
 public:
  /// `what` is counted, e.g. "frames"; it must outlive the object.
  Progress(size_t total, const char* what, bool off = false);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Show(size_t done) const;

 private:
  size_t total_;
  const char* what_;
  bool visible_;
};

}  // namespace itoftool

#endif  // ITOF_TOOL_SUPPORT_PROGRESS_H_
