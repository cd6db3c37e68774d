// Reads OpenCV's stereo calibrations: both cameras in one or several files, or a file per camera and one with the pose.
#include <algorithm>

#include "stereo/format.h"
#include "stereo/quantities.h"

namespace itoftool {
namespace {

StereoPair Read(const Documents& documents) {
  if (std::ranges::any_of(documents, HasOneCamera)) return ReadFilePerCamera(documents);
  StereoPair pair;
  for (const Document& document : documents) TakeKeys(document, kOpenCvSpellings, pair);
  return pair;
}

}  // namespace

const StereoFormat kOpenCvFormat{"opencv", "OpenCV's matrices, in one file or several, or in a file per camera",
                                 [](const Documents&) { return true; }, Read};

}  // namespace itoftool
