// Looks every quantity up under all of its keys, and checks that several keys agree.
#include "stereo/quantities.h"

#include <algorithm>
#include <string>
#include <vector>

#include "stereo/numbers.h"
#include "support/errors.h"
#include "support/text.h"

namespace itoftool {
namespace {

/// Returns whether a key holds the size of both cameras. The key of one camera takes precedence.
bool IsCommon(const std::string& pattern, const Spellings& spellings, int camera) {
  return spellings.kind == QuantityKind::kSize && camera != 0 && pattern.find_first_of("#@$%") == std::string::npos;
}

void TakeQuantity(const Document& document, const Spellings& spellings, int camera, Quantity& quantity) {
  for (const char* pattern : spellings.keys) {
    const std::string key = KeyOf(pattern, camera);
    // Under the key of a vector, an object has its named parts, which other patterns name.
    const bool isPose = spellings.kind == QuantityKind::kRotation || spellings.kind == QuantityKind::kTranslation;
    if (isPose && Find(document.root, key + ".x") != nullptr) continue;
    Quantity found{{}, key, document.file, IsCommon(pattern, spellings, camera)};
    found.values = ReadKey(document, found, spellings.kind);
    if (found.values.empty() || (found.isCommon && !quantity.values.empty() && !quantity.isCommon)) continue;
    if (quantity.values.empty() || (quantity.isCommon && !found.isCommon)) {
      quantity = found;
    } else if (quantity.values != found.values) {
      Fail(found, "differs from " + quantity.key + " in " + quantity.file);
    }
  }
}

}  // namespace

void TakeKeys(const Document& document, const SpellingTable& table, StereoPair& pair) {
  ForEachQuantity(pair, table, [&](Quantity& quantity, const Spellings& spellings, int camera) {
    TakeQuantity(document, spellings, camera, quantity);
  });
  if (pair.translation.key == kMillimetreKey) pair.unit = "mm";
}

bool HasOneCamera(const Document& document) {
  const auto has = [&](const std::string& key) { return Find(document.root, key) != nullptr; };
  return std::ranges::any_of(kOneCameraSpellings[1].keys, has) &&
         std::ranges::none_of(kOpenCvSpellings[1].keys,
                              [&](const char* key) { return has(KeyOf(key, 1)) || has(KeyOf(key, 2)); });
}

StereoPair ReadFilePerCamera(const Documents& documents) {
  StereoPair pair;
  std::vector<std::string> cameras, poses;
  bool hasRectification = false;
  for (const Document& document : documents) {
    if (!HasOneCamera(document)) {
      TakeKeys(document, kOpenCvSpellings, pair);
      poses.push_back(document.file);
      continue;
    }
    cameras.push_back(document.file);
    if (cameras.size() > 2) Fail(document.file, "is the third file with one camera; expected two");
    StereoCamera& camera = cameras.size() == 1 ? pair.tof : pair.aux;
    Quantity* const quantities[] = {&camera.size, &camera.matrix, &camera.distortion};
    for (size_t i = 0; i < 3; ++i) {
      Quantity& quantity = *quantities[i];
      quantity = {};
      TakeQuantity(document, kOneCameraSpellings[i], 0, quantity);
    }
    for (const char* key : kOpenCvSpellings[3].keys) {
      hasRectification = hasRectification || Find(document.root, key) != nullptr;
    }
  }
  if (cameras.size() < 2) Fail(Joined(cameras), "has one camera; name a file for each, the ToF camera's first");
  if (hasRectification) {
    pair.notes.push_back("the rotation in the files of the cameras is their rectification" +
                         (poses.empty() ? " and not used" : "; the pose is that of " + Joined(poses)));
  }
  return pair;
}

const Document& OnlyDocument(const Documents& documents) {
  if (documents.size() > 1) Fail(documents[1].file, "is not needed: " + documents[0].file + " has both cameras");
  return documents[0];
}

}  // namespace itoftool
