// Chooses the reader of a format, completes what it read from options, and writes OpenCV's files.
#include "stereo/file.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <opencv2/core.hpp>
#include <utility>

#include "files/files.h"
#include "stereo/document.h"
#include "stereo/format.h"
#include "stereo/keys.h"
#include "stereo/numbers.h"
#include "support/errors.h"
#include "support/text.h"

namespace itoftool {
namespace fs = std::filesystem;
namespace {

const StereoFormat& FormatOf(const Documents& documents, const std::string& name) {
  if (name.empty()) RefuseUnsupportedFormat(documents);
  RefuseUnsupportedModel(documents);
  const auto isWanted = [&](const StereoFormat* format) {
    return name.empty() ? format->recognises(documents) : format->name == name;
  };
  const StereoFormat& format = **std::ranges::find_if(kStereoFormats, isWanted);
  if (!name.empty() && !format.recognises(documents)) {
    Fail(documents[0].file, "--format: is not in the format " + name + ": " + format.contents);
  }
  return format;
}

void ApplyOptions(const StereoOptions& options, StereoPair& pair) {
  for (const auto& [size, wanted] : {std::pair{&pair.tof.size, &options.tofSize}, {&pair.aux.size, &options.auxSize}}) {
    if (wanted->values.empty()) continue;
    const bool isCommon = size->values.empty() || size->isCommon;
    if (!isCommon && size->values != wanted->values) Fail(*size, "differs from " + wanted->key);
    *size = *wanted;
  }
  if (options.rotation.values.empty()) return;
  for (const Quantity* quantity : {&pair.rotation, &pair.translation}) {
    if (!quantity->values.empty()) {
      throw UsageError("--rotation, --translation: " + quantity->file + " has the pose: " + quantity->key);
    }
  }
  pair.rotation = options.rotation;
  pair.translation = options.translation;
  pair.unit.clear();
  try {
    pair.rotation.values = RotationMatrix(options.rotation, options.rotation.values);
  } catch (const DataError& error) {
    throw UsageError(error.what());
  }
}

/// Checks that the pair has everything but aux_fl_ratio. Pads the distortions.
void Complete(const std::string& files, StereoPair& pair) {
  ForEachQuantity(pair, kOpenCvSpellings, [&](const Quantity& quantity, const Spellings& spellings, int camera) {
    if (!quantity.values.empty()) return;
    const std::string missing = std::string("no ") + spellings.name;
    const std::string owner = camera == 1 ? " for camera 1 (ToF)" : " for camera 2 (aux)";
    switch (spellings.kind) {
      case QuantityKind::kRatio:
        return;
      case QuantityKind::kSize:
        Fail(files, missing + owner + "; add " + (camera == 1 ? "--tof-size" : "--aux-size") + " W,H, e.g. 640,480");
      case QuantityKind::kRotation:
      case QuantityKind::kTranslation:
        Fail(files, missing +
                        " from camera 1 (ToF) to camera 2 (aux); add the file that has it, or --translation X,Y,Z "
                        "and --rotation with 9 or 3 numbers");
      default: {
        std::vector<std::string> keys;
        for (const char* pattern : spellings.keys) keys.push_back(KeyOf(pattern, camera));
        Fail(files, missing + owner + "; accepted keys: " + Joined(keys));
      }
    }
  });
  for (StereoCamera* camera : {&pair.tof, &pair.aux}) {
    std::vector<double>& values = camera->distortion.values;
    if (values.size() == 4 && !camera->hasModelName) {
      pair.notes.push_back(camera->distortion.key + " in " + camera->distortion.file +
                           ": read as k1 k2 p1 p2; if they come from a fisheye calibration, this is wrong");
    }
    values.resize(std::max(values.size(), kFileCoefficients));
  }
}

/// Replaces -0, which the formats do not have, by the tiny negative number that becomes -0 in single precision.
double WithoutNegativeZero(double value) { return value == 0 && std::signbit(value) ? -DBL_MIN : value; }

}  // namespace

std::vector<std::string> StereoFormatNames() {
  std::vector<std::string> names;
  for (const StereoFormat* format : kStereoFormats) names.emplace_back(format->name);
  return names;
}

std::string StereoFormatsHelp() {
  std::string text = "Formats:\n";
  for (const StereoFormat* format : kStereoFormats) text += Format("  %-10s %s\n", format->name, format->contents);
  return text;
}

StereoPair ReadStereoFiles(const std::vector<fs::path>& paths, const StereoOptions& options) {
  Documents documents;
  std::vector<std::string> files;
  for (const fs::path& path : paths) {
    documents.push_back(ReadDocument(path));
    files.push_back(path.string());
  }
  StereoPair pair = FormatOf(documents, options.format).read(documents);
  ApplyOptions(options, pair);
  Complete(Joined(files), pair);
  return pair;
}

int StereoFileFormat(const fs::path& path) {
  const std::string extension = LowerCaseExtension(path);
  if (extension == ".yml" || extension == ".yaml") return cv::FileStorage::FORMAT_YAML;
  if (extension == ".xml") return cv::FileStorage::FORMAT_XML;
  if (extension == ".json") return cv::FileStorage::FORMAT_JSON;
  throw UsageError(path.string() + ": must end in .yml, .yaml, .xml or .json");
}

std::string StereoFileText(StereoPair pair, int format) {
  cv::FileStorage storage("", cv::FileStorage::WRITE | cv::FileStorage::MEMORY | format);
  ForEachQuantity(pair, kOpenCvSpellings, [&](Quantity& quantity, const Spellings& spellings, int camera) {
    const std::string key = KeyOf(spellings.keys[0], camera);
    std::vector<double>& values = quantity.values;
    std::ranges::transform(values, values.begin(), WithoutNegativeZero);
    switch (spellings.kind) {
      case QuantityKind::kSize:
        storage << key << cv::Size2d(values[0], values[1]);
        break;
      case QuantityKind::kRatio:
        if (!values.empty()) storage << key << values[0];
        break;
      default: {
        const int rows = spellings.kind == QuantityKind::kDistortion ? 1 : 3;
        storage << key << cv::Mat(values, false).reshape(1, rows);
      }
    }
  });
  return storage.releaseAndGetString();
}

}  // namespace itoftool
