// Lists the formats of stereo calibrations. Each is one file in formats/.
#ifndef ITOF_TOOL_STEREO_FORMAT_H_
#define ITOF_TOOL_STEREO_FORMAT_H_

#include "stereo/document.h"
#include "stereo/pair.h"

namespace itoftool {

struct StereoFormat {
  const char* name;      // for --format
  const char* contents;  // for the help
  /// Returns whether the files are in this format.
  bool (*recognises)(const Documents& documents);
  /// Reads what the files contain: sizes and the pose may stay empty, and distortions may have 4 or 5 coefficients.
  /// Throws DataError, which names file, key and cause.
  StereoPair (*read)(const Documents& documents);
};

extern const StereoFormat kRawJsonFormat, kNamedValuesFormat, kKalibrFormat, kRosFormat, kOpenCvFormat;

/// In the order of recognition. The last one, OpenCV's, takes any file.
inline const StereoFormat* const kStereoFormats[] = {&kRawJsonFormat, &kNamedValuesFormat, &kKalibrFormat, &kRosFormat,
                                                     &kOpenCvFormat};

/// Throws DataError, which names the program and what to do, if the files are in a known format that cannot be imported.
void RefuseUnsupportedFormat(const Documents& documents);

/// Throws DataError, which names file, key and model, if a file says that a lens has another model than the rational.
void RefuseUnsupportedModel(const Documents& documents);

}  // namespace itoftool

#endif  // ITOF_TOOL_STEREO_FORMAT_H_
