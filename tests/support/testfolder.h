// Gives a test a folder of its own, which is removed at the end.
#ifndef ITOF_TESTS_SUPPORT_TESTFOLDER_H_
#define ITOF_TESTS_SUPPORT_TESTFOLDER_H_

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>

class TestFolder : public testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directories(folder_); }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  void Write(const char* name, const std::string& bytes) { std::ofstream(folder_ / name, std::ios::binary) << bytes; }
  std::string Read(const std::filesystem::path& name) const {
    std::ifstream file(folder_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  /// The path of everything in the folder, hidden names included, and the content of the regular files.
  std::map<std::filesystem::path, std::string> Files() const {
    std::map<std::filesystem::path, std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_))
      files[entry] = entry.is_regular_file() ? Read(entry.path()) : "";
    return files;
  }

  // Its name shows where a command line is not quoted.
  const std::filesystem::path folder_ = testing::TempDir() + "itof's test " + std::to_string(getpid());
};

#endif  // ITOF_TESTS_SUPPORT_TESTFOLDER_H_
