// Gives the library a calibration, as a device's file does.
#ifndef ITOF_TESTS_SUPPORT_INITLIBRARY_H_
#define ITOF_TESTS_SUPPORT_INITLIBRARY_H_

#include <gtest/gtest.h>
#include <unistd.h>
#include <zerun/hostfiles.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "calibration/calibrationrecord.h"
#include "itofinterface.h"

/// Has the library, on the host's stand-ins, read `record` from a file.
inline void InitLibrary(const itof::CalibrationRecord& record) {
  const std::string path = testing::TempDir() + "itof-calibration-" + std::to_string(getpid()) + ".bin";
  std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(&record), sizeof record);
  ZerunHost::RedirectPath(itof::kCalibrationPath, path);
  EXPECT_EQ(itof_init(), ITOF_OK);
  ZerunHost::RedirectPath(itof::kCalibrationPath, "");
  std::filesystem::remove(path);
}

#endif  // ITOF_TESTS_SUPPORT_INITLIBRARY_H_
