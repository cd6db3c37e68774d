// Runs `itof calibration import` and `export`: converts between stereo calibrations of other programs and calibration
// files.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <sstream>
#include <string>
#include <utility>
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
  std::string unit, format, quaternionOrder;                // empty if not given
  std::vector<int> tofSize, auxSize, tofWindow, auxWindow;  // like these
  std::string rotation;
  std::vector<double> translation;
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

std::optional<Window> WindowOf(const std::vector<int>& window) {
  if (window.empty()) return std::nullopt;
  return Window{window[0], window[1], window[2], window[3]};
}

/// Returns rotation and translation as the options give them; a quaternion in the order x, y, z, w.
std::pair<Quantity, Quantity> PoseOf(const ImportOptions& options) {
  Quantity rotation{{}, "--rotation", {}}, translation{options.translation, "--translation", {}};
  std::vector<double>& r = rotation.values;
  if (options.rotation.empty() != translation.values.empty()) {
    throw UsageError("--rotation and --translation: one needs the other");
  }
  if (options.rotation.empty()) return {};
  std::istringstream list(options.rotation);
  for (std::string number; std::getline(list, number, ',');) {
    if (!CLI::detail::lexical_cast(number, r.emplace_back())) {
      throw UsageError("--rotation: " + number + " is not a number");
    }
  }
  for (const Quantity* quantity : {&rotation, &translation}) {
    if (!std::ranges::all_of(quantity->values, [](double value) { return std::isfinite(value); })) {
      throw UsageError(quantity->key + ": contains a number that is not finite");
    }
  }
  if (r.size() != 3 && r.size() != 4 && r.size() != 9) {
    throw UsageError(
        Format("--rotation: has %zu numbers; expected 9 row by row, a rotation vector of 3 in radians, or a "
               "quaternion of 4",
               r.size()));
  }
  if ((r.size() == 4) == options.quaternionOrder.empty()) {
    throw UsageError("--rotation of 4 numbers and --quaternion-order xyzw or wxyz: one needs the other");
  }
  if (options.quaternionOrder == "wxyz") std::rotate(r.begin(), r.begin() + 1, r.end());
  return {rotation, translation};
}

