// The ways in which calibration files go wrong, each as a change to a sound one.
#ifndef ITOF_TESTS_SUPPORT_MISTAKES_H_
#define ITOF_TESTS_SUPPORT_MISTAKES_H_

#include <span>

#include "calibration/calibrationrecord.h"

struct Mistake {
  const char* name;
  void (*make)(itof::CalibrationRecord& record);
  const char* shape;  // what it does to aligned pixels, in words
};

/// Those that leave a file that the library accepts.
std::span<const Mistake> Mistakes();

#endif  // ITOF_TESTS_SUPPORT_MISTAKES_H_
