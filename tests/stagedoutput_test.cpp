// Checks that a command's outputs appear together or not at all.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

#include "files/files.h"
#include "support/errors.h"
#include "support/testfolder.h"

namespace {

int renamesLeft = INT_MAX;          // further ones fail
bool hasHardLinks = true;           // of the file system
std::filesystem::path alwaysThere;  // expected to exist before and after every rename; may be empty

int Refuse() {
  errno = EACCES;
  return -1;
}

}  // namespace

// Take the place of the C library's functions in this program.
extern "C" int rename(const char* from, const char* to) noexcept {
  if (renamesLeft-- <= 0) return Refuse();
  const auto checkPresence = [] { EXPECT_TRUE(alwaysThere.empty() || std::filesystem::exists(alwaysThere)); };
  checkPresence();
  const int result = renameat(AT_FDCWD, from, AT_FDCWD, to);
  checkPresence();
  return result;
}
extern "C" int link(const char* from, const char* to) noexcept {
  return hasHardLinks ? linkat(AT_FDCWD, from, AT_FDCWD, to, 0) : Refuse();
}

namespace {
namespace fs = std::filesystem;
using namespace itoftool;

class StagedOutputTest : public TestFolder {
 protected:
  void SetUp() override {
    TestFolder::SetUp();
    Write("a", "old a");
    renamesLeft = INT_MAX;
    hasHardLinks = true;
    alwaysThere.clear();
  }

  static void WriteFiles(StagedOutput& output) {
    for (const char* name : {"a", "b", "c"}) output.Write(name, FileBytes<char>(std::string("new ") + name));
  }

  /// Writes the files a, b and c and calls `disturb` before Commit, which is expected to throw.
  static void ExpectFailure(const fs::path& folder, const std::function<void()>& disturb) {
    StagedOutput output(folder);
    WriteFiles(output);
    disturb();
    EXPECT_THROW(output.Commit(), DataError);
  }
};

TEST_F(StagedOutputTest, CommitReplacesFilesAndKeepsTheirModes) {
  Write("b", "old b");
  fs::permissions(folder_ / "b", fs::perms::owner_read);
  alwaysThere = folder_ / "a";
  for (const bool links : {true, false}) {
    if (!(hasHardLinks = links)) alwaysThere.clear();
    StagedOutput output(folder_);
    WriteFiles(output);
    output.Commit();
    EXPECT_TRUE(Read("a") == "new a" && Read("b") == "new b" && Read("c") == "new c");
    EXPECT_EQ(fs::status(folder_ / "b").permissions(), fs::perms::owner_read);
    EXPECT_EQ(Files().size(), 3);
  }
}

TEST_F(StagedOutputTest, CommitThatFailsHalfWayRestoresEverything) {
  const auto before = Files();
  for (const bool links : {true, false}) {
    hasHardLinks = links;
    ExpectFailure(folder_, [&] {  // c cannot be moved any more; by then a is replaced and b is new
      for (const auto& [path, content] : Files()) {
        if (path.filename() == "c") fs::remove(path);
      }
    });
    EXPECT_TRUE(Files() == before);
  }
}

TEST_F(StagedOutputTest, OldFilesThatCannotBePutBackAreKeptAndNamed) {
  std::string kept;
  try {
    StagedOutput output(folder_);
    WriteFiles(output);
    renamesLeft = 1;
    output.Commit();
    FAIL() << "Commit does not throw";
  } catch (const DataError& error) {
    kept = error.what();
    EXPECT_NE(kept.find(folder_ / "b: Permission denied; "), std::string::npos) << kept;
    kept.erase(0, kept.rfind(": ") + 2);
  }
  EXPECT_EQ(Read(kept), "old a") << kept;
  renamesLeft = INT_MAX;
  testing::internal::CaptureStderr();
  StagedOutput(folder_).Commit();
  EXPECT_NE(testing::internal::GetCapturedStderr().find(fs::path(kept).parent_path()), std::string::npos);
  EXPECT_EQ(Read(kept), "old a");
}

TEST_F(StagedOutputTest, NextRunRemovesWhatAKilledOneLeft) {
  const auto before = Files();
  EXPECT_EXIT(ExpectFailure(folder_, [] { std::raise(SIGKILL); }), testing::KilledBySignal(SIGKILL), "");
  EXPECT_FALSE(Files() == before);
  StagedOutput running(folder_);
  WriteFiles(running);
  StagedOutput(folder_).Commit();  // leaves the files of a run that is alive
  running.Commit();
  EXPECT_EQ(Files().size(), 3);
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
