// Runs the subcommand of the command line, and turns every failure into one line and an exit code.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>
#include <string>

#include "alignment/kernelbuild.h"
#include "commands/commands.h"
#include "support/errors.h"

namespace {

constexpr int kDataFailure = 1;
constexpr int kUsageFailure = 2;

/// Prints a failure in one line. File names and messages of other libraries may contain line breaks.
int Fail(int code, std::string text) {
  std::ranges::replace_if(
      text, [](unsigned char c) { return c < ' ' || c == 127; }, ' ');
  std::fprintf(stderr, "itof: %s\n", text.c_str());
  return code;
}

/// Opens standard streams that the parent left closed. Otherwise the next file would get a stream's descriptor, and
/// printed lines would go into that file.
void OpenStandardStreams() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) < 0) open("/dev/null", O_RDWR);
  }
}

/// Parses the command line and runs the command. Returns the exit code; throws for every failure.
int Run(int argc, char** argv) {
  CLI::App app("Aligns depth frames of a time-of-flight camera with the view of a second camera.", "itof");
  app.set_version_flag("--version", std::string("itof " ITOF_VERSION ", " ITOF_BUILD_TYPE " build, ") +
                                        itof::KernelBuildName(itof::PickKernelBuild()));
  // If one were required, the parser would report it as missing instead of naming an unknown word.
  app.require_subcommand(0, 1);
#ifdef ITOF_HAS_HOST_COMMANDS
  itoftool::AddAlignCommand(app);
  itoftool::AddSimulateCommand(app);
  itoftool::AddCalibrationCommands(app);
  itoftool::AddExplainCommand(app);
#endif
  itoftool::AddSelfTestCommand(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& help) {
    return app.exit(help);
  }
  itoftool::RequireSubcommand(app);
  if (std::fflush(stdout) != 0) {
    throw itoftool::DataError(std::string("standard output: ") + std::strerror(errno) + "; output files are complete");
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  OpenStandardStreams();
  // With these ignored, a closed pipe or a file size limit makes a write fail, and partial output is removed.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  try {
    return Run(argc, argv);
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
