// Runs `itof align`: reads depth frames, aligns them with the library as a host does, and writes words, pictures and
// alignment.json.
#include <cstdint>
#include <cstdio>
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
#include "commands/options.h"
#include "files/calibrationfile.h"
#include "files/files.h"
#include "files/frames.h"
#include "files/pictures.h"
#include "inspection/pixeltrace.h"
#include "report/alignmentjson.h"
#include "report/depthpictures.h"
#include "report/fatesheet.h"
#include "report/preview.h"
#include "report/summary.h"
#include "support/errors.h"
#include "support/print.h"
#include "support/progress.h"

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
  bool json = false;
  std::vector<std::string> inputs;
};

/// One input and the names of its outputs.
struct Job {
  fs::path input;
  FrameFormat format;
  std::string wordsName, depthName, previewName;
  std::string fatesName;  // empty without --report

  std::vector<std::string> Outputs() const {
    std::vector<std::string> names{wordsName, depthName, previewName};
    if (!fatesName.empty()) names.push_back(fatesName);
    return names;
  }
};

FrameFormat FormatOf(const std::string& input, const std::string& kind) {
  const std::string extension = LowerCaseExtension(input);
  if (extension == ".png") return kind == "words" ? FrameFormat::kPngWords : FrameFormat::kPngMillimetres;
  if (extension != ".raw") throw UsageError(input + ": must end in .raw or .png");
  if (kind == "millimetres") throw UsageError(input + ": --kind millimetres is for .png files; .raw files hold words");
  return FrameFormat::kRawWords;
}

/// Checks that no two outputs have the same name and that none would overwrite a file that the command reads.
void CheckOutputs(const AlignOptions& options, const std::vector<Job>& jobs) {
  std::map<std::string, std::string> writers;  // the input of each output
  const fs::path folder = options.output;
  std::vector<fs::path> outputs{folder / kJsonName};
  for (const Job& job : jobs) {
    for (const std::string& name : job.Outputs()) {
      const auto [writer, isNew] = writers.emplace(name, job.input.string());
      if (!isNew) throw UsageError(writer->second + " and " + job.input.string() + " would both write " + name);
      outputs.push_back(folder / name);
    }
  }
  std::vector<fs::path> inputs(options.inputs.begin(), options.inputs.end());
  inputs.insert(inputs.end(), options.aux.begin(), options.aux.end());
  inputs.insert(inputs.end(), {options.calibration, options.confidence});
  RefuseToOverwrite(inputs, outputs, "--output");
}

/// Plans the outputs. Throws UsageError for every mistake in the arguments that can be found without opening a file.
std::vector<Job> PlanJobs(const AlignOptions& options) {
  CheckRatio(options.ratio);
  if (options.aux.size() > 1 && options.aux.size() != options.inputs.size()) {
    throw UsageError("--aux: needs one picture, or one for each input; " + std::to_string(options.aux.size()) +
                     " were given");
  }
  std::vector<Job> jobs;
  for (const std::string& input : options.inputs) {
    const std::string name = fs::path(input).stem().string();
    jobs.push_back({input, FormatOf(input, options.kind), name + ".aligned.raw", name + ".aligned.png",
                    name + ".preview.png", options.report ? name + ".fates.png" : ""});
  }
  const bool takesConfidence = jobs.size() == 1 && jobs[0].format == FrameFormat::kPngMillimetres;
  if (!options.confidence.empty() && !takesConfidence) {
    throw UsageError("--confidence: needs a single .png input in millimetres");
  }
  CheckOutputs(options, jobs);
  return jobs;
}

/// Aligns one frame and writes its outputs. `tables` are null without --report.
FrameReport AlignFrame(const Job& job, DepthFrame frame, const cv::Mat& aux, const Aligner& aligner,
                       const RunTables* tables, StagedOutput& output) {
  std::vector<uint16_t>& words = frame.words;
  const std::string inputName = job.input.filename().string();
  std::optional<FateCounts> counts;
  if (tables != nullptr) {
    const FrameFates fates = TraceFrame(*tables, words);
    output.Write(job.fatesName, EncodePng(DrawFates(fates, inputName)));
    counts = fates.counts;
  }
  const cv::Mat inputDepth = DepthPicture(words);
  const double milliseconds = aligner.Align(words);
  const cv::Mat alignedDepth = AlignedDepthPicture(words);
  const double reached = ShareReached(words);

  const std::string caption = inputName + ": " + Percent(reached) + " of the aux pixels reached";
  output.Write(job.wordsName, FileBytes<uint16_t>(words));
  output.Write(job.depthName, EncodePng(alignedDepth));
  output.Write(job.previewName, EncodePng(DrawPreview(inputDepth, alignedDepth, aux, caption)));
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
    Progress progress(jobs.size(), "frames", options.log);
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
  if (options.json) {
    std::fputs(json.c_str(), stdout);
  } else {
    PrintSummary(reports, options.output);
  }
  FinishOutputAfterFiles();
}

}  // namespace

void AddAlignCommand(CLI::App& app) {
  CLI::App* command = app.add_subcommand("align", "Moves depth frames into the view of the aux camera");
  auto options = std::make_shared<AlignOptions>();
  AddCalibrationOption(*command, options->calibration);
  AddRatioOption(*command, options->ratio);
  AddOutputOption(*command, options->output, "DIR", "Folder for the results; made if missing")->capture_default_str();
  AddChoiceOption(*command, "--kind", options->kind, {"millimetres", "words"},
                  "Contents of .png inputs; millimetres if not given");
  command
      ->add_option("--confidence", options->confidence,
                   "8-bit PNG of confidences 0..7 for a single input in millimetres; without it, 7")
      ->check(EmptyFault)
      ->type_name("FILE");
  command->add_option("--aux", options->aux, "Picture of the aux camera for the preview: one, or one for each input")
      ->type_name("IMAGE")
      ->allow_extra_args(false);
  command->add_flag("--report", options->report,
                    "Reports what happened to the depth pixels, and draws it as NAME.fates.png");
  CLI::Option* log = command->add_flag("--log", options->log, "Shows the lines that the library prints and logs");
  command->add_flag("--json", options->json, "Prints alignment.json in place of the summary")->excludes(log);
  command
      ->add_option("INPUT", options->inputs,
                   "Depth frames of 640 x 360: .raw (little-endian depth words) or .png (16-bit)")
      ->required()
      ->type_name("");
  command->callback([options] { RunAlign(*options); });
}

}  // namespace itoftool
