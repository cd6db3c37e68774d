// Runs the built tool as its users do, and checks its exit code, its streams and its files.
#ifndef ITOF_TESTS_SUPPORT_TOOLRUNNER_H_
#define ITOF_TESTS_SUPPORT_TOOLRUNNER_H_

#include <fnmatch.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "support/testfolder.h"

class ToolRunner : public TestFolder {
 protected:
  struct Result {
    int code;  // exit code
    std::string out, err;
  };

  static std::string Quoted(const std::string& path) {
    std::string word = "'";
    for (const char c : path) word += c == '\'' ? "'\\''" : std::string(1, c);
    return word + "'";
  }

  /// Runs the tool in the test's folder. `arguments` are shell words; $align stands for the command with a good
  /// calibration and the output folder. `before` precedes the tool's name in the shell's line.
  Result Run(const std::string& arguments, const std::string& before = "") const {
    const std::string line = "cd " + Quoted(folder_) + " && align='align --calibration good.bin --output out' && " +
                             before + " " + Quoted(ITOF_TOOL_PATH) + " >stdout 2>stderr " + arguments;
    const Result result{WEXITSTATUS(std::system(line.c_str())), Read("stdout"), Read("stderr")};
    for (const char* stream : {"stdout", "stderr"}) std::filesystem::remove(folder_ / stream);
    return result;
  }

  /// Expects the run to end with `code`, to print a single line, which contains `pattern` (a shell's), and to leave every
  /// file as it was.
  void ExpectFailure(int code, const std::string& arguments, const char* pattern, const char* before = "") const {
    SCOPED_TRACE(arguments);
    const auto files = Files();
    const Result result = Run(arguments, before);
    EXPECT_EQ(result.code, code);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(std::ranges::count(result.err, '\n'), 1) << result.err;
    EXPECT_EQ(fnmatch((std::string("itof: *") + pattern + "*\n").c_str(), result.err.c_str(), 0), 0) << result.err;
    EXPECT_TRUE(Files() == files);
  }
};

#endif  // ITOF_TESTS_SUPPORT_TOOLRUNNER_H_
