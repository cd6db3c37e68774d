// Runs the subcommand of the command line, and turns every failure into one line and an exit code.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "alignment/kernelbuild.h"
#include "commands/commands.h"
#include "support/errors.h"
#include "support/interrupts.h"
#include "support/print.h"

namespace {

constexpr int kDataFailure = 1;
constexpr int kUsageFailure = 2;

int Fail(int code, const std::string& text) {
  itoftool::PrintMessage(text);
  return code;
}

/// Opens standard streams that the parent left closed. Otherwise the next file would get a stream's descriptor, and
/// printed lines would go into that file. Each is opened in the wrong direction, so that using it fails as if closed.
void OpenStandardStreams() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) < 0) open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
}

/// Runs the command, or prints help. Throws for every failure.
void RunCommand(CLI::App& app, int argc, char** argv) {
  itoftool::RefuseOutputWithOneDash(app, std::vector<std::string>(argv + std::min(argc, 1), argv + argc));
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& help) {
    app.exit(help);
    return;
  } catch (const CLI::ParseError&) {
    // The parser reports a missing option before an unknown one, which may be the same option mistyped.
    itoftool::RefuseUnknownWords(app);
    throw;
  }
  itoftool::RequireSubcommand(app);
}

/// Parses the command line and does what it says. Throws for every failure.
void Run(int argc, char** argv) {
  CLI::App app("Aligns depth frames of a time-of-flight camera with the view of a second camera.", "itof");
  app.set_version_flag("--version", std::string("itof " ITOF_VERSION ", " ITOF_BUILD_TYPE " build, ") +
                                        itof::KernelBuildName(itof::PickKernelBuild()));
  // If one were required, the parser would report it as missing instead of naming an unknown word.
  app.require_subcommand(0, 1);
#ifdef ITOF_HAS_HOST_COMMANDS
  itoftool::AddAlignCommand(app);
  itoftool::AddSimulateCommand(app, argc > 0 ? argv[0] : app.get_name());
  itoftool::AddCalibrationCommands(app);
  itoftool::AddExplainCommand(app);
#endif
  itoftool::AddSelfTestCommand(app);
  // Set last, because commands take over the footer that is set when they are added.
  app.footer("Exit code: 0 on success, 1 if the data cannot be used, 2 if the arguments are wrong.");

  // For the shell's completion script and the build. They are not in the help, since nobody types them.
  const std::string_view hidden = argc > 1 ? argv[1] : "";
  if (hidden == "--complete") {
    itoftool::PrintCompletions(app, std::vector<std::string>(argv + 2, argv + argc));
  } else if (hidden == "--man") {
    itoftool::PrintManPage(app, ITOF_VERSION);
  } else {
    RunCommand(app, argc, argv);
  }
  itoftool::FinishOutput();
}

/// Runs the command and returns the exit code.
int ExitCode(int argc, char** argv) {
  try {
    Run(argc, argv);
    return 0;
  } catch (const CLI::ParseError& error) {
    return Fail(kUsageFailure, error.what());
  } catch (const itoftool::UsageError& error) {
    return Fail(kUsageFailure, error.what());
  } catch (const std::bad_alloc&) {
    return Fail(kDataFailure, "out of memory");
  } catch (const std::exception& error) {
    return Fail(kDataFailure, error.what());
  }
}

}  // namespace

int main(int argc, char** argv) {
  OpenStandardStreams();
  // With these ignored, a closed pipe or a file size limit makes a write fail, and partial output is removed.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  const int code = ExitCode(argc, argv);
  itoftool::RaiseCaughtInterrupt();
  return code;
}
