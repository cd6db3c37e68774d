// Entry point of the tool: finds the subcommand, and turns every failure into one line and an exit code.
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

/// Prints the one line of a failure. File names and other libraries' texts may hold line ends.
int Fail(int code, std::string text) {
  std::ranges::replace_if(
      text, [](unsigned char c) { return c < ' ' || c == 127; }, ' ');
  std::fprintf(stderr, "itof: %s\n", text.c_str());
  return code;
}

/// A standard stream that the parent left closed would give its descriptor to the next file, and lines would go into
/// that.
void OpenStandardStreams() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) < 0) open("/dev/null", O_RDWR);
  }
}

/// Throws what a command throws.
int Run(int argc, char** argv) {
  CLI::App app("Aligns depth frames of a time-of-flight camera with the view of a second camera.", "itof");
  app.set_version_flag("--version", std::string("itof " ITOF_VERSION ", " ITOF_BUILD_TYPE " build, ") +
                                        itof::KernelBuildName(itof::PickKernelBuild()));
  // Not one at least, or the parser would ask for it where it should name the word that it does not know.
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
    throw itoftool::DataError(std::string("standard output: ") + std::strerror(errno) + "; the files are written");
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  OpenStandardStreams();
  // A reader that goes away and a file size limit show as failed writes, so that what is half done is cleared away.
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
