// `itof calibration import` and `export`: between the calibration file and the files of OpenCV's stereo calibration.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "camera/rotation.h"
#include "check/findings.h"
#include "commands/commands.h"
#include "files/calibrationfile.h"
#include "files/files.h"
#include "stereo/file.h"
#include "stereo/keys.h"
#include "stereo/record.h"
#include "support/errors.h"
#include "support/text.h"

namespace itoftool {
namespace fs = std::filesystem;
namespace {

struct ImportOptions {
  std::vector<std::string> inputs;
  std::string output;
  std::string unit = "mm";
  std::vector<int> tofSize, auxSize, tofWindow;  // empty where not given
};

struct ExportOptions {
  std::string input;
  std::string output;
};

/// The size that an option gives, if it does.
Quantity SizeOf(const char* option, const std::vector<int>& size) {
  if (size.empty()) return {};
  if (size[0] < 1 || size[1] < 1)
    throw UsageError(Format("%s: %d,%d is no size of an image", option, size[0], size[1]));
  return {{static_cast<double>(size[0]), static_cast<double>(size[1])}, option, {}};
}

/// `output` is a file's name, and no input is that file.
void CheckOutput(const fs::path& output, const std::vector<std::string>& inputs) {
  const fs::path name = output.filename();
  if (name.empty() || name == "." || name == "..") throw UsageError("-o: \"" + output.string() + "\" names no file");
  for (const std::string& input : inputs) {
    std::error_code missing;
    if (fs::equivalent(input, output, missing)) throw UsageError(input + ": is read, and -o would write over it");
  }
}

void WriteOutput(const fs::path& path, std::span<const uint8_t> bytes) {
  StagedOutput output(path.parent_path());
  output.Write(path.filename().string(), bytes);
  output.Commit();
}

/// Where a quantity comes from, with the first of several keys.
std::string Source(const Quantity& quantity) {
  const size_t plus = quantity.key.find('+');
  const std::string more = plus == std::string::npos ? "" : " and others";
  return quantity.key.substr(0, plus) + more + (quantity.file.empty() ? "" : " of " + quantity.file);
}

/// One camera as the files have it and, where that is not the same, as the record has it.
void PrintCamera(const char* title, const StereoCamera& camera, std::span<const float, 9> stored) {
  const std::vector<double>& size = camera.size.values;
  const std::vector<double>& m = camera.matrix.values;
  std::printf("%s\n", title);
  std::printf("  size          %g x %g, from %s\n", size[0], size[1], Source(camera.size).c_str());
  std::printf("  matrix        fx %.9g, fy %.9g, cx %.9g, cy %.9g, from %s\n", m[0], m[4], m[2], m[5],
              Source(camera.matrix).c_str());
  const auto isKept = [](double value, float single) { return static_cast<float>(value) == single; };
  if (!std::equal(m.begin(), m.end(), stored.begin(), isKept)) {
    const auto at = [&](size_t index) { return static_cast<double>(stored[index]); };
    std::printf("    in 640x360  fx %.9g, fy %.9g, cx %.9g, cy %.9g\n", at(0), at(4), at(2), at(5));
  }
  std::printf("  distortion    from %s\n", Source(camera.distortion).c_str());
}

void PrintImport(const StereoPair& pair, const itof::CalibrationRecord& record, const fs::path& output) {
  PrintCamera("camera 1 (ToF)", pair.tof, record.tofIntrinsics);
  PrintCamera("camera 2 (aux)", pair.aux, record.auxIntrinsics);
  const std::vector<double>& t = pair.translation.values;
  std::printf("rotation        %.3f degrees, from %s\n", RotationAngle(cv::Matx33d(pair.rotation.values.data())),
              Source(pair.rotation).c_str());
  std::printf("baseline        %.6g mm, from %s\n", std::hypot(t[0], t[1], t[2]), Source(pair.translation).c_str());
  std::printf("written to      %s\n", output.c_str());
  const std::vector<Finding> findings = CheckGeometry(record);
  std::printf("check           %s%s\n", CountText(findings).c_str(),
              findings.empty() ? "" : "; \"itof calibration check\" says more");
}

void Import(const ImportOptions& options) {
  CheckOutput(options.output, options.inputs);
  const Quantity tofSize = SizeOf("--tof-size", options.tofSize), auxSize = SizeOf("--aux-size", options.auxSize);
  std::optional<Window> window;
  if (const auto& w = options.tofWindow; !w.empty()) window = {w[0], w[1], w[2], w[3]};
  StereoPair pair = ReadStereoFiles({options.inputs.begin(), options.inputs.end()}, tofSize, auxSize);
  if (options.unit == "m") {
    if (pair.translation.key == kMillimetreKey) {
      throw UsageError("--unit: " + pair.translation.file + " holds " + kMillimetreKey + ", which is in mm");
    }
    for (double& entry : pair.translation.values) entry *= 1000;
  }
  const itof::CalibrationRecord record = RecordOf(pair, window);
  WriteOutput(options.output, FileBytes<itof::CalibrationRecord>({&record, 1}));
  PrintImport(pair, record, options.output);
}

void Export(const ExportOptions& options) {
  CheckOutput(options.output, {options.input});
  const int format = StereoFileFormat(options.output);
  const std::string text = StereoFileText(PairOf(ReadCalibrationFile(options.input).record), format);
  WriteOutput(options.output, FileBytes<char>(text));
  std::printf("camera 1 is ToF, camera 2 is aux; T is in the unit of the calibration, usually mm\n");
  std::printf("written to      %s\n", options.output.c_str());
}

}  // namespace

void AddImportCommand(CLI::App& calibration) {
  const auto options = std::make_shared<ImportOptions>();
  CLI::App* command = calibration.add_subcommand("import", "Makes a calibration file of OpenCV's stereo calibration");
  command
      ->add_option("STEREO", options->inputs,
                   "YAML, XML or JSON of the pair, in one file or in several; camera 1 is ToF, camera 2 is aux")
      ->required()
      ->type_name("");
  command->add_option("-o,--output", options->output, "Calibration file to be written")->required()->type_name("FILE");
  command->add_option("--unit", options->unit, "Unit of the translation in the files")
      ->type_name("mm|m")
      ->check(CLI::IsMember({"mm", "m"}))
      ->capture_default_str();
  command->add_option("--tof-size", options->tofSize, "Image size of the ToF camera, if the files do not say it")
      ->expected(2)
      ->delimiter(',')
      ->type_name("W,H");
  command->add_option("--aux-size", options->auxSize, "The same of the aux camera")
      ->expected(2)
      ->delimiter(',')
      ->type_name("W,H");
  command
      ->add_option("--tof-window", options->tofWindow,
                   "Part of the ToF image that becomes the frame of 640 x 360; of 16:9")
      ->expected(4)
      ->delimiter(',')
      ->type_name("X,Y,W,H");
  command->footer(StereoKeysHelp());
  command->callback([options] { Import(*options); });
}

void AddExportCommand(CLI::App& calibration) {
  const auto options = std::make_shared<ExportOptions>();
  CLI::App* command = calibration.add_subcommand("export", "Writes a calibration file as OpenCV's stereo calibration");
  command->add_option("FILE", options->input, "Calibration file of 228 bytes")->required()->type_name("");
  command->add_option("-o,--output", options->output, "File to be written: .yml, .yaml, .xml or .json")
      ->required()
      ->type_name("STEREO");
  command->callback([options] { Export(*options); });
}

}  // namespace itoftool
