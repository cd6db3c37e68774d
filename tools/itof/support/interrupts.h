// Lets a command clean up after an interrupt before the process ends.
#ifndef ITOF_TOOL_SUPPORT_INTERRUPTS_H_
#define ITOF_TOOL_SUPPORT_INTERRUPTS_H_

namespace itoftool {

/// After this call, a first interrupt (SIGINT, SIGTERM, SIGHUP) does not end the process; a second one does.
void CatchInterrupts();

/// Throws DataError if an interrupt was caught. For use before anything is in place.
void CheckInterrupts();

/// Ends the process by the interrupt that was caught, if any, so that a shell's loop or script ends as well.
void RaiseCaughtInterrupt();

}  // namespace itoftool

#endif  // ITOF_TOOL_SUPPORT_INTERRUPTS_H_
