// Runs `itof calibration import` and `export`: converts between OpenCV's stereo calibration files and calibration
// files.
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
#include "commands/options.h"
#include "files/calibrationfile.h"
#include "files/files.h"
#include "stereo/file.h"
#include "stereo/keys.h"
#include "stereo/record.h"
#include "support/errors.h"
#include "support/print.h"
#include "support/text.h"

namespace itoftool {
namespace fs = std::filesystem;
namespace {

struct ImportOptions {
  std::vector<std::string> inputs;
  std::string output;
  std::string unit = "mm";
  std::vector<int> tofSize, auxSize, tofWindow;  // empty if not given
};

struct ExportOptions {
  std::string input;
  std::string output;
};

/// Returns the image size that an option gives; without values if it was not given.
Quantity SizeOf(const char* option, const std::vector<int>& size) {
  if (size.empty()) return {};
  if (size[0] < 1 || size[1] < 1)
    throw UsageError(Format("%s: %d,%d is not a valid image size", option, size[0], size[1]));
  return {{static_cast<double>(size[0]), static_cast<double>(size[1])}, option, {}};
}

/// Checks that `output` names a file and that no input is that file.
void CheckOutput(const fs::path& output, const std::vector<std::string>& inputs) {
  const fs::path name = output.filename();
  if (name.empty() || name == "." || name == "..")
    throw UsageError("-o: \"" + output.string() + "\" is not a file name");
  RefuseToOverwrite({inputs.begin(), inputs.end()}, {output}, "-o");
}

void WriteOutput(const fs::path& path, std::span<const uint8_t> bytes) {
  StagedOutput output(path.parent_path());
  output.Write(path.filename().string(), bytes);
  output.Commit();
}

/// Returns where a quantity comes from. Of several keys it names the first.
std::string Source(const Quantity& quantity) {
  const size_t plus = quantity.key.find('+');
  const std::string more = plus == std::string::npos ? "" : " and others";
  return quantity.key.substr(0, plus) + more + (quantity.file.empty() ? "" : " in " + quantity.file);
}

/// Prints one camera as in the files and, if the record has a different matrix, as in the record.
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

void PrintImport(const StereoPair& pair, const itof::CalibrationRecord& record, const fs::path& output,
                 const std::vector<Finding>& findings) {
  PrintCamera("camera 1 (ToF)", pair.tof, record.tofIntrinsics);
  PrintCamera("camera 2 (aux)", pair.aux, record.auxIntrinsics);
  const std::vector<double>& t = pair.translation.values;
  std::printf("rotation        %.3f degrees, from %s\n", RotationAngle(cv::Matx33d(pair.rotation.values.data())),
              Source(pair.rotation).c_str());
  std::printf("baseline        %.6g mm, from %s\n", std::hypot(t[0], t[1], t[2]), Source(pair.translation).c_str());
  std::printf("written to      %s\n", output.c_str());
  std::printf("check           %s%s\n", CountText(findings).c_str(),
              findings.empty() ? "" : "; for details run \"itof calibration check\"");
}

void Import(const ImportOptions& options) {
  CheckOutput(options.output, options.inputs);
  const Quantity tofSize = SizeOf("--tof-size", options.tofSize), auxSize = SizeOf("--aux-size", options.auxSize);
  std::optional<Window> window;
  if (const auto& w = options.tofWindow; !w.empty()) window = {w[0], w[1], w[2], w[3]};
  StereoPair pair = ReadStereoFiles({options.inputs.begin(), options.inputs.end()}, tofSize, auxSize);
  if (options.unit == "m") ConvertToMillimetres(pair);
  const itof::CalibrationRecord record = RecordOf(pair, window);
  const std::vector<Finding> findings = CheckGeometry(record);
  WriteOutput(options.output, FileBytes<itof::CalibrationRecord>({&record, 1}));
  PrintImport(pair, record, options.output, findings);
  FinishOutputAfterFiles();
}

void Export(const ExportOptions& options) {
  CheckOutput(options.output, {options.input});
  const int format = StereoFileFormat(options.output);
  const std::string text = StereoFileText(PairOf(ReadCalibrationFile(options.input).record), format);
  WriteOutput(options.output, FileBytes<char>(text));
  std::printf("camera 1 is the ToF camera, camera 2 the aux camera; T is in the calibration's unit, usually mm\n");
  std::printf("written to      %s\n", options.output.c_str());
  FinishOutputAfterFiles();
}

}  // namespace

void AddImportCommand(CLI::App& calibration) {
  const auto options = std::make_shared<ImportOptions>();
  CLI::App* command = calibration.add_subcommand("import", "Makes a calibration file from OpenCV's stereo calibration");
  command
      ->add_option(
          "STEREO", options->inputs,
          "YAML, XML or JSON files with the pair, one or several; camera 1 is the ToF camera, camera 2 the aux camera")
      ->required()
      ->type_name("");
  command->add_option("-o,--output", options->output, "Calibration file to write")->required()->type_name("FILE");
  command->add_option("--unit", options->unit, "Unit of the translation in the files")
      ->type_name("mm|m")
      ->check(CLI::IsMember({"mm", "m"}))
      ->capture_default_str();
  command->add_option("--tof-size", options->tofSize, "Image size of the ToF camera, if the files do not contain it")
      ->expected(2)
      ->delimiter(',')
      ->check(DecimalFault)
      ->type_name("W,H");
  command->add_option("--aux-size", options->auxSize, "Image size of the aux camera, if the files do not contain it")
      ->expected(2)
      ->delimiter(',')
      ->check(DecimalFault)
      ->type_name("W,H");
  command
      ->add_option("--tof-window", options->tofWindow, "16:9 part of the ToF image that becomes the frame of 640 x 360")
      ->expected(4)
      ->delimiter(',')
      ->check(DecimalFault)
      ->type_name("X,Y,W,H");
  command->footer(StereoKeysHelp());
  command->callback([options] { Import(*options); });
}

void AddExportCommand(CLI::App& calibration) {
  const auto options = std::make_shared<ExportOptions>();
  CLI::App* command =
      calibration.add_subcommand("export", "Converts a calibration file to OpenCV's stereo calibration");
  command->add_option("FILE", options->input, kCalibrationFileHelp)->required()->type_name("");
  command->add_option("-o,--output", options->output, "File to write: .yml, .yaml, .xml or .json")
      ->required()
      ->type_name("STEREO");
  command->callback([options] { Export(*options); });
}

}  // namespace itoftool
