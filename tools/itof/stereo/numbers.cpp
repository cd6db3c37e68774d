// Reads numbers node by node and checks every type and shape.
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
  int64_t rows = 0, cols = 0;  // 0 for a plain list
  std::vector<double> values;

  bool IsVector(size_t count) const { return values.size() == count && (rows <= 1 || cols == 1); }
  bool IsSquare() const { return values.size() == 9 && rows == cols; }
  std::string Shape() const {
    if (rows == 0) return std::to_string(values.size()) + (values.size() == 1 ? " entry" : " entries");
    return std::to_string(rows) + " x " + std::to_string(cols) + " entries";
  }
};

double ReadNumber(const Quantity& place, const Json& node) {
  if (!node.is_number()) Fail(place, "contains an entry that is not a number");
  const double value = node.get<double>();
  if (!std::isfinite(value)) Fail(place, "contains a number that is not finite");
  return value;
}

/// Reads a list of numbers, or a list of rows of equal length.
Numbers ReadRows(const Quantity& place, const Json& list) {
  if (!list.is_array()) Fail(place, "is neither a matrix nor a list of numbers");
  Numbers numbers;
  for (const Json& entry : list) {
    if (!entry.is_array() && numbers.rows == 0) {
      numbers.values.push_back(ReadNumber(place, entry));
      continue;
    }
    const size_t length = entry.is_array() ? entry.size() : 0;
    if (length == 0 || length * static_cast<size_t>(numbers.rows) != numbers.values.size()) {
      Fail(place, "has rows of different lengths");
    }
    ++numbers.rows;
    numbers.cols = static_cast<int64_t>(length);
    for (const Json& number : entry) numbers.values.push_back(ReadNumber(place, number));
  }
  return numbers;
}

