// Reads the numbers of a quantity from a file and checks their form.
#ifndef ITOF_TOOL_STEREO_NUMBERS_H_
#define ITOF_TOOL_STEREO_NUMBERS_H_

#include <opencv2/core.hpp>
#include <vector>

#include "stereo/keys.h"

namespace itoftool {

/// Reads the numbers under the key of `place` and converts them to the form of StereoPair. Returns none if the file
/// does not have the key. Throws DataError, which names file and key, if they do not have an accepted form.
std::vector<double> ReadKey(const cv::FileStorage& storage, const Quantity& place, QuantityKind kind);

}  // namespace itoftool

#endif  // ITOF_TOOL_STEREO_NUMBERS_H_
