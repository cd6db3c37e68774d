// Gives the library a calibration without a file.
#ifndef ITOF_TESTS_SUPPORT_INITLIBRARY_H_
#define ITOF_TESTS_SUPPORT_INITLIBRARY_H_

#include <gtest/gtest.h>
#include <zerun/hostfiles.h>

#include <string>

#include "calibration/calibrationrecord.h"
#include "itofinterface.h"

/// Calls itof_init with `record` at the device's path, through the host's stand-ins.
inline void InitLibrary(const itof::CalibrationRecord& record) {
  const std::string bytes(reinterpret_cast<const char*>(&record), sizeof record);
  const ZerunHost::ServedFile file(itof::kCalibrationPath, bytes);
  EXPECT_EQ(itof_init(), ITOF_OK);
}

#endif  // ITOF_TESTS_SUPPORT_INITLIBRARY_H_
