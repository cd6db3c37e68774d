// The numbers that a file has under a key, in the one form that a camera pair has them in.
#ifndef ITOF_TOOL_STEREO_NUMBERS_H_
#define ITOF_TOOL_STEREO_NUMBERS_H_

#include <opencv2/core.hpp>
#include <vector>

#include "stereo/keys.h"

namespace itoftool {

/// The numbers under the key of `place`, in the form of StereoPair; none if the file does not have it. Throws DataError,
/// which names file and key, if what is there is none of the accepted forms.
std::vector<double> ReadKey(const cv::FileStorage& storage, const Quantity& place, QuantityKind kind);

}  // namespace itoftool

#endif  // ITOF_TOOL_STEREO_NUMBERS_H_
