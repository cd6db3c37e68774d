// Runs `itof simulate`: writes frames to try the alignment on, with the aux camera's pictures and the true depth.
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <opencv2/core.hpp>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include "commands/commands.h"
#include "commands/options.h"
#include "files/files.h"
#include "files/pictures.h"
#include "simulation/simulation.h"
#include "support/errors.h"
#include "support/print.h"
#include "support/text.h"

namespace itoftool {
namespace {

constexpr char kCalibrationName[] = "calibration.bin";

struct SimulateOptions {
  std::filesystem::path output;
  int frames = 3;
  uint64_t seed = 1;
};

/// Encodes a 640 x 360 picture; `type` is OpenCV's type of a pixel.
std::vector<uint8_t> Png(const void* pixels, int type) {
  return EncodePng(cv::Mat(simulation::kHeight, simulation::kWidth, type, const_cast<void*>(pixels)));
}

std::string FrameName(int frame) { return Format("frame_%03d", frame); }

/// Returns what is wrong with the text of a 64-bit seed, or an empty text. The option parser would accept negative and
/// too large numbers as other numbers.
std::string SeedFault(const std::string& text) {
  uint64_t value = 0;
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value);
  if (error == std::errc() && rest == end) return {};
  return "Value " + text + " is not a whole number from 0 to 18446744073709551615";
}

/// Throws UsageError if `path` is a calibration other than the simulated one. The simulation would replace it, perhaps the
/// only copy.
void CheckCalibrationToReplace(const std::filesystem::path& path, std::span<const uint8_t> simulated) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored) || std::ranges::equal(ReadFile(path), simulated)) return;
  throw UsageError(path.string() + ": is another calibration, and --output would overwrite it");
}

/// Returns text that a shell reads as the one word `word`, and the tool as a path.
std::string ShellWord(const std::string& word) {
  if (word.starts_with('-')) return ShellWord("./" + word);
  constexpr char kPlain[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-./+,:@%";
  if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos) return word;
  std::string quoted = "'";
  for (const char c : word) quoted += c == '\'' ? "'\\''" : std::string(1, c);
  return quoted + "'";
}

void Simulate(const SimulateOptions& options, const std::string& program) {
  const simulation::Rig rig = simulation::GentleRig();
  const auto calibration = FileBytes<itof::CalibrationRecord>({&rig.record, 1});
  CheckCalibrationToReplace(options.output / kCalibrationName, calibration);
  StagedOutput output(options.output);
  output.Write(kCalibrationName, calibration);
  for (int frame = 0; frame < options.frames; ++frame) {
    const simulation::Scene scene = simulation::RoomScene(frame);
    const auto words = simulation::DepthWords(rig, scene, simulation::FrameSeed(options.seed, frame));
    const auto picture = simulation::AuxPicture(rig, scene);
    const auto truth = simulation::Truth(rig, scene);
    const std::string name = FrameName(frame);
    output.Write(name + ".words.raw", FileBytes<uint16_t>(words));
    output.Write(name + ".aux.png", Png(picture.data(), CV_8UC3));
    output.Write(name + ".truth.png", Png(truth.data(), CV_16UC1));
  }
  output.Commit();

  const auto path = [&](const std::string& name) { return ShellWord((options.output / name).string()); };
  std::printf("%d frame%s in %s: calibration.bin, and for each frame\n", options.frames, options.frames == 1 ? "" : "s",
              options.output.c_str());
  std::printf("  NAME.words.raw  depth words of the ToF camera, to be aligned\n");
  std::printf("  NAME.aux.png    picture of the aux camera\n");
  std::printf(
      "  NAME.truth.png  true depth at each cell of the aligned frame in millimetres, 16 bits; viewers show it nearly "
      "black\n");
  std::printf("Align the first one:\n  %s align --calibration %s --aux %s --output %s %s\n", ShellWord(program).c_str(),
              path(kCalibrationName).c_str(), path(FrameName(0) + ".aux.png").c_str(), path("aligned").c_str(),
              path(FrameName(0) + ".words.raw").c_str());
  FinishOutputAfterFiles();
}

}  // namespace

void AddSimulateCommand(CLI::App& app, const std::string& program) {
  const auto options = std::make_shared<SimulateOptions>();
  CLI::App* command =
      app.add_subcommand("simulate", "Simulates a camera pair: calibration, depth frames, aux pictures and true depth");
  AddOutputOption(*command, options->output, "DIR", "Folder for the files; made if missing")->required();
  command->add_option("--frames", options->frames, "Number of frames, 1 to 1000")
      ->type_name("N")
      ->check(DecimalFault)
      ->check(CLI::Validator(CLI::Range(1, 1000)).description(""))
      ->capture_default_str();
  command->add_option("--seed", options->seed, "Seed of the ToF camera's noise")
      ->type_name("N")
      ->check(DecimalFault)
      ->check(SeedFault)
      ->capture_default_str();
  command->callback([options, program] { Simulate(*options, program); });
}

}  // namespace itoftool