/// Checks that `output` names a file and that no input is that file.
void CheckOutput(const fs::path& output, const std::vector<std::string>& inputs) {
  const fs::path name = output.filename();
  if (name.empty() || name == "." || name == "..")
    throw UsageError("--output: \"" + output.string() + "\" is not a file name");
  RefuseToOverwrite({inputs.begin(), inputs.end()}, {output}, "--output");
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

/// Prints one camera as in the files and, if the record has a different matrix, as in the record, where it refers to
/// `frame`.
void PrintCamera(const char* title, const StereoCamera& camera, const char* frame, std::span<const float, 9> stored) {
  const std::vector<double>& size = camera.size.values;
  const std::vector<double>& m = camera.matrix.values;
  std::printf("%s\n", title);
  std::printf("  size          %g x %g, from %s\n", size[0], size[1], Source(camera.size).c_str());
  std::printf("  matrix        fx %.9g, fy %.9g, cx %.9g, cy %.9g, from %s\n", m[0], m[4], m[2], m[5],
              Source(camera.matrix).c_str());
  const auto isKept = [](double value, float single) { return static_cast<float>(value) == single; };
  if (!std::equal(m.begin(), m.end(), stored.begin(), isKept)) {
    const auto at = [&](size_t index) { return static_cast<double>(stored[index]); };
    std::printf("    %-10s  fx %.9g, fy %.9g, cx %.9g, cy %.9g\n", frame, at(0), at(4), at(2), at(5));
  }
  std::printf("  distortion    from %s\n", Source(camera.distortion).c_str());
}

void PrintImport(const StereoPair& pair, const itof::CalibrationRecord& record, const fs::path& output) {
  PrintCamera("camera 1 (ToF)", pair.tof, "in 640x360", record.tofIntrinsics);
  PrintCamera("camera 2 (aux)", pair.aux, "in window", record.auxIntrinsics);
  const std::vector<double>& t = pair.translation.values;
  std::printf("rotation        %.3f degrees, from %s\n", RotationAngle(cv::Matx33d(pair.rotation.values.data())),
              Source(pair.rotation).c_str());
  std::printf("baseline        %.6g mm, from %s\n", std::hypot(t[0], t[1], t[2]), Source(pair.translation).c_str());
  for (const std::string& note : pair.notes) std::printf("note            %s\n", note.c_str());
  std::printf("written to      %s\n", output.c_str());
}

void Import(const ImportOptions& options) {
  CheckOutput(options.output, options.inputs);
  const auto [rotation, translation] = PoseOf(options);
  const StereoOptions stereo{.format = options.format,
                             .tofSize = SizeOf("--tof-size", options.tofSize),
                             .auxSize = SizeOf("--aux-size", options.auxSize),
                             .rotation = rotation,
                             .translation = translation};
  StereoPair pair = ReadStereoFiles({options.inputs.begin(), options.inputs.end()}, stereo);
  ConvertToMillimetres(pair, options.unit);
  const itof::CalibrationRecord record = RecordOf(pair, WindowOf(options.tofWindow), WindowOf(options.auxWindow));
  const std::vector<Finding> findings = CheckGeometry(record);
  WriteOutput(options.output, FileBytes<itof::CalibrationRecord>({&record, 1}));
  PrintImport(pair, record, options.output);
  const std::string check =
      CountText(findings) + (findings.empty() ? "" : "; for details run \"itof calibration check\"");
  if (CountErrors(findings) > 0) throw DataError(options.output + ": written, but the check finds " + check);
  std::printf("check           %s\n", check.c_str());
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
  CLI::App* command =
      calibration.add_subcommand("import", "Makes a calibration file from the stereo calibration of another program");
  command
      ->add_option("STEREO", options->inputs,
                   "YAML, XML or JSON files with the pair, one or several; camera 1, left, or the first file with one "
                   "camera is the ToF camera")
      ->required()
      ->type_name("");
  AddOutputOption(*command, options->output, "FILE", "Calibration file to write")->required();
  const auto addNumbers = [&](const char* name, auto& numbers, const char* form, const char* help) {
    return command->add_option(name, numbers, help)->delimiter(',')->type_name(form)->option_text(form);
  };
  AddChoiceOption(*command, "--format", options->format, StereoFormatNames(),
                  "Format of the files, recognised by the content if not given");
  AddChoiceOption(*command, "--unit", options->unit, UnitNames(),
                  "Unit of the translation if the files do not say it; mm if not given");
  addNumbers("--tof-size", options->tofSize, "W,H", "Image size of the ToF camera, if the files do not contain it")
      ->expected(2)
      ->check(DecimalFault);
  addNumbers("--aux-size", options->auxSize, "W,H", "Image size of the aux camera, if the files do not contain it")
      ->expected(2)
      ->check(DecimalFault);
  addNumbers("--tof-window", options->tofWindow, "X,Y,W,H",
             "16:9 part of the ToF image that becomes the frame of 640 x 360")
      ->expected(4)
      ->check(DecimalFault);
  addNumbers("--aux-window", options->auxWindow, "X,Y,W,H", "16:9 part of the aux image that becomes the frame")
      ->expected(4)
      ->check(DecimalFault);
  addNumbers("--translation", options->translation, "X,Y,Z", "Translation, if the files do not contain it")
      ->expected(3);
  command
      ->add_option("--rotation", options->rotation,
                   "Rotation: 9 numbers row by row, a rotation vector of 3 in radians, or a quaternion of 4")
      ->type_name("R,R,...");
  AddChoiceOption(*command, "--quaternion-order", options->quaternionOrder, {"xyzw", "wxyz"},
                  "Order of a --rotation of 4 numbers");
  command->footer(StereoFormatsHelp() + "\n" + StereoKeysHelp());
  command->callback([options] { Import(*options); });
}

void AddExportCommand(CLI::App& calibration) {
  const auto options = std::make_shared<ExportOptions>();
  CLI::App* command =
      calibration.add_subcommand("export", "Converts a calibration file to OpenCV's stereo calibration");
  command->add_option("FILE", options->input, kCalibrationFileHelp)->required()->type_name("");
  AddOutputOption(*command, options->output, "STEREO", "File to write: .yml, .yaml, .xml or .json")->required();
  command->callback([options] { Export(*options); });
}

}  // namespace itoftool
