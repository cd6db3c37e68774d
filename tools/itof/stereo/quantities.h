// Reads the quantities of a pair that files contain under the keys of a table.
#ifndef ITOF_TOOL_STEREO_QUANTITIES_H_
#define ITOF_TOOL_STEREO_QUANTITIES_H_

#include "stereo/document.h"
#include "stereo/keys.h"
#include "stereo/pair.h"

namespace itoftool {

/// Adds the quantities of a file to `pair`. Throws DataError, which names file and key, if one of them contradicts the
/// pair or does not have an accepted form.
void TakeKeys(const Document& document, const SpellingTable& table, StereoPair& pair);

/// Returns whether the file has a camera matrix under a key without the camera's number or name.
bool HasOneCamera(const Document& document);

/// Reads a pair from files of which two have one camera each, the ToF camera's first. The other files have the pose.
/// Throws DataError.
StereoPair ReadFilePerCamera(const Documents& documents);

/// Returns the only file. Throws DataError if there are more.
const Document& OnlyDocument(const Documents& documents);

}  // namespace itoftool

#endif  // ITOF_TOOL_STEREO_QUANTITIES_H_
