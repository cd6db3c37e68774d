// Runs `itof explain`: prints the position of one depth pixel after each stage of the alignment.
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "commands/options.h"
#include "files/calibrationfile.h"
#include "framesize.h"
#include "inspection/camerapair.h"
#include "inspection/jsonvalues.h"
#include "inspection/pixeltrace.h"
#include "support/errors.h"
#include "support/text.h"

namespace itoftool {
namespace {

struct ExplainOptions {
  std::string calibration;
  std::vector<int> at;
  uint16_t code = 0;
  double ratio = 1;
  bool json = false;
};

void Line(const char* stage, const std::string& value, const std::string& note) {
  std::printf("%-21s %-24s %s\n", stage, value.c_str(), note.c_str());
}

std::string PositionText(cv::Point2d position) { return Format("(%.3f, %.3f)", position.x, position.y); }
std::string CellText(cv::Point cell) { return Format("(%d, %d)", cell.x, cell.y); }

/// Prints the stages after the ideal position.
void PrintTarget(const PixelTrace& trace) {
  Line("ideal cell", CellText(trace.cell), "the ideal position, rounded");
  switch (trace.fate) {
    case Fate::kOutsideGrid:
      Line("dropped", "", "the ideal cell is outside the lens table of 640 x 360");
      break;
    case Fate::kUnwrittenEntry:
      Line("lens table", "no entry", "the lens puts that cell outside the frame");
      Line("lands in cell", CellText(trace.target), "like every pixel whose ideal cell has no entry");
      break;
    case Fate::kOutsideFrame:
      Line("lens table", PositionText(trace.distorted), "position in the real aux picture");
      Line("dropped", "", "the position is outside the frame of 640 x 360");
      break;
    default:
      Line("lens table", PositionText(trace.distorted), "position in the real aux picture, without the ratio");
      Line("lands in cell", CellText(trace.target), "the position, truncated; a later pixel may overwrite it");
  }
}

void PrintPixelWithoutDepth(const PixelTrace& start) {
  std::printf(
      "It goes to the target of the last pixel with depth, and leaves only its confidence there.\n"
      "Before the first pixel with depth in a frame:\n");
  Line("ideal position", PositionText(start.ideal), "at the start of every frame");
  PrintTarget(start);
}

void PrintStages(const PixelTrace& trace) {
  Line("undistorted", PositionText(trace.undistorted), "ideal ToF image, after three rounds of undistortion");
  Line("at the far plane", PositionText(trace.farPlane),
       trace.inFront ? "ideal aux image, at the ratio" : "not in front of the aux camera: the map holds zeros");
  Line("parallax", PositionText(trace.parallax), "focal length x translation / code");
  Line("ideal position", PositionText(trace.ideal), "far-plane position plus parallax");
  PrintTarget(trace);
}

/// How far the middle of the pixel's target is from its exact projection, in pixels.
double OffBy(const PixelTrace& trace, cv::Point2d exact) {
  return cv::norm(cv::Point2d(trace.target) + cv::Point2d(0.5, 0.5) - exact);
}

void PrintExactProjection(const PixelTrace& trace, cv::Point2d exact) {
  const bool seen = !IsNowhere(exact);
  Line("exact projection", seen ? PositionText(exact) : "not seen", "real aux picture, for comparison");
  if (trace.fate != Fate::kLanded || !seen) return;
  Line("off by", Format("%.3f", OffBy(trace, exact)), "pixels, from the middle of the cell to the exact projection");
}

/// The stages as JSON. Those that the pixel does not reach are null. A pixel without depth has those of the start of a
/// frame.
std::string TraceJson(cv::Point pixel, const ExplainOptions& options, const PixelTrace& trace, cv::Point2d exact) {
  const bool hasDepth = options.code != 0, inGrid = trace.fate != Fate::kOutsideGrid;
  const bool hasEntry = inGrid && trace.fate != Fate::kUnwrittenEntry;
  const bool hasTarget = inGrid && trace.fate != Fate::kOutsideFrame;
  const auto position = [](bool exists, cv::Point2d value) { return JsonPosition(exists ? value : kNowhere); };
  return JsonText({{"tof_pixel", JsonPixel(pixel)},
                   {"code", options.code},
                   {"ratio", options.ratio},
                   {"undistorted", position(hasDepth, trace.undistorted)},
                   {"in_front_of_aux_camera", hasDepth ? Json(trace.inFront) : Json(nullptr)},
                   {"far_plane", position(hasDepth, trace.farPlane)},
                   {"parallax", position(hasDepth, trace.parallax)},
                   {"ideal_position", position(true, trace.ideal)},
                   {"ideal_cell", JsonPixel(trace.cell)},
                   {"lens_table", position(hasEntry, trace.distorted)},
                   {"fate", kFateNames[static_cast<size_t>(hasDepth ? trace.fate : Fate::kNoDepth)].key},
                   {"target", hasTarget ? JsonPixel(trace.target) : Json(nullptr)},
                   {"exact_projection", JsonPosition(exact)},
                   {"off_by_pixels", trace.fate == Fate::kLanded ? Number(OffBy(trace, exact)) : Json(nullptr)}});
}

void Explain(const ExplainOptions& options) {
  CheckRatio(options.ratio);
  const cv::Point pixel(options.at[0], options.at[1]);
  const cv::Rect frame(0, 0, itof::kFrameWidth, itof::kFrameHeight);
  if (!frame.contains(pixel)) {
    throw UsageError(
        Format("--at: (%d, %d) is not in the frame, whose pixels are (0, 0) to (639, 359)", pixel.x, pixel.y));
  }
  const itof::CalibrationRecord record = ReadCalibrationFile(options.calibration).record;
  const RunTables tables(record, static_cast<float>(options.ratio));
  const PixelTrace trace = options.code == 0 ? tables.TraceStart() : tables.Trace(pixel.x, pixel.y, options.code);
  const CameraPair pair = MakeCameraPair(record);
  const cv::Point only[] = {pixel};
  const cv::Point2d exact = options.code == 0 ? kNowhere : AuxPositions(pair, Rays(pair.tof, only), options.code)[0];
  if (options.json) {
    std::fputs(TraceJson(pixel, options, trace, exact).c_str(), stdout);
    return;
  }
  Line("ToF pixel", CellText(pixel), Format(options.code == 0 ? "code %d, no depth" : "code %d", options.code));
  if (options.code == 0) {
    PrintPixelWithoutDepth(trace);
    return;
  }
  PrintStages(trace);
  PrintExactProjection(trace, exact);
}

}  // namespace

void AddExplainCommand(CLI::App& app) {
  const auto options = std::make_shared<ExplainOptions>();
  CLI::App* command = app.add_subcommand("explain", "Follows one depth pixel through the alignment");
  AddCalibrationOption(*command, options->calibration);
  command->add_option("--at", options->at, "Pixel of the ToF frame, column and row from 0")
      ->required()
      ->expected(2)
      ->delimiter(',')
      ->check(DecimalFault)
      ->type_name("X,Y")
      ->option_text("X,Y REQUIRED");
  command->add_option("--code", options->code, "Depth code of the pixel, 0 to 8191")
      ->required()
      ->check(DecimalFault)
      ->check(CLI::Validator(CLI::Range(0, 8191)).description(""))
      ->type_name("C");
  AddRatioOption(*command, options->ratio);
  command->add_flag("--json", options->json, kJsonHelp);
  command->callback([options] { Explain(*options); });
}

}  // namespace itoftool
