// Compares positions of the same pixels and sums up their distances.
#include "inspection/comparison.h"

#include <algorithm>
#include <cmath>

#include "support/quantile.h"

namespace itoftool {

Spread MeasureSpread(std::span<const cv::Point> pixels, std::span<const cv::Point2d> a,
                     std::span<const cv::Point2d> b) {
  Spread spread;
  std::vector<double> distances;
  for (size_t i = 0; i < pixels.size(); ++i) {
    const double distance = cv::norm(a[i] - b[i]);
    if (std::isnan(distance)) continue;
    if (distances.empty() || distance > spread.maximum) {
      spread.maximum = distance;
      spread.where = pixels[i];
    }
    distances.push_back(distance);
  }
  if (distances.empty()) return spread;
  std::ranges::sort(distances);
  spread.count = distances.size();
  spread.median = Quantile(distances, 0.5);
  spread.percentile95 = Quantile(distances, 0.95);
  return spread;
}

std::vector<cv::Point2d> AlignedPositions(const RunTables& tables, std::span<const cv::Point> pixels, uint16_t code) {
  const Camera aux = MakeCamera(tables.Context().auxModel);
  std::vector<cv::Point2d> positions;
  for (const cv::Point& pixel : pixels) {
    const PixelTrace trace = tables.Trace(pixel.x, pixel.y, code);
    const auto [x, y] = Project(aux, {(trace.ideal.x - aux.cx) / aux.fx, (trace.ideal.y - aux.cy) / aux.fy, 1});
    const cv::Point2d position(x, y);
    // The entry of the lens table is that of the middle of the ideal cell. If it is far away, the lens model is not
    // valid here, and the position may be anywhere.
    const bool isValid = trace.fate == Fate::kLanded && cv::norm(position - trace.distorted) < 20;
    positions.push_back(isValid ? position : kNowhere);
  }
  return positions;
}

Approximation MeasureApproximation(const CameraPair& pair, const RunTables& tables, uint16_t code) {
  const std::vector<cv::Point> pixels = TofPixels(1);
  std::vector<cv::Point2d> exact = AuxPositions(pair, Rays(pair.tof, pixels), code);
  std::vector<cv::Point2d> cells;
  Approximation result;
  for (size_t i = 0; i < pixels.size(); ++i) {
    const PixelTrace trace = tables.Trace(pixels[i].x, pixels[i].y, code);
    const bool landed = trace.fate == Fate::kLanded;
    cells.push_back(landed ? cv::Point2d(trace.target) + cv::Point2d(0.5, 0.5) : kNowhere);
    if (!InFrame(exact[i])) exact[i] = kNowhere;
    result.belonging += InFrame(exact[i]);
    result.lost += InFrame(exact[i]) && !landed;
  }
  result.error = MeasureSpread(pixels, cells, exact);
  return result;
}

}  // namespace itoftool
