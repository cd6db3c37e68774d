// Reads with cv::FileStorage, but looks at the type of every node itself: OpenCV's own readers convert silently what
// does not fit, and allocate what a matrix claims to have before they look whether the file holds as much.
#include "stereofile.h"

#include <algorithm>
#include <cctype>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <iterator>
#include <new>
#include <opencv2/calib3d.hpp>
#include <opencv2/core.hpp>

#include "errors.h"
#include "files.h"
#include "inspection/camerapair.h"
#include "silence.h"
#include "text.h"

namespace itoftool {
namespace fs = std::filesystem;
namespace {

constexpr size_t kFileCoefficients = 8;

enum class Kind { kSize, kMatrix, kDistortion, kRotation, kTranslation, kRatio };

/// The accepted keys of a quantity. In those of cameras, # is the camera's number, and @ the name of its object in the
/// layout in words. Keys joined by + hold one number each.
struct Spellings {
  Kind kind;
  const char* name;
  std::vector<const char*> keys;
};

const Spellings kSpellings[] = {
    {Kind::kSize,
     "image size",
     {"imageSize#", "image_size#", "image_size_#", "cameraResolution#", "imageWidth#+imageHeight#",
      "image_width#+image_height#", "image_width_#+image_height_#", "image_Width#+image_Height#",
      "image_Width_#+image_Height_#", "@.width+@.height",
      // Of both cameras.
      "imageSize", "image_size", "cameraResolution", "imageWidth+imageHeight", "image_width+image_height",
      "image_Width+image_Height"}},
    {Kind::kMatrix,
     "camera matrix",
     {"M#", "K#", "cameraMatrix#", "camera_matrix#", "camera_matrix_#", "@.fx+@.fy+@.cx+@.cy"}},
    {Kind::kDistortion,
     "distortion",
     {"D#", "distCoeffs#", "dist_coeffs#", "dist_coeffs_#", "distortion_coefficients#", "distortion_coefficients_#",
      "@.k1+@.k2+@.p1+@.p2+@.k3+@.k4+@.k5+@.k6"}},
    {Kind::kRotation, "rotation", {"R", "R12", "rotation"}},
    {Kind::kTranslation, "translation", {"T", "T12", kMillimetreKey}},
    {Kind::kRatio, "aux_fl_ratio", {"aux_fl_ratio"}},
};

/// A key of the table as it is in files, for camera 1 or 2.
std::string KeyOf(const std::string& pattern, int camera) {
  std::string key;
  for (const char c : pattern) {
    if (c == '#') {
      key += camera == 1 ? "1" : "2";
    } else if (c == '@') {
      key += camera == 1 ? "depth" : "color";
    } else {
      key += c;
    }
  }
  return key;
}

/// The keys that are joined by + in `keys`.
std::vector<std::string> Split(const std::string& keys) {
  std::vector<std::string> parts;
  for (size_t start = 0, end = 0; end != std::string::npos; start = end + 1) {
    end = keys.find('+', start);
    parts.push_back(keys.substr(start, end == std::string::npos ? end : end - start));
  }
  return parts;
}

/// Numbers with the shape that a file gives them.
struct Numbers {
  int rows = 0, cols = 0;  // 0: a list without shape
  std::vector<double> values;

