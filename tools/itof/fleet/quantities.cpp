// Measures the quantities in which the units of a fleet are compared.
#include "fleet/quantities.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <numbers>
#include <opencv2/calib3d.hpp>

#include "calibration/calibrationfields.h"
#include "camera/rotation.h"
#include "inspection/valuetext.h"
#include "support/text.h"

namespace itoftool {
namespace {

using Units = std::span<const CheckedUnit* const>;

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

cv::Matx33d RotationOf(const CheckedUnit& unit) {
  cv::Matx33d rotation;
  std::ranges::copy(unit.record->rotation, rotation.val);
  return rotation;
}

bool IsRotation(const cv::Matx33d& matrix) {
  return OrthonormalityError(matrix) <= kOrthonormal && cv::determinant(matrix) > 0;
}

void AddFields(Units units, std::vector<QuantityValues>& quantities) {
  itof::ForEachEntry([&](const itof::CalibrationField& field, size_t index) {
    if (!itof::IsGeometry(field.kind)) return;
    const bool isInformation = field.kind == itof::FieldKind::kRotation;
    const QuantityRole role = isInformation ? QuantityRole::kInformation : QuantityRole::kCause;
    QuantityValues quantity{itof::EntryName(field, index), EntryUnit(field, index), role, {}};
    for (const CheckedUnit* unit : units) {
      quantity.values.push_back(static_cast<double>(EntryValue(*unit->record, field, index)));
    }
    quantities.push_back(std::move(quantity));
  });
}

/// The rotation nearest to the medians of the entries of all rotations; the identity if there are none.
cv::Matx33d MedianRotation(Units units) {
  cv::Matx33d median;
  for (int entry = 0; entry < 9; ++entry) {
    std::vector<double> values;
    for (const CheckedUnit* unit : units) {
      const cv::Matx33d rotation = RotationOf(*unit);
      if (IsRotation(rotation)) values.push_back(rotation.val[entry]);
    }
    if (values.empty()) return cv::Matx33d::eye();
    median.val[entry] = Median(values);
  }
  const cv::SVD svd((cv::Mat(median)));
  const cv::Mat nearest = svd.u * svd.vt;
  return cv::Matx33d(nearest.ptr<double>());
}

/// Adds the rotation vector from the median rotation to each unit's, and which units have no rotation to compare.
void AddAngles(Units units, std::vector<QuantityValues>& quantities) {
  const cv::Matx33d median = MedianRotation(units);
  std::vector<cv::Vec3d> angles;
  for (const CheckedUnit* unit : units) {
    const cv::Matx33d rotation = RotationOf(*unit);
    angles.push_back(cv::Vec3d::all(kNotANumber));
    if (IsRotation(rotation)) cv::Rodrigues(rotation * median.t(), angles.back());
  }
  QuantityValues invalid{"rotation not valid", "0 no, 1 yes", QuantityRole::kCause, {}};
  for (const CheckedUnit* unit : units) invalid.values.push_back(IsRotation(RotationOf(*unit)) ? 0 : 1);
  quantities.push_back(std::move(invalid));
  for (int axis = 0; axis < 3; ++axis) {
    QuantityValues quantity{Format("turn about %c", "xyz"[axis]), "degrees", QuantityRole::kCause, {}};
    for (const cv::Vec3d& angle : angles) quantity.values.push_back(angle[axis] * 180 / std::numbers::pi);
    quantities.push_back(std::move(quantity));
  }
}

void AddMoves(std::span<const PerDepth<Spread>> moves, std::vector<QuantityValues>& quantities) {
  for (size_t depth = 0; depth < std::size(kCompareDepths); ++depth) {
    for (const auto& [name, figure] : {std::pair{"median", &Spread::median}, {"maximum", &Spread::maximum}}) {
      QuantityValues quantity{
          Format("move at %.1f m, %s", kCompareDepths[depth] / 1000.0, name), "pixels", QuantityRole::kEffect, {}};
      for (const auto& move : moves) {
        quantity.values.push_back(move[depth].count > 0 ? move[depth].*figure : kNotANumber);
      }
      quantities.push_back(std::move(quantity));
    }
  }
}

}  // namespace

double Median(std::vector<double> values) {
  std::erase_if(values, [](double value) { return std::isnan(value); });
  if (values.empty()) return kNotANumber;
  const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
  std::ranges::nth_element(values, middle);
  const double median = values.size() % 2 == 1 ? *middle : (*middle + *std::max_element(values.begin(), middle)) / 2;
  return median + 0.0;  // never -0
}

std::vector<PerDepth<Spread>> MeasureMoves(Units units) {
  const std::vector<cv::Point> pixels = FleetPixels();
  std::vector<PerDepth<Spread>> moves(units.size());
  for (size_t depth = 0; depth < std::size(kCompareDepths); ++depth) {
    std::vector<cv::Point2d> medians;
    for (size_t pixel = 0; pixel < pixels.size(); ++pixel) {
      std::vector<double> x, y;
      for (const CheckedUnit* unit : units) {
        const cv::Point2d position = unit->positions[depth][pixel];
        if (IsNowhere(position)) continue;
        x.push_back(position.x);
        y.push_back(position.y);
      }
      medians.push_back(4 * x.size() < 3 * units.size() ? kNowhere : cv::Point2d(Median(x), Median(y)));
    }
    for (size_t i = 0; i < units.size(); ++i) {
      moves[i][depth] = MeasureSpread(pixels, medians, units[i]->positions[depth]);
    }
  }
  return moves;
}

std::vector<QuantityValues> MeasureQuantities(Units units, std::span<const PerDepth<Spread>> moves) {
  std::vector<QuantityValues> quantities;
  AddFields(units, quantities);
  AddAngles(units, quantities);
  AddMoves(moves, quantities);
  return quantities;
}

}  // namespace itoftool
