// Where the host's stand-in finds the files of a device.
#include <gtest/gtest.h>
#include <zerun/hostfiles.h>
#include <zerun/osutils.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;

/// What a path of the device leads to: its first `size` bytes, read in items of three.
std::string Read(const std::string& path, size_t size) {
  FILE* file = Zerun::OsUtils::FOpen(path.c_str(), "rb");
  if (file == nullptr) return "(none)";
  char text[17] = {};
  const size_t items = Zerun::OsUtils::FRead(text, size, 3, 5, file);
  EXPECT_EQ(Zerun::OsUtils::FClose(file), 0);
  return std::to_string(items) + " " + text;
}

TEST(Platform, DevicePathsLeadToHostFiles) {
  const fs::path root = fs::path(testing::TempDir()) / "platform_root";
  fs::create_directories(root / "device");
  for (const char* name : {"plain", "device/file", "elsewhere"}) std::ofstream(root / name) << name;
  EXPECT_EQ(Read(root / "plain", 16), "1 plain");
  EXPECT_EQ(Read(root / "elsewhere", 8), "2 elsewh") << "whole items that fit the destination";
  EXPECT_EQ(Read("/device/file", 16), "(none)");
  setenv("ZERUN_HOST_ROOT", root.c_str(), 1);
  EXPECT_EQ(Read("/device/file", 16), "3 device/file");
  {
    const ZerunHost::ServedFile file("/device/file", "from memory");
    EXPECT_EQ(Read("/device/file", 16), "3 from memory");
    EXPECT_EQ(Read("/plain", 16), "1 plain");
  }
  EXPECT_EQ(Read("/device/file", 16), "3 device/file");
  unsetenv("ZERUN_HOST_ROOT");
  fs::remove_all(root);
}

}  // namespace
