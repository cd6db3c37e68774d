// Under which keys the files of OpenCV's stereo calibration hold a camera pair.
#ifndef ITOF_TOOL_STEREO_KEYS_H_
#define ITOF_TOOL_STEREO_KEYS_H_

#include <string>
#include <vector>

#include "stereo/pair.h"

namespace itoftool {

/// The key of a translation that is in millimetres in every file.
inline constexpr char kMillimetreKey[] = "translation_mm";

enum class QuantityKind { kSize, kMatrix, kDistortion, kRotation, kTranslation, kRatio };

/// The accepted keys of a quantity. In those of cameras, # is the camera's number, and @ the name of its object in the
/// layout in words. Keys joined by + hold one number each.
struct Spellings {
  QuantityKind kind;
  const char* name;
  std::vector<const char*> keys;
};

/// Size, matrix, distortion, rotation, translation and ratio. The first key of each is the one to write.
extern const Spellings kSpellings[6];

/// A key of the table as it is in files, for camera 1 or 2.
std::string KeyOf(const std::string& pattern, int camera);

/// The keys that are joined by + in `keys`.
std::vector<std::string> SplitKeys(const std::string& keys);

/// All keys that are accepted, for a help text.
std::string StereoKeysHelp();

/// Calls `use` with every quantity of the pair, its spellings and the number of its camera (0: of none).
template <typename Use>
void ForEachQuantity(StereoPair& pair, const Use& use) {
  const auto& [size, matrix, distortion, rotation, translation, ratio] = kSpellings;
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
