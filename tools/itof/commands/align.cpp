// `itof align`: files in, the library's three calls, files out.
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <memory>
#include <opencv2/core.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "commands/aligner.h"
#include "commands/commands.h"
#include "commands/ratio.h"
#include "files/calibrationfile.h"
#include "files/files.h"
#include "files/frames.h"
#include "files/pictures.h"
#include "framesize.h"
#include "inspection/pixeltrace.h"
#include "pixelwords.h"
#include "report/alignmentjson.h"
#include "report/fatesheet.h"
#include "report/preview.h"
#include "report/summary.h"
#include "support/errors.h"

namespace itoftool {
namespace fs = std::filesystem;
namespace {

constexpr char kJsonName[] = "alignment.json";

struct AlignOptions {
  std::string calibration;
  double ratio = 1;
  std::string output = ".";
  std::string kind;
  std::string confidence;
  std::vector<std::string> aux;
  bool log = false;
  bool report = false;
  std::vector<std::string> inputs;
};

struct Job {
  fs::path input;
  FrameFormat format;
  std::string wordsName, depthName, previewName;  // of the outputs
  std::string fatesName;                          // empty without a report

  std::vector<std::string> Outputs() const {
    std::vector<std::string> names{wordsName, depthName, previewName};
    if (!fatesName.empty()) names.push_back(fatesName);
    return names;
  }
};

FrameFormat FormatOf(const std::string& input, const std::string& kind) {
  std::string extension = fs::path(input).extension().string();
  std::ranges::transform(extension, extension.begin(),
                         [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (extension == ".png") return kind == "words" ? FrameFormat::kPngWords : FrameFormat::kPngMillimetres;
  if (extension != ".raw") throw UsageError("INPUT " + input + " must end in .raw or .png");
  if (kind == "millimetres") throw UsageError(input + ": --kind millimetres is for .png, and .raw holds words");
  return FrameFormat::kRawWords;
}

/// Every output has a name of its own, and none is the name of a file that the command reads.
void CheckNames(const AlignOptions& options, const std::vector<Job>& jobs) {
  std::map<std::string, std::string> sources{{kJsonName, ""}};
  for (const Job& job : jobs) {
    for (const std::string& name : job.Outputs()) {
      const auto [other, isNew] = sources.emplace(name, job.input.string());
      if (!isNew) {
        throw UsageError(job.input.string() + ": would write " + name + ", as " + other->second + " does");
      }
    }
  }
  std::vector<std::string> readFiles = options.inputs;
  readFiles.insert(readFiles.end(), options.aux.begin(), options.aux.end());
  readFiles.insert(readFiles.end(), {options.calibration, options.confidence});
  for (const fs::path file : readFiles) {
    std::error_code missing;
    const bool sameFolder = fs::equivalent("." / file.parent_path(), "." / fs::path(options.output), missing);
    if (sameFolder && sources.contains(file.filename().string())) {
      throw UsageError(file.string() + ": is read, and --output would write over it");
    }
  }
}

/// Finds everything wrong with the arguments that shows without opening a file.
std::vector<Job> PlanJobs(const AlignOptions& options) {
  if (options.calibration.empty()) throw UsageError("--calibration FILE is required");
  if (options.inputs.empty()) throw UsageError("INPUT is required: one or more .raw or .png files");
  CheckRatio(options.ratio);
  if (options.aux.size() > 1 && options.aux.size() != options.inputs.size()) {
    throw UsageError("--aux: " + std::to_string(options.aux.size()) + " pictures are neither one nor one for each of " +
                     std::to_string(options.inputs.size()) + " inputs");
  }
  std::vector<Job> jobs;
  for (const std::string& input : options.inputs) {
    const std::string name = fs::path(input).stem().string();
    jobs.push_back({input, FormatOf(input, options.kind), name + ".aligned.raw", name + ".aligned.png",
                    name + ".preview.png", options.report ? name + ".fates.png" : ""});
  }
  const bool takesConfidence = jobs.size() == 1 && jobs[0].format == FrameFormat::kPngMillimetres;
  if (!options.confidence.empty() && !takesConfidence) {
    throw UsageError("--confidence: is for a single .png input in millimetres");
  }
  CheckNames(options, jobs);
  return jobs;
}

cv::Mat AsMat(std::vector<uint16_t>& values) { return {itof::kFrameHeight, itof::kFrameWidth, CV_16U, values.data()}; }

/// Depth codes of depth words.
std::vector<uint16_t> InputCodes(const std::vector<uint16_t>& words) {
  std::vector<uint16_t> codes(words.size());
  std::ranges::transform(words, codes.begin(), itof::DepthCode);
  return codes;
}

/// Depth codes of aligned words: 0..4080 in steps of 16.
std::vector<uint16_t> AlignedCodes(const std::vector<uint16_t>& words) {
  std::vector<uint16_t> codes(words.size());
  std::ranges::transform(words, codes.begin(), [](uint16_t word) { return static_cast<uint16_t>((word & 0xFF) * 16); });
  return codes;
}

/// `tables` are null if no report is wanted.
FrameReport AlignFrame(const Job& job, DepthFrame frame, const cv::Mat& aux, const Aligner& aligner,
                       const RunTables* tables, StagedOutput& output) {
  std::vector<uint16_t>& words = frame.words;
  std::optional<FateCounts> counts;
  if (tables != nullptr) {
    const FrameFates fates = TraceFrame(*tables, words);
    output.Write(job.fatesName, EncodePng(DrawFates(fates, job.input.filename().string())));
    counts = fates.counts;
  }
  std::vector<uint16_t> inputCodes = InputCodes(words);
  const double milliseconds = aligner.Align(words);
  std::vector<uint16_t> alignedCodes = AlignedCodes(words);
  const double reached = 1 - static_cast<double>(std::ranges::count(words, 0)) / static_cast<double>(words.size());

  const std::string caption = job.input.filename().string() + ": " + Percent(reached) + " of the aux pixels reached";
  const cv::Mat preview = DrawPreview(AsMat(inputCodes), AsMat(alignedCodes), aux, caption);
  output.Write(job.wordsName, FileBytes<uint16_t>(words));
  output.Write(job.depthName, EncodePng(AsMat(alignedCodes)));
  output.Write(job.previewName, EncodePng(preview));
  return {job.input, job.Outputs(), milliseconds, reached, frame.aboveRange, counts};
}

void RunAlign(const AlignOptions& options) {
  const std::vector<Job> jobs = PlanJobs(options);
  const CalibrationFile calibration = ReadCalibrationFile(options.calibration);
  const float ratio = static_cast<float>(options.ratio);

  StagedOutput output(options.output);
  const Aligner aligner(calibration.record, ratio, options.log);
  std::optional<RunTables> tables;
  if (options.report) tables.emplace(calibration.record, ratio);
  std::vector<FrameReport> reports;
  cv::Mat aux;
  {
    Progress progress(jobs.size(), options.log);
    for (size_t i = 0; i < jobs.size(); ++i) {
      if (i < options.aux.size()) aux = ReadColourPicture(options.aux[i]);
      DepthFrame frame = ReadDepthFrame(jobs[i].input, jobs[i].format, options.confidence);
      reports.push_back(AlignFrame(jobs[i], std::move(frame), aux, aligner, tables ? &*tables : nullptr, output));
      progress.Show(i + 1);
    }
  }
  const std::string json = AlignmentJson(calibration, ratio, reports);
  output.Write(kJsonName, FileBytes<char>(json));
  output.Commit();
  PrintSummary(reports, options.output);
}

}  // namespace

void AddAlignCommand(CLI::App& app) {
  CLI::App* command = app.add_subcommand("align", "Moves depth frames into the view of the aux camera");
  auto options = std::make_shared<AlignOptions>();
  command->add_option("--calibration", options->calibration, "Calibration file of 228 bytes (required)")
      ->type_name("FILE");
  command->add_option("--ratio", options->ratio, "Scale of the ideal aux image; 1 is without zoom")
      ->type_name("R")
      ->capture_default_str();
  command->add_option("--output", options->output, "Folder of the results; made if missing")
      ->type_name("DIR")
      ->capture_default_str();
  command->add_option("--kind", options->kind, "What .png inputs hold: words or, if not given, millimetres")
      ->type_name("KIND")
      ->check(CLI::IsMember({"words", "millimetres"}));
  command
      ->add_option("--confidence", options->confidence,
                   "8-bit PNG of confidences 0..7 for a single input in millimetres; without it, 7")
      ->type_name("FILE");
  command->add_option("--aux", options->aux, "Picture of the aux camera for the preview: one, or one for each input")
      ->type_name("IMAGE")
      ->allow_extra_args(false);
  command->add_flag("--report", options->report,
                    "Says what became of the depth pixels, and draws it as NAME.fates.png");
  command->add_flag("--log", options->log, "Shows the lines that the library itself prints and logs");
  command
      ->add_option("INPUT", options->inputs,
                   "Depth frames of 640 x 360: .raw (little-endian depth words) or .png (16-bit) (required)")
      ->type_name("");
  command->callback([options] { RunAlign(*options); });
}

}  // namespace itoftool
