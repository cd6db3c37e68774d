// Collects the quantities of a pair from cv::FileStorage, and writes them.
#include "stereo/file.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <exception>
#include <iterator>
#include <new>
#include <opencv2/core.hpp>

#include "files/files.h"
#include "stereo/keys.h"
#include "stereo/numbers.h"
#include "support/errors.h"
#include "support/silence.h"
#include "support/text.h"

namespace itoftool {
namespace fs = std::filesystem;
namespace {

/// Opens a file. Throws DataError if it has no keys or one key twice, of which OpenCV would show only one; OpenCV's
/// exceptions pass through.
void Open(cv::FileStorage& storage, const fs::path& path) {
  const std::vector<uint8_t> bytes = ReadFile(path);
  storage.open({bytes.begin(), bytes.end()}, cv::FileStorage::READ | cv::FileStorage::MEMORY);
  std::vector<std::string> keys;
  for (int i = 0; i == 0 || !storage.root(i).empty(); ++i) {
    const cv::FileNode root = storage.root(i);
    if (!root.isMap()) Fail(path, "contains no keys");
    std::ranges::copy(root.keys(), std::back_inserter(keys));
  }
  std::ranges::sort(keys);
  if (const auto twice = std::ranges::adjacent_find(keys); twice != keys.end()) Fail(path, *twice + ": appears twice");
}

/// Returns line and cause from the parser's message, if that has the form "...(7): Missing , between the elements'".
std::string ParserFault(const std::exception& error) {
  const std::string text = error.what();
  const size_t close = text.rfind("): ");
  const size_t open = text.rfind('(', close);
  if (close == std::string::npos || open == std::string::npos) return {};
  const std::string line = text.substr(open + 1, close - open - 1);
  const std::string cause = text.substr(close + 3, text.find_last_not_of("'\n") - close - 2);
  if (line.find_first_not_of("0123456789") != std::string::npos) return {};
  return "; line " + line + ": " + cause;
}

/// Returns whether a key holds the size of both cameras. The key of one camera, or an option, takes precedence.
bool IsCommon(const std::string& pattern, const Spellings& spellings) {
  return spellings.kind == QuantityKind::kSize && pattern.find_first_of("#@") == std::string::npos;
}
bool IsOfOneCamera(const Quantity& quantity) {
  return quantity.key.starts_with("--") || quantity.key.find_first_of(".12") != std::string::npos;
}

void TakeFile(const fs::path& path, StereoPair& pair) {
  const Silence silence(stderr);
  cv::FileStorage storage;
  try {
    Open(storage, path);
    ForEachQuantity(pair, [&](Quantity& quantity, const Spellings& spellings, int camera) {
      for (const char* pattern : spellings.keys) {
        Quantity found{{}, KeyOf(pattern, camera), path.string()};
        found.values = ReadKey(storage, found, spellings.kind);
        if (found.values.empty() || (IsCommon(pattern, spellings) && IsOfOneCamera(quantity))) continue;
        if (quantity.values.empty()) {
          quantity = found;
        } else if (quantity.values != found.values) {
          Fail(found, "differs from " + quantity.key + (quantity.file.empty() ? "" : " in " + quantity.file));
        }
      }
    });
  } catch (const DataError&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {  // from OpenCV, or from the C++ library through its parser
    Fail(path, "is damaged, or not YAML, XML or JSON that OpenCV can read" + ParserFault(error));
  }
}

/// Replaces -0, which the formats do not have, by the tiny negative number that becomes -0 in single precision.
double WithoutNegativeZero(double value) { return value == 0 && std::signbit(value) ? -DBL_MIN : value; }

}  // namespace

StereoPair ReadStereoFiles(const std::vector<fs::path>& paths, const Quantity& tofSize, const Quantity& auxSize) {
  StereoPair pair;
  pair.tof.size = tofSize;
  pair.aux.size = auxSize;
  std::vector<std::string> files;
  for (const fs::path& path : paths) {
    TakeFile(path, pair);
    files.push_back(path.string());
  }
  ForEachQuantity(pair, [&](const Quantity& quantity, const Spellings& spellings, int camera) {
    if (!quantity.values.empty() || spellings.kind == QuantityKind::kRatio) return;
    std::vector<std::string> keys;
    for (const char* pattern : spellings.keys) keys.push_back(KeyOf(pattern, camera));
    const char* owner = camera == 0 ? "" : camera == 1 ? " for camera 1 (ToF)" : " for camera 2 (aux)";
    const char* option = camera == 1 ? "; or use --tof-size" : "; or use --aux-size";
    Fail(Joined(files), std::string("no ") + spellings.name + owner + "; accepted keys: " + Joined(keys) +
                            (spellings.kind == QuantityKind::kSize ? option : ""));
  });
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
  ForEachQuantity(pair, [&](Quantity& quantity, const Spellings& spellings, int camera) {
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
