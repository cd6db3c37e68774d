// Runs the built program as its users do, and looks at its exit code, its streams and its files.
#ifndef ITOF_TESTS_SUPPORT_TOOLRUNNER_H_
#define ITOF_TESTS_SUPPORT_TOOLRUNNER_H_

#include <fnmatch.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>

/// A test with a folder of its own, in which the program runs.
class ToolRunner : public testing::Test {
 protected:
  struct Result {
    int code;  // exit code; above 128: ended by a signal
    std::string out, err;
  };

  void SetUp() override { std::filesystem::create_directories(folder_); }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  void Write(const char* name, const std::string& bytes) { std::ofstream(folder_ / name, std::ios::binary) << bytes; }
  std::string Read(const std::filesystem::path& name) const {
    std::ifstream file(folder_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  /// Every file of the test, hidden ones and folders included, with what it holds.
  std::map<std::filesystem::path, std::string> Files() const {
    std::map<std::filesystem::path, std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_))
      files[entry] = entry.is_directory() ? "" : Read(entry.path());
    return files;
  }

  /// Runs the tool with a shell's words for arguments, in the test's folder. $align is the command with a good
  /// calibration and the output folder; `before` is what the shell reads before the tool's name.
  Result Run(const std::string& arguments, const std::string& before = "") const {
    const std::string line = "cd '" + folder_.string() + "' && align='align --calibration good.bin --output out' && " +
                             before + " '" ITOF_TOOL_PATH "' >stdout 2>stderr " + arguments;
    const Result result{WEXITSTATUS(std::system(line.c_str())), Read("stdout"), Read("stderr")};
    for (const char* stream : {"stdout", "stderr"}) std::filesystem::remove(folder_ / stream);
    return result;
  }

  /// The run ends with `code`, nothing but one line that has `pattern` (a shell's) in it, and every file as it was.
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

  const std::filesystem::path folder_ = testing::TempDir() + "itof-tool-test-" + std::to_string(getpid());
};

#endif  // ITOF_TESTS_SUPPORT_TOOLRUNNER_H_
