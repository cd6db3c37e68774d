// `itof explain`: one depth pixel on its way through the alignment, with the number that each stage makes of it.
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "commands/ratio.h"
#include "files/calibrationfile.h"
#include "framesize.h"
#include "inspection/camerapair.h"
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
};

void Line(const char* stage, const std::string& value, const char* note) {
  std::printf("%-21s %-24s %s\n", stage, value.c_str(), note);
}

std::string PositionText(cv::Point2d position) { return Format("(%.3f, %.3f)", position.x, position.y); }
std::string CellText(cv::Point cell) { return Format("(%d, %d)", cell.x, cell.y); }

void PrintEnd(const PixelTrace& trace) {
  Line("ideal cell", CellText(trace.cell), "that position, rounded");
  switch (trace.fate) {
    case Fate::kOutsideGrid:
      Line("dropped", "", "the ideal cell is outside the lens table of 640 x 360");
      break;
    case Fate::kUnwrittenEntry:
      Line("lens table", "no entry", "the lens puts that cell outside the frame");
      Line("lands in cell", CellText(trace.target), "as all pixels whose cell has no entry");
      break;
    case Fate::kOutsideFrame:
      Line("lens table", PositionText(trace.distorted), "aux picture, lens included");
      Line("dropped", "", "that is outside the frame of 640 x 360");
      break;
    default:
      Line("lens table", PositionText(trace.distorted), "aux picture, lens included, without the ratio");
      Line("lands in cell", CellText(trace.target), "the position's whole part; a later pixel may take it");
  }
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
  if (options.code == 0) {
    Line("ToF pixel", CellText(pixel), "code 0, no depth");
    std::printf(
        "It goes where the last pixel before it that has depth goes, and leaves its confidence without depth there.\n"
        "Before the first pixel with depth of a frame:\n");
    const PixelTrace start = tables.TraceStart();
    Line("ideal position", PositionText(start.ideal), "where every frame starts");
    PrintEnd(start);
    return;
  }

  const PixelTrace trace = tables.Trace(pixel.x, pixel.y, options.code);
  Line("ToF pixel", CellText(pixel), Format("code %d", options.code).c_str());
  Line("undistorted", PositionText(trace.undistorted), "ideal ToF picture, by three rounds of the inverse lens model");
  Line("at the far plane", PositionText(trace.farPlane),
       trace.inFront ? "ideal aux picture, at the ratio" : "not in front of the aux camera: the map holds zeros");
  Line("parallax", PositionText(trace.parallax), "focal length times translation, over the code");
  Line("ideal position", PositionText(trace.ideal), "their sum");
  PrintEnd(trace);

  const CameraPair pair = MakeCameraPair(record);
  const cv::Point only[] = {pixel};
  const cv::Point2d exact = AuxPositions(pair, Rays(pair.tof, only), options.code)[0];
  Line("exact projection", std::isnan(exact.x) ? "not seen" : PositionText(exact), "aux picture, for comparison");
  if (trace.fate == Fate::kLanded && !std::isnan(exact.x)) {
    const double off = cv::norm(cv::Point2d(trace.target) + cv::Point2d(0.5, 0.5) - exact);
    Line("off by", Format("%.3f", off), "pixels, from the middle of the cell");
  }
}

}  // namespace

void AddExplainCommand(CLI::App& app) {
  const auto options = std::make_shared<ExplainOptions>();
  CLI::App* command = app.add_subcommand("explain", "Follows one depth pixel through the alignment");
  command->add_option("--calibration", options->calibration, "Calibration file of 228 bytes")
      ->required()
      ->type_name("FILE");
  command->add_option("--at", options->at, "Pixel of the ToF frame, column and row from 0")
      ->required()
      ->expected(2)
      ->delimiter(',')
      ->type_name("X,Y");
  command->add_option("--code", options->code, "Depth code of the pixel, 0 to 8191")
      ->required()
      ->check(CLI::Range(0, 8191))
      ->type_name("C");
  command->add_option("--ratio", options->ratio, "Scale of the ideal aux image; 1 is without zoom")
      ->type_name("R")
      ->capture_default_str();
  command->callback([options] { Explain(*options); });
}

}  // namespace itoftool
