// Checks the host's stand-ins: which files stand for those of a device, and which gates the environment opens.
#include <dlfcn.h>
#include <fnmatch.h>
#include <gtest/gtest.h>
#include <zerun/hostfiles.h>
#include <zerun/osutils.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;

/// The first `size` bytes of the file that a device's path leads to, read in items of three.
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

TEST(Platform, EnvironmentOpensTheLogGates) {
  const struct {
    const char *logs, *systemLog;  // values of the environment variables
    uint64_t mask;
    int androidCopy;
    const char* printed;  // a shell's pattern
  } cases[] = {
      {"262144", "1", 262144, 1, ""},
      {"0x40000", "0", 262144, 0, ""},
      {"", "", 0, 0, ""},
      {"18446744073709551616", "1", 0, 1, "ORVO_ENABLE_LOGS: \"18446744073709551616\" *\n"},
      {"-1", "2x", 0, 0, "ORVO_ENABLE_LOGS: \"-1\" *\nORVO_ENABLE_SYSTEM_LOG: \"2x\" *\n"},
      {"1", "2147483648", 1, 0, "ORVO_ENABLE_SYSTEM_LOG: \"2147483648\" *\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.logs << ", " << c.systemLog);
    setenv("ORVO_ENABLE_LOGS", c.logs, 1);
    setenv("ORVO_ENABLE_SYSTEM_LOG", c.systemLog, 1);
    testing::internal::CaptureStderr();
    void* library = dlopen(ITOF_ORVOLOG_PATH, RTLD_NOW | RTLD_LOCAL);
    const std::string printed = testing::internal::GetCapturedStderr();
    ASSERT_NE(library, nullptr) << dlerror();
    EXPECT_EQ(*static_cast<uint64_t*>(dlsym(library, "g_enableOrvxLogs")), c.mask);
    EXPECT_EQ(*static_cast<int*>(dlsym(library, "g_enableSystemLog")), c.androidCopy);
    EXPECT_EQ(fnmatch(c.printed, printed.c_str(), 0), 0) << printed;
    EXPECT_EQ(dlclose(library), 0);
  }
}

}  // namespace
