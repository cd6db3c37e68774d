// Reads files with named values: objects depth and color with width, height, fx, fy, cx, cy, k1 to k6, p1 and p2.
#include <algorithm>

#include "stereo/format.h"
#include "stereo/quantities.h"

namespace itoftool {
namespace {

bool Recognises(const Documents& documents) {
  return std::ranges::any_of(documents, [](const Document& document) {
    return Find(document.root, "depth.fx") != nullptr || Find(document.root, "color.fx") != nullptr;
  });
}

StereoPair Read(const Documents& documents) {
  StereoPair pair;
  for (const Document& document : documents) TakeKeys(document, kNamedValueSpellings, pair);
  return pair;
}

}  // namespace

const StereoFormat kNamedValuesFormat{"named", "objects depth and color with fx, fy, cx, cy, k1 to k6, p1, p2",
                                      Recognises, Read};

}  // namespace itoftool
