// Makes the text of alignment.json. The aux camera's values come from the alignment's own code, so they are the values
// that the frames were made with.
#include "report/alignmentjson.h"

#include "framesize.h"
#include "inspection/jsonvalues.h"
#include "inspection/workingcontext.h"

namespace itoftool {
namespace {

Json AuxCamera(const itof::CalibrationRecord& record) {
  const itof::AlignmentContext context = MakeWorkingContext(record);
  const auto& k = context.params.auxIntrinsics;
  const itof::CameraModel& lens = context.auxModel;
  // Positions are truncated to cells, so the middle of cell (u, v) is the position (u + 0.5, v + 0.5).
  constexpr double kCellShift = 0.5;
  return {{"matrix", {{k[0], k[1], k[2] - kCellShift}, {k[3], k[4], k[5] - kCellShift}, {k[6], k[7], k[8]}}},
          {"matrix_note",
           "in pixels of the output image, without the ratio; cx and cy are 0.5 smaller than in the calibration "
           "scaled to this size, because output cell (u, v) holds the positions [u, u+1) x [v, v+1), where integers "
           "are the centres of the aux camera's pixels"},
          {"distortion",
           {{"k1", lens.k1},
            {"k2", lens.k2},
            {"k3", lens.k3},
            {"k4", lens.k4},
            {"k5", lens.k5},
            {"k6", lens.k6},
            {"p1", lens.p1},
            {"p2", lens.p2}}},
          {"distortion_note",
           "OpenCV's rational model: radial factor (1 + k1 r^2 + k2 r^4 + k3 r^6) / (1 + k4 r^2 + k5 r^4 + "
           "k6 r^6), tangential coefficients p1 and p2; the output image has the aux camera's distortion"}};
}

Json Fates(const FateCounts& counts) {
  Json fates;
  for (size_t i = 0; i < std::size(kFateNames); ++i) fates[kFateNames[i].key] = counts.byFate[i];
  fates["overwritten_by_pixels_without_depth"] = counts.overwrittenWithoutDepth;
  return fates;
}

}  // namespace

std::string AlignmentJson(const CalibrationFile& calibration, float ratio, const std::vector<FrameReport>& frames) {
  Json list = Json::array();
  for (const FrameReport& frame : frames) {
    list.push_back({{"input", frame.input.string()},
                    {"outputs", frame.outputs},
                    {"share_of_aux_pixels_reached", frame.reached},
                    {"input_values_above_8191", frame.aboveRange}});
    if (frame.fates) list.back()["pixels_by_fate"] = Fates(*frame.fates);
  }
  const Json json = {
      {"tool", "itof " ITOF_VERSION},
      {"image", {{"width", itof::kFrameWidth}, {"height", itof::kFrameHeight}, {"view", "aux camera"}}},
      {"aux_camera", AuxCamera(calibration.record)},
      {"ratio", static_cast<double>(ratio)},
      {"depth",
       {{"unit", "the unit of the calibration's translation, usually millimetres"},
        {"step", 16},
        {"wrap", 4096},
        {"wrap_note", "depths of 4096 and above come out 4096 too small"},
        {"axis", "along the optical axis of the ToF camera, not of the aux camera"},
        {"frame", "ToF camera"}}},
      {"words",
       {{"byte_order", "little-endian"},
        {"bits_0_to_7", "depth divided by 16, modulo 256"},
        {"bits_8_to_10", "confidence, 0 to 7"},
        {"bits_11_to_15", "0"},
        {"no_depth",
         "bits 0 to 7 are 0, also for depth codes 1 to 15 and 4096 to 4111; the word may still hold confidence"},
        {"png", "NAME.aligned.png holds bits 0 to 7 times 16, which is the depth in its unit; 0 means no depth"}}},
      {"calibration", {{"file", calibration.path.string()}, {"sha256", calibration.sha256}}},
      {"frames", list}};
  return JsonText(json);
}

}  // namespace itoftool