  bool IsVector(size_t count) const { return values.size() == count && (rows <= 1 || cols == 1); }
  bool IsSquare() const { return values.size() == 9 && rows == cols; }
  std::string Shape() const {
    if (rows == 0) return std::to_string(values.size()) + (values.size() == 1 ? " entry" : " entries");
    return std::to_string(rows) + " x " + std::to_string(cols) + " entries";
  }
};

double ReadNumber(const Quantity& place, const cv::FileNode& node) {
  if (!node.isInt() && !node.isReal()) Fail(place, "holds what is no number");
  const double value = node.isInt() ? static_cast<int>(node) : static_cast<double>(node);
  if (!std::isfinite(value)) Fail(place, "holds a number that is not finite");
  return value;
}

/// A list of numbers, or a list of rows of one length.
Numbers ReadList(const Quantity& place, const cv::FileNode& list) {
  if (!list.isSeq()) Fail(place, "is neither a matrix nor a list of numbers");
  Numbers numbers;
  for (const cv::FileNode entry : list) {
    if (!entry.isSeq() && numbers.rows == 0) {
      numbers.values.push_back(ReadNumber(place, entry));
      continue;
    }
    const size_t length = entry.isSeq() ? entry.size() : 0;
    if (length == 0 || length * static_cast<size_t>(numbers.rows) != numbers.values.size()) {
      Fail(place, "has rows of different lengths");
    }
    ++numbers.rows;
    numbers.cols = static_cast<int>(length);
    for (const cv::FileNode number : entry) numbers.values.push_back(ReadNumber(place, number));
  }
  return numbers;
}

Numbers ReadNumbers(const Quantity& place, const cv::FileNode& node) {
  if (!node.isMap()) return ReadList(place, node);
  const cv::FileNode rows = node["rows"], cols = node["cols"], type = node["dt"];
  if (!rows.isInt() || !cols.isInt() || !type.isString()) Fail(place, "is no matrix as OpenCV writes it");
  if (const std::string letter = type.string(); letter != "d" && letter != "f" && letter != "i") {
    Fail(place, "is a matrix of type \"" + letter + "\"; needed: d, f or i, of one channel");
  }
  Numbers numbers = ReadList(place, node["data"]);
  numbers.rows = static_cast<int>(rows);
  numbers.cols = static_cast<int>(cols);
  if (numbers.rows < 0 || int64_t{numbers.rows} * numbers.cols != static_cast<int64_t>(numbers.values.size())) {
    Fail(place, "claims " + numbers.Shape() + " and holds " + std::to_string(numbers.values.size()));
  }
  return numbers;
}

/// The numbers in the form that StereoPair has them in.
std::vector<double> Checked(const Quantity& place, Kind kind, Numbers numbers) {
  std::vector<double>& values = numbers.values;
  const char* needed = nullptr;
  switch (kind) {
    case Kind::kSize:
      if (!numbers.IsVector(2)) needed = "width and height";
      break;
    case Kind::kMatrix:
      if (!numbers.IsSquare()) needed = "3 x 3";
      break;
    case Kind::kDistortion:
      if (std::ranges::none_of(std::initializer_list<size_t>{4, 5, 8, 12, 14},
                               [&](size_t count) { return numbers.IsVector(count); })) {
        needed = "a row or a column of 4, 5 or 8";
      }
      break;
    case Kind::kRotation:
      if (!numbers.IsSquare() && !numbers.IsVector(3)) needed = "3 x 3, or a rotation vector of 3";
      break;
    case Kind::kTranslation:
      if (!numbers.IsVector(3)) needed = "a row or a column of 3";
      break;
    case Kind::kRatio:
      break;
  }
  if (needed != nullptr) Fail(place, "has " + numbers.Shape() + "; needed: " + needed);

  const auto isPixels = [](double value) { return value >= 1 && value < 2147483648.0; };
  if (kind == Kind::kSize && !std::ranges::all_of(values, isPixels)) Fail(place, "is no size of an image");
  if (kind == Kind::kDistortion) values.resize(std::max(values.size(), kFileCoefficients));
  if (kind == Kind::kRotation && values.size() == 3) {
    cv::Mat matrix;
    cv::Rodrigues(values, matrix);
    return {matrix.begin<double>(), matrix.end<double>()};
  }
  if (kind == Kind::kRotation) {
    const cv::Matx33d matrix(values.data());
    const double error = OrthonormalityError(matrix);
    if (error > kOrthonormal)
      Fail(place, Format("is no rotation: R times its transpose is %.3g off the identity", error));
    if (cv::determinant(matrix) < 0) Fail(place, "is a mirror, no rotation: its determinant is -1");
  }
  return values;
}

cv::FileNode Find(const cv::FileStorage& storage, const std::string& key) {
  const size_t dot = key.find('.');
  const cv::FileNode node = storage[key.substr(0, dot)];
  if (dot == std::string::npos) return node;
  return node.isMap() ? node[key.substr(dot + 1)] : cv::FileNode();
}

/// The numbers under the key of `place`; none if the file does not have it.
std::vector<double> ReadKey(const cv::FileStorage& storage, const Quantity& place, Kind kind) {
  const std::vector<std::string> keys = Split(place.key);
  std::vector<cv::FileNode> nodes(keys.size());
  std::ranges::transform(keys, nodes.begin(), [&](const std::string& key) { return Find(storage, key); });
  if (std::ranges::all_of(nodes, &cv::FileNode::empty)) return {};
  if (nodes.size() == 1 && kind != Kind::kRatio) return Checked(place, kind, ReadNumbers(place, nodes[0]));

  Numbers numbers;
  for (size_t i = 0; i < nodes.size(); ++i) {
    if (nodes[i].empty()) Fail(place, keys[i] + " is missing");
    numbers.values.push_back(ReadNumber({{}, keys[i], place.file}, nodes[i]));
  }
  if (kind == Kind::kMatrix) {
    const double fx = numbers.values[0], fy = numbers.values[1], cx = numbers.values[2], cy = numbers.values[3];
    numbers.values = {fx, 0, cx, 0, fy, cy, 0, 0, 1};
  }
  return Checked(place, kind, numbers);
}

/// Opens a file that has keys, and no key twice, of which OpenCV would show one. Throws DataError and what OpenCV
/// throws.
void Open(cv::FileStorage& storage, const fs::path& path) {
  const std::vector<uint8_t> bytes = ReadFile(path);
  storage.open({bytes.begin(), bytes.end()}, cv::FileStorage::READ | cv::FileStorage::MEMORY);
  std::vector<std::string> keys;
  for (int i = 0; i == 0 || !storage.root(i).empty(); ++i) {
    const cv::FileNode root = storage.root(i);
    if (!root.isMap()) Fail(path, "holds no keys");
    std::ranges::copy(root.keys(), std::back_inserter(keys));
  }
  std::ranges::sort(keys);
  if (const auto twice = std::ranges::adjacent_find(keys); twice != keys.end()) Fail(path, *twice + ": is there twice");
}

/// What the parser says, if its text has the form "...(7): Missing , between the elements'".
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

/// Whether a key stands for both cameras, each of which may have one of its own, or an option, instead.
bool IsCommon(const std::string& pattern, const Spellings& spellings) {
  return spellings.kind == Kind::kSize && pattern.find_first_of("#@") == std::string::npos;
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
          Fail(found, "differs from " + quantity.key + (quantity.file.empty() ? "" : " of " + quantity.file));
        }
      }
    });
  } catch (const DataError&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {  // OpenCV's own, or one of the C++ library that its parser lets through
    Fail(path, "is damaged, or no YAML, XML or JSON as OpenCV reads it" + ParserFault(error));
  }
}

