// Checks that a command's outputs appear together or not at all.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <functional>

#include "files/files.h"
#include "support/errors.h"
#include "support/testfolder.h"

namespace {
namespace fs = std::filesystem;
using namespace itoftool;

class StagedOutputTest : public TestFolder {
 protected:
  void SetUp() override {
    TestFolder::SetUp();
    Write("a", "old a");
  }

  /// Writes the files a, b and c and calls `disturb` before Commit, which is expected to throw.
  static void ExpectFailure(const fs::path& folder, const std::function<void()>& disturb) {
    StagedOutput output(folder);
    for (const char* name : {"a", "b", "c"}) output.Write(name, FileBytes<char>(std::string("new ") + name));
    disturb();
    EXPECT_THROW(output.Commit(), DataError);
  }
};

TEST_F(StagedOutputTest, CommitThatFailsHalfWayRestoresEverything) {
  const auto before = Files();
  ExpectFailure(folder_, [&] {  // c cannot be moved any more; by then a is replaced and b is new
    for (const auto& [path, content] : Files()) {
      if (path.filename() == "c") fs::remove(path);
    }
  });
  EXPECT_TRUE(Files() == before);
}

TEST_F(StagedOutputTest, CommitKeepsAFolderThatAppearsAtAName) {
  auto expected = Files();
  expected[folder_ / "c"] = "";
  expected[folder_ / "c/file"] = "content";
  ExpectFailure(folder_, [&] {
    fs::create_directory(folder_ / "c");
    Write("c/file", "content");
  });
  EXPECT_TRUE(Files() == expected);
}

TEST_F(StagedOutputTest, InterruptLeavesNothingBehind) {
  const auto before = Files();
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    // In a process of its own, because the interrupt is remembered.
    const auto interrupt = [&](const fs::path& folder) {
      ExpectFailure(folder, [&] { std::raise(signal); });
      std::exit(HasFailure() ? 1 : 0);
    };
    EXPECT_EXIT(interrupt(folder_), testing::ExitedWithCode(0), "") << "signal " << signal;
    EXPECT_EXIT(interrupt(folder_ / "new/folder"), testing::ExitedWithCode(0), "") << "signal " << signal;
    EXPECT_TRUE(Files() == before);
  }
}

}  // namespace
