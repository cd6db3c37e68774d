// Reads numbers node by node and checks every type. OpenCV's readers convert unsuitable values without an error, and
// allocate a matrix of the declared size before they check that the file holds its entries.
#include "stereo/numbers.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <opencv2/calib3d.hpp>
#include <string>

#include "camera/rotation.h"
#include "support/text.h"

namespace itoftool {
namespace {

/// Numbers with their shape in the file.
struct Numbers {
  int rows = 0, cols = 0;  // 0 for a plain list
  std::vector<double> values;

  bool IsVector(size_t count) const { return values.size() == count && (rows <= 1 || cols == 1); }
  bool IsSquare() const { return values.size() == 9 && rows == cols; }
  std::string Shape() const {
    if (rows == 0) return std::to_string(values.size()) + (values.size() == 1 ? " entry" : " entries");
    return std::to_string(rows) + " x " + std::to_string(cols) + " entries";
  }
};

double ReadNumber(const Quantity& place, const cv::FileNode& node) {
  if (!node.isInt() && !node.isReal()) Fail(place, "contains an entry that is not a number");
  const double value = node.isInt() ? static_cast<int>(node) : static_cast<double>(node);
  if (!std::isfinite(value)) Fail(place, "contains a number that is not finite");
  return value;
}

/// Reads a list of numbers, or a list of rows of equal length.
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
  if (!rows.isInt() || !cols.isInt() || !type.isString()) Fail(place, "is not a matrix in OpenCV's form");
  if (const std::string letter = type.string(); letter != "d" && letter != "f" && letter != "i") {
    Fail(place, "is a matrix of type \"" + letter + "\"; expected d, f or i with one channel");
  }
  Numbers numbers = ReadList(place, node["data"]);
  numbers.rows = static_cast<int>(rows);
  numbers.cols = static_cast<int>(cols);
  if (numbers.rows < 0 || int64_t{numbers.rows} * numbers.cols != static_cast<int64_t>(numbers.values.size())) {
    Fail(place, "declares " + numbers.Shape() + " and holds " + std::to_string(numbers.values.size()));
  }
  return numbers;
}

/// Returns the shape that a quantity must have, or null if `numbers` have it.
const char* ExpectedShape(QuantityKind kind, const Numbers& numbers) {
  const auto isVectorOf = [&](size_t count) { return numbers.IsVector(count); };
  switch (kind) {
    case QuantityKind::kSize:
      return isVectorOf(2) ? nullptr : "width and height";
    case QuantityKind::kMatrix:
      return numbers.IsSquare() ? nullptr : "3 x 3";
    case QuantityKind::kDistortion:
      return std::ranges::any_of(std::initializer_list<size_t>{4, 5, 8, 12, 14}, isVectorOf)
                 ? nullptr
                 : "a row or a column of 4, 5 or 8";
    case QuantityKind::kRotation:
      return numbers.IsSquare() || isVectorOf(3) ? nullptr : "3 x 3, or a rotation vector of 3";
    case QuantityKind::kTranslation:
      return isVectorOf(3) ? nullptr : "a row or a column of 3";
    case QuantityKind::kRatio:
      break;
  }
  return nullptr;
}

/// Returns the matrix of a rotation vector or of a rotation matrix.
std::vector<double> RotationMatrix(const Quantity& place, const std::vector<double>& values) {
  if (values.size() == 3) {
    cv::Mat matrix;
    cv::Rodrigues(values, matrix);
    return {matrix.begin<double>(), matrix.end<double>()};
  }
  const cv::Matx33d matrix(values.data());
  const double error = OrthonormalityError(matrix);
  if (error > kOrthonormal) {
    Fail(place, Format("is not a rotation: R times its transpose differs from the identity by %.3g", error));
  }
  if (cv::determinant(matrix) < 0) Fail(place, "is a reflection, not a rotation: its determinant is -1");
  return values;
}

/// Checks numbers and converts them to the form of StereoPair.
std::vector<double> Checked(const Quantity& place, QuantityKind kind, Numbers numbers) {
  if (const char* expected = ExpectedShape(kind, numbers)) {
    Fail(place, "has " + numbers.Shape() + "; expected " + expected);
  }
  std::vector<double>& values = numbers.values;
  const auto isPixels = [](double value) { return value >= 1 && value < 2147483648.0; };
  if (kind == QuantityKind::kSize && !std::ranges::all_of(values, isPixels)) Fail(place, "is not a valid image size");
  if (kind == QuantityKind::kDistortion) values.resize(std::max(values.size(), kFileCoefficients));
  return kind == QuantityKind::kRotation ? RotationMatrix(place, values) : values;
}

cv::FileNode Find(const cv::FileStorage& storage, const std::string& key) {
  const size_t dot = key.find('.');
  const cv::FileNode node = storage[key.substr(0, dot)];
  if (dot == std::string::npos) return node;
  return node.isMap() ? node[key.substr(dot + 1)] : cv::FileNode();
}

}  // namespace

std::vector<double> ReadKey(const cv::FileStorage& storage, const Quantity& place, QuantityKind kind) {
  const std::vector<std::string> keys = SplitKeys(place.key);
  std::vector<cv::FileNode> nodes(keys.size());
  std::ranges::transform(keys, nodes.begin(), [&](const std::string& key) { return Find(storage, key); });
  if (std::ranges::all_of(nodes, &cv::FileNode::empty)) return {};
  if (nodes.size() == 1 && kind != QuantityKind::kRatio) return Checked(place, kind, ReadNumbers(place, nodes[0]));

  Numbers numbers;
  for (size_t i = 0; i < nodes.size(); ++i) {
    if (nodes[i].empty()) Fail(place, keys[i] + " is missing");
    numbers.values.push_back(ReadNumber({{}, keys[i], place.file}, nodes[i]));
  }
  if (kind == QuantityKind::kMatrix) {
    const double fx = numbers.values[0], fy = numbers.values[1], cx = numbers.values[2], cy = numbers.values[3];
    numbers.values = {fx, 0, cx, 0, fy, cy, 0, 0, 1};
  }
  return Checked(place, kind, numbers);
}

}  // namespace itoftool