std::string Joined(const std::vector<std::string>& parts) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : ", ") + part;
  return text;
}

/// -0 as a number that the formats have.
double WithoutNegativeZero(double value) { return value == 0 && std::signbit(value) ? -DBL_MIN : value; }

}  // namespace

void Fail(const Quantity& quantity, const std::string& cause) {
  throw DataError((quantity.file.empty() ? "" : quantity.file + ": ") + quantity.key + ": " + cause);
}

std::string StereoKeysHelp() {
  std::string text = Wrap(
      "Accepted keys (# is 1 for the ToF camera and 2 for the aux camera, or nothing for sizes of both; @ is depth or "
      "color; "
      "keys joined by + hold a number each):",
      0);
  for (const Spellings& spellings : kSpellings) {
    text += std::string("  ") + spellings.name + "\n" + Wrap(Joined({spellings.keys.begin(), spellings.keys.end()}), 4);
  }
  return text +
         Wrap(
             "Matrices are OpenCV's, or lists of rows or of all numbers; a rotation may also be a vector of 3, in "
             "radians. Distortion has 4, 5 or 8 coefficients in OpenCV's order, k1 k2 p1 p2 k3 k4 k5 k6 (not those of "
             "fisheye), or 12 or 14 if the rest is 0. A point X of the ToF camera lies at rotation * X + translation "
             "in the aux camera. translation_mm is in mm.",
             0);
}

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
    if (!quantity.values.empty() || spellings.kind == Kind::kRatio) return;
    std::vector<std::string> keys;
    for (const char* pattern : spellings.keys) keys.push_back(KeyOf(pattern, camera));
    const char* owner = camera == 0 ? "" : camera == 1 ? " of camera 1 (ToF)" : " of camera 2 (aux)";
    const char* option = camera == 1 ? "; or give --tof-size" : "; or give --aux-size";
    Fail(Joined(files), std::string("no ") + spellings.name + owner + "; accepted keys: " + Joined(keys) +
                            (spellings.kind == Kind::kSize ? option : ""));
  });
  return pair;
}

int StereoFileFormat(const fs::path& path) {
  std::string extension = path.extension().string();
  std::ranges::transform(extension, extension.begin(),
                         [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (extension == ".yml" || extension == ".yaml") return cv::FileStorage::FORMAT_YAML;
  if (extension == ".xml") return cv::FileStorage::FORMAT_XML;
  if (extension == ".json") return cv::FileStorage::FORMAT_JSON;
  throw UsageError(path.string() + ": must end in .yml, .yaml, .xml or .json");
}

std::string StereoFileText(StereoPair pair, int format) {
  cv::FileStorage storage("", cv::FileStorage::WRITE | cv::FileStorage::MEMORY | format);
  ForEachQuantity(pair, [&](Quantity& quantity, const Spellings& spellings, int camera) {
    std::vector<double>& values = quantity.values;
    std::ranges::transform(values, values.begin(), WithoutNegativeZero);
    switch (spellings.kind) {
      case Kind::kSize:
        storage << KeyOf("imageSize#", camera) << cv::Size2d(values[0], values[1]);
        break;
      case Kind::kRatio:
        if (!values.empty()) storage << "aux_fl_ratio" << values[0];
        break;
      default: {
        const int rows = spellings.kind == Kind::kDistortion ? 1 : 3;
        storage << KeyOf(spellings.keys[0], camera) << cv::Mat(values, false).reshape(1, rows);
      }
    }
  });
  return storage.releaseAndGetString();
}

}  // namespace itoftool
