// Lists common mistakes in calibration files, each as a change to a sound calibration.
#ifndef ITOF_TESTS_SUPPORT_MISTAKES_H_
#define ITOF_TESTS_SUPPORT_MISTAKES_H_

#include <functional>
#include <string>
#include <vector>

#include "calibration/calibrationrecord.h"

struct Mistake {
  std::string name;
  const char* shape;  // how it shows in aligned pixels; null if it is not among the documented symptoms
  std::function<void(itof::CalibrationRecord& record)> make;
  std::string reading;             // the reading that undoes it; empty if there is none
  std::vector<std::string> codes;  // of findings that name it without a reading
};

/// Mistakes that the library accepts.
const std::vector<Mistake>& Mistakes();

#endif  // ITOF_TESTS_SUPPORT_MISTAKES_H_
