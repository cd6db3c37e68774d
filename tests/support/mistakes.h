// Lists common mistakes in calibration files, each as a change to a sound calibration.
#ifndef ITOF_TESTS_SUPPORT_MISTAKES_H_
#define ITOF_TESTS_SUPPORT_MISTAKES_H_

#include <span>

#include "calibration/calibrationrecord.h"

struct Mistake {
  const char* name;
  void (*make)(itof::CalibrationRecord& record);
  const char* shape;  // how it shows in aligned pixels
};

/// Mistakes that the library accepts.
std::span<const Mistake> Mistakes();

#endif  // ITOF_TESTS_SUPPORT_MISTAKES_H_
