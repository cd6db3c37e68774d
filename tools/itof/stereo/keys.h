// Lists the keys under which OpenCV's stereo calibration files store a camera pair.
#ifndef ITOF_TOOL_STEREO_KEYS_H_
#define ITOF_TOOL_STEREO_KEYS_H_

#include <array>
#include <string>
#include <vector>

#include "stereo/pair.h"

namespace itoftool {

/// The key of a translation that is always in millimetres.
inline constexpr char kMillimetreKey[] = "translation_mm";

enum class QuantityKind { kSize, kMatrix, kDistortion, kRotation, kTranslation, kRatio };

/// The accepted keys of a quantity. In the keys of cameras, # stands for the camera's number, $ for left or right, % for
/// L or R, and @ for the name of its object in files with named values. Keys joined by + hold one number each.
struct Spellings {
  QuantityKind kind;
  const char* name;
  std::vector<const char*> keys;
};

/// Size, matrix, distortion, rotation, translation and ratio.
using SpellingTable = std::array<Spellings, 6>;

extern const SpellingTable kOpenCvSpellings;  // exports use the first key of each
extern const SpellingTable kNamedValueSpellings;
/// Size, matrix and distortion in files with one camera.
extern const std::vector<Spellings> kOneCameraSpellings;

/// Returns a key of the table as it appears in files, for camera 1 or 2.
std::string KeyOf(const std::string& pattern, int camera);

/// Splits keys that are joined by +.
std::vector<std::string> SplitKeys(const std::string& keys);

/// Returns a help text with the keys of OpenCV's files.
std::string StereoKeysHelp();

/// Calls `use` with every quantity of the pair, its spellings and the number of its camera (0 if it belongs to both).
template <typename Use>
void ForEachQuantity(StereoPair& pair, const SpellingTable& table, const Use& use) {
  const auto& [size, matrix, distortion, rotation, translation, ratio] = table;
  for (const int camera : {1, 2}) {
    StereoCamera& values = camera == 1 ? pair.tof : pair.aux;
    use(values.size, size, camera);
    use(values.matrix, matrix, camera);
    use(values.distortion, distortion, camera);
  }
  use(pair.rotation, rotation, 0);
  use(pair.translation, translation, 0);
  use(pair.auxFlRatio, ratio, 0);
}

}  // namespace itoftool

#endif  // ITOF_TOOL_STEREO_KEYS_H_