Numbers ReadNumbers(const Quantity& place, const Json& node) {
  if (!node.is_object()) return ReadRows(place, node);
  const auto side = [&](const char* key) {
    const Json* value = Find(node, key);
    const double length = value != nullptr && value->is_number() ? value->get<double>() : 0.5;
    if (length != std::trunc(length) || std::abs(length) > INT32_MAX) Fail(place, "is not a matrix in OpenCV's form");
    return static_cast<int64_t>(length);
  };
  const int64_t rows = side("rows"), cols = side("cols");
  const Json* const type = Find(node, "dt");
  const Json* const data = Find(node, "data");
  if (data == nullptr || (type != nullptr && !type->is_string())) Fail(place, "is not a matrix in OpenCV's form");
  // ROS writes the same without a type.
  if (const std::string letter = type == nullptr ? "d" : *type; letter != "d" && letter != "f" && letter != "i") {
    Fail(place, "is a matrix of type \"" + letter + "\"; expected d, f or i with one channel");
  }
  Numbers numbers = ReadRows(place, *data);
  numbers.rows = rows;
  numbers.cols = cols;
  if (rows < 0 || rows * cols != static_cast<int64_t>(numbers.values.size())) {
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

/// Checks numbers and converts them to the form of StereoPair.
std::vector<double> Checked(const Quantity& place, QuantityKind kind, const Numbers& numbers) {
  if (const char* expected = ExpectedShape(kind, numbers)) {
    Fail(place, "has " + numbers.Shape() + "; expected " + expected);
  }
  const std::vector<double>& values = numbers.values;
  const auto isPixels = [](double value) { return value >= 1 && value < 2147483648.0; };
  if (kind == QuantityKind::kSize && !std::ranges::all_of(values, isPixels)) Fail(place, "is not a valid image size");
  return kind == QuantityKind::kRotation ? RotationMatrix(place, values) : values;
}

}  // namespace

std::vector<double> RotationMatrix(const Quantity& place, const std::vector<double>& values) {
  if (values.size() == 3) {
    cv::Mat matrix;
    cv::Rodrigues(values, matrix);
    return {matrix.begin<double>(), matrix.end<double>()};
  }
  if (values.size() == 4) {
    const double norm = std::hypot(std::hypot(values[0], values[1]), std::hypot(values[2], values[3]));
    if (std::abs(norm - 1) > kOrthonormal)
      Fail(place, Format("is not a rotation: the quaternion's norm is %.6g", norm));
    const double x = values[0] / norm, y = values[1] / norm, z = values[2] / norm, w = values[3] / norm;
    return {1 - 2 * (y * y + z * z), 2 * (x * y - z * w),     2 * (x * z + y * w),
            2 * (x * y + z * w),     1 - 2 * (x * x + z * z), 2 * (y * z - x * w),
            2 * (x * z - y * w),     2 * (y * z + x * w),     1 - 2 * (x * x + y * y)};
  }
  const cv::Matx33d matrix(values.data());
  const double error = OrthonormalityError(matrix);
  if (error > kOrthonormal) {
    Fail(place, Format("is not a rotation: R times its transpose differs from the identity by %.3g", error));
  }
  if (cv::determinant(matrix) < 0) Fail(place, "is a reflection, not a rotation: its determinant is -1");
  return values;
}

std::vector<double> ReadKey(const Document& document, const Quantity& place, QuantityKind kind) {
  const std::vector<std::string> keys = SplitKeys(place.key);
  std::vector<const Json*> nodes(keys.size());
  std::ranges::transform(keys, nodes.begin(), [&](const std::string& key) { return Find(document.root, key); });
  if (std::ranges::all_of(nodes, [](const Json* node) { return node == nullptr; })) return {};
  if (nodes.size() == 1 && kind != QuantityKind::kRatio) return Checked(place, kind, ReadNumbers(place, *nodes[0]));

  Numbers numbers;
  for (size_t i = 0; i < nodes.size(); ++i) {
    if (nodes[i] == nullptr) Fail(place, keys[i] + " is missing");
    numbers.values.push_back(ReadNumber({{}, keys[i], place.file}, *nodes[i]));
  }
  if (kind == QuantityKind::kMatrix) {
    const double fx = numbers.values[0], fy = numbers.values[1], cx = numbers.values[2], cy = numbers.values[3];
    numbers.values = {fx, 0, cx, 0, fy, cy, 0, 0, 1};
  }
  // The four keys name the parts of a quaternion.
  if (kind == QuantityKind::kRotation && nodes.size() == 4) return RotationMatrix(place, numbers.values);
  return Checked(place, kind, numbers);
}

Quantity ReadList(const Document& document, const std::string& key, size_t count) {
  Quantity quantity{{}, key, document.file};
  const Json* const node = Find(document.root, key);
  if (node == nullptr) Fail(quantity, "is missing");
  const Numbers numbers = ReadNumbers(quantity, *node);
  if (numbers.values.size() != count) Fail(quantity, "has " + numbers.Shape() + "; expected " + std::to_string(count));
  quantity.values = numbers.values;
  return quantity;
}

std::string ReadText(const Document& document, const std::string& key) {
  const Json* const node = Find(document.root, key);
  if (node == nullptr || node->is_null()) return {};
  if (!node->is_string()) Fail({{}, key, document.file}, "is not a text");
  return *node;
}

cv::Matx44d ReadTransform(const Document& document, const std::string& key) {
  const Quantity quantity = ReadList(document, key, 16);
  cv::Matx44d transform(quantity.values.data());
  const cv::Matx33d rotation = transform.get_minor<3, 3>(0, 0);
  RotationMatrix(quantity, {rotation.val, rotation.val + 9});
  if (transform.row(3) != cv::Matx14d(0, 0, 0, 1)) Fail(quantity, "is not a transform: its last row is not 0 0 0 1");
  return transform;
}

void SetPose(const cv::Matx44d& toTof, const cv::Matx44d& toAux, const Quantity& place, StereoPair& pair) {
  const cv::Matx33d rotation = toAux.get_minor<3, 3>(0, 0) * toTof.get_minor<3, 3>(0, 0).t();
  const cv::Matx31d translation = toAux.get_minor<3, 1>(0, 3) - rotation * toTof.get_minor<3, 1>(0, 3);
  pair.rotation = pair.translation = place;
  pair.rotation.values.assign(rotation.val, rotation.val + 9);
  pair.translation.values.assign(translation.val, translation.val + 3);
}

}  // namespace itoftool
