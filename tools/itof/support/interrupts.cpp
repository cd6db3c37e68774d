// Remembers the interrupt that was caught.
#include "support/interrupts.h"

#include <csignal>

#include "support/errors.h"

namespace itoftool {
namespace {

volatile std::sig_atomic_t caught = 0;

}  // namespace

void CatchInterrupts() {
  struct sigaction action {};
  action.sa_handler = [](int signal) { caught = signal; };
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction before {};
    sigaction(signal, nullptr, &before);
    // A signal that is already ignored, e.g. under nohup, stays ignored.
    if (before.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);
  }
}

void CheckInterrupts() {
  if (caught != 0) throw DataError("interrupted; nothing was written");
}

void RaiseCaughtInterrupt() {
  if (caught == 0) return;
  std::signal(caught, SIG_DFL);
  std::raise(caught);
}

}  // namespace itoftool
