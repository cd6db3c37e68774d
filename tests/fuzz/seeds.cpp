// Writes the inputs that the fuzz targets start from. They are made of the simulated camera pairs and reach most code.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <opencv2/imgcodecs.hpp>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "alignment/grid.h"
#include "calibration/alignmentparams.h"
#include "files/pictures.h"
#include "fuzz/callsinput.h"
#include "fuzz/stepsinput.h"
#include "plain/plainsteps.h"
#include "simulation/rig.h"
#include "stereo/file.h"
#include "stereo/record.h"
#include "support/calibrationbytes.h"
#include "support/mistakes.h"

namespace {

namespace fs = std::filesystem;
using namespace itoftool;

template <typename T>
std::string Bytes(const T& value) {
  return {reinterpret_cast<const char*>(&value), sizeof value};
}

void Add(const fs::path& folder, const std::string& bytes) {
  fs::create_directories(folder);
  std::ofstream file;
  file.exceptions(std::ios::badbit | std::ios::failbit);
  file.open(folder / std::to_string(std::hash<std::string>()(bytes)), std::ios::binary);
  file << bytes << std::flush;
}

std::vector<itof::CalibrationRecord> Records() {
  std::vector<itof::CalibrationRecord> records{
      simulation::GentleRig().record, simulation::StrongRig().record,
      itof::DecodeCalibrationRecord(CalibrationBytes(IdentityCalibration()).data())};
  for (const Mistake& mistake : Mistakes()) mistake.make(records.emplace_back(records[0]));
  return records;
}

/// An input of `steps`: a camera pair's context at another frame size, and pixels near positions of its maps.
std::string StepsSeed(const itof::CalibrationRecord& record, int32_t width, int32_t height, std::mt19937& random) {
  StepsInput input{};
  input.params.tofWidth = input.params.auxWidth = width;
  input.params.tofHeight = input.params.auxHeight = height;
  itof::FillAlignmentParams(record, input.params);
  input.distortionEnabled = static_cast<uint8_t>(random() % 3);
  input.ownNumbers = static_cast<uint8_t>(random() % 2);
  input.preparedTargets = static_cast<uint8_t>(random() % 2);
  input.scaleX = input.scaleY = 1 + 0.25 * static_cast<double>(random() % 3);

  itof::AlignmentContext context{};
  plain::InitAlignmentContext(context, input.params, 1);
  float* const farX = context.farPlaneMapX.get();
  float* const farY = context.farPlaneMapY.get();
  plain::AlignmentFarPlane(context, farX, farY, input.scaleX, input.scaleY);
  plain::DistortLUT(context, context.distortMapX.get(), context.distortMapY.get());
  if (input.ownNumbers != 0) {
    std::ranges::copy(context.params.tofIntrinsics, input.params.tofIntrinsics);
    std::ranges::copy(context.params.auxIntrinsics, input.params.auxIntrinsics);
  }
  input.tofModel = context.tofModel;
  input.auxModel = context.auxModel;
  std::ranges::copy(context.auxRatioIntrinsics, input.auxRatioIntrinsics);

  std::string bytes = Bytes(input);
  for (int i = 0; i < 100; ++i) {
    const size_t at = random() % itof::PixelCount(width, height);
    const auto edge = [&] { return static_cast<int8_t>(random() % 2 == 0 ? 0 : static_cast<int>(random() % 9) - 4); };
    const auto cell = [&](int32_t side) { return static_cast<int16_t>(random() % static_cast<uint32_t>(side)); };
    bytes += Bytes(PixelInput{.word = static_cast<uint16_t>(random() >> (16 + random() % 14)),
                              .floatsFromEdge = {edge(), edge()},
                              .cell = {cell(width), cell(height)},
                              .farPlane = {farX[at], farY[at]},
                              .distorted = {context.distortMapX[at], context.distortMapY[at]}});
  }
  return bytes;
}

/// Inputs of `calls`: alternating runs, ratios and calibrations, with each kind of failure in the middle.
std::vector<std::string> CallSequences() {
  const auto init = [](int8_t allocations) { return CallInput{.action = Action::kInit, .allocations = allocations}; };
  const auto file = [](FileChange change, uint32_t number) {
    return CallInput{.action = Action::kFile, .choice = static_cast<uint8_t>(change), .byte = 0xFF, .number = number};
  };
  const auto align = [](float ratio, int8_t allocations = -1) {
    return CallInput{.action = Action::kAlign, .allocations = allocations, .ratio = ratio};
  };
  const CallInput deinit{.action = Action::kDeinit},
      logs{.action = Action::kDiagnostics, .choice = 1, .number = 0xFFFF};
  std::vector<std::string> sequences;
  for (const CallInput& mishap :
       {file(FileChange::kVanish, 0), file(FileChange::kReplace, 1), file(FileChange::kReplace, 3),
        file(FileChange::kResize, 227), file(FileChange::kSetByte, 19), file(FileChange::kReadsFail, 100), logs}) {
    for (const int8_t allocations : {int8_t{-1}, int8_t{0}, int8_t{4}}) {
      std::string& bytes = sequences.emplace_back();
      for (const CallInput& call : {file(FileChange::kReplace, 0), init(allocations), align(1, 0), align(0.5F), deinit,
                                    align(2), mishap, init(allocations), align(0.5F), deinit, align(0.75F)}) {
        bytes += Bytes(call);
      }
    }
  }
  return sequences;
}

std::string PictureBytes(const cv::Mat& picture, const char* extension) {
  std::vector<uint8_t> bytes;
  cv::imencode(extension, picture, bytes);
  return {bytes.begin(), bytes.end()};
}

void WriteAll(const fs::path& folder) {
  std::mt19937 random(1);
  const fs::path calibration = folder / "calibration", steps = folder / "steps", readers = folder / "readers";
  for (const itof::CalibrationRecord& record : Records()) {
    Add(calibration, Bytes(record));
    for (const auto& [width, height] : {std::pair{1, 1}, {3, 2}, {33, 7}, {130, 4}, {257, 9}}) {
      Add(steps, StepsSeed(record, width, height, random));
    }
    Add(readers, '\0' + Bytes(record));
    Add(readers, '\1' + Bytes(record));
    for (const char* name : {"a.yml", "a.xml", "a.json"}) {
      const std::string text = StereoFileText(PairOf(record), StereoFileFormat(name));
      for (const char reader : {'\2', '\7'}) Add(readers, reader + text);
    }
  }
  Add(calibration, Bytes(Records()[0]).substr(0, 227));
  Add(readers, '\0' + Bytes(Records()[0]).substr(0, 227));
  for (const char* key : {"imageSize1", "M1", "D1", "imageSize2", "M2", "D2", "R", "T"}) {
    std::string text = StereoFileText(PairOf(Records()[0]), StereoFileFormat("a.json"));
    text[text.find(std::string("\"") + key) + 1] = 'X';
    Add(readers, '\2' + text);
  }
  // Each of the other formats, and a mistake that its reader names.
  const std::string matrix = "K: [500, 0, 320, 0, 500, 180, 0, 0, 1]\nD: [.1, .2, .3, .4]\nwidth: 640\nheight: 360\n",
                    camera = "{intrinsics: [500, 500, 320, 180], resolution: [640, 360], distortion_model: none, ",
                    transform = "[[1, 0, 0, 1], [0, 1, 0, 2], [0, 0, 1, 3], [0, 0, 0, 1]]}\n",
                    raw = R"("Intrinsics": {"ModelType": "BrownConrady", "ModelParameters":
                           [.5, .5, .8, 1.4, 1, 2, 3, 4, 5, 6, 0, 0, 7, 8]}, "SensorWidth": 640, "SensorHeight": 360,
                           "Rt": {"Rotation": [1, 0, 0, 0, 1, 0, 0, 0, 1], "Translation": [0, 0, 0]}})";
  for (const std::string& text :
       {matrix, "distortion_model: plumb_bob\n" + matrix, "distortion_model: equidistant\n" + matrix,
        "cam0: " + camera + "}\ncam1: " + camera + "T_cn_cnm1: " + transform,
        "cam0: " + camera + "T_cam_imu: " + transform + "cam1: " + camera + "T_cam_imu: " + transform,
        R"({"CalibrationInformation": {"Cameras": [{"Purpose": "Depth", )" + raw + R"(, {"Purpose": "PhotoVideo", )" +
            raw + "]}}",
        std::string(R"({"value0": {"T_imu_cam": []}})")}) {
    for (const char reader : {'\2', '\11'}) Add(readers, reader + text);
  }
  for (const std::string& sequence : CallSequences()) Add(folder / "calls", sequence);
  const cv::Mat words(360, 640, CV_16U, cv::Scalar(0x2345)), small(360, 640, CV_8U, cv::Scalar(5)),
      colours(18, 32, CV_8UC3, cv::Scalar(1, 2, 3));
  Add(readers, '\3' + std::string(size_t{640} * 360 * 2, 'x'));
  Add(readers, '\4' + PictureBytes(words, ".png"));
  Add(readers, '\5' + PictureBytes(words, ".png"));
  Add(readers, '\6' + PictureBytes(small, ".png"));
  for (const char* extension : {".png", ".jpg", ".bmp", ".tiff", ".webp", ".ppm", ".hdr"}) {
    Add(readers, '\10' + PictureBytes(colours, extension));
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  WriteAll(argv[1]);
}
