// Fuzz target for sequences of the three functions, while files change, reads and allocations fail, and clocks and gates
// have any value. A model, built from the library's steps, says what the library must do. This file includes the
// interface's source, so that each sequence can start with a freshly loaded library.
#include <orvolog/orvolog.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/callsinput.h"
#include "fuzz/require.h"
#include "inspection/workingcontext.h"
#include "itofinterface.cpp"
#include "plain/plainframe.h"
#include "plain/plainsteps.h"
#include "simulation/rig.h"
#include "support/calibrationbytes.h"
#include "support/recordingplatform.h"

namespace {

using Frame = std::vector<uint16_t>;
constexpr size_t kPixels = size_t{ITOF_FRAME_WIDTH} * ITOF_FRAME_HEIGHT;

/// Fails if the library takes memory from OpenCV. A 2-D cv::Mat over existing memory needs none.
class NoAllocator : public cv::MatAllocator {
  static cv::UMatData* Refuse() {
    Require(false, "the library takes no memory from OpenCV");
    return nullptr;
  }
  cv::UMatData* allocate(int, const int*, int, void*, size_t*, cv::AccessFlag, cv::UMatUsageFlags) const override {
    return Refuse();
  }
  bool allocate(cv::UMatData*, cv::AccessFlag, cv::UMatUsageFlags) const override { return Refuse() != nullptr; }
  void deallocate(cv::UMatData*) const override {}
};

std::string FileOf(const itof::CalibrationRecord& record) {
  return {reinterpret_cast<const char*>(&record), sizeof record};
}

/// The state that the library must have.
class Model {
 public:
  /// The result of itof_init for the platform's present file.
  static int32_t InitResult() {
    const auto& file = g_platform.file;
    const size_t needed = itof::kCalibrationRecordSize;
    if (!file) return ITOF_CALIBRATION_UNREADABLE;
    if (g_platform.readFailsAt.value_or(needed) < std::min(file->size() + 1, needed))
      return ITOF_CALIBRATION_UNREADABLE;
    if (file->size() < needed) return ITOF_CALIBRATION_SHORT;
    return FirstCalibrationFault(Record()) ? ITOF_CALIBRATION_UNUSABLE : ITOF_OK;
  }

  void Init() {
    context_ = itoftool::MakeWorkingContext(Record());
    inRun_ = false;
  }

  bool IsInitialised() const { return context_.has_value(); }
  bool MayAllocate() const { return IsInitialised() && !hasAligned_; }

  void Deinit() { inRun_ = false; }

  Frame Aligned(const Frame& frame, float ratio) {
    if (!context_) return frame;
    hasAligned_ = true;
    if (!std::exchange(inRun_, true)) {
      const auto scale = static_cast<double>(ratio);
      itof::AlignmentFarPlane(*context_, context_->farPlaneMapX.get(), context_->farPlaneMapY.get(), scale, scale);
      itof::DistortLUT(*context_, context_->distortMapX.get(), context_->distortMapY.get());
    }
    Frame words(kPixels);
    itof::RunApproximateAlignment(*context_, frame.data(), words.data(), context_->farPlaneMapX.get(),
                                  context_->farPlaneMapY.get(), context_->distortMapX.get(),
                                  context_->distortMapY.get());
    std::ranges::transform(words, words.begin(), plain::AlignedWord);
    return words;
  }

 private:
  static itof::CalibrationRecord Record() { return itof::DecodeCalibrationRecord(g_platform.file->data()); }

  std::optional<itof::AlignmentContext> context_;
  bool inRun_ = false;
  bool hasAligned_ = false;
};

/// Resets the library to the state in which it was loaded.
void UnloadLibrary() {
  itof::alignment_params = {};
  itof::library_context.context = {};
  itof::frame_memory.reset();
  itof::init_done = itof::tables_prepared = false;
  itof::tof_calib_width = 0;
  itof::aux_fl_ratio = 0;
}

/// The files and frames that the actions choose from.
struct World {
  const std::string files[4] = {FileOf(itoftool::simulation::GentleRig().record),
                                FileOf(itoftool::simulation::StrongRig().record),
                                CalibrationBytes(IdentityCalibration({{22, 20.0F}})),
                                CalibrationBytes(IdentityCalibration({{2, 639.0F}}))};  // unusable
  Frame frames[2] = {Frame(kPixels), Frame(kPixels)};
  Frame expected;  // the first frame with the first calibration, in plain form

  World() {
    for (size_t i = 0; i < kPixels; ++i) {
      frames[0][i] = static_cast<uint16_t>(i * 40503 >> 7);
      frames[1][i] = static_cast<uint16_t>(i % 3 == 0 ? 0 : 0x2000 + i % 8000);
    }
    itof::AlignmentContext context = itoftool::MakeWorkingContext(itoftool::simulation::GentleRig().record);
    expected = frames[0];
    plain::AlignFrame(context, expected.data(), true, 1.0F);
  }
};

void ChangeFile(const CallInput& input, const World& world) {
  auto& file = g_platform.file;
  switch (FileChange{static_cast<uint8_t>(input.choice % kFileChanges)}) {
    case FileChange::kVanish:
      file.reset();
      break;
    case FileChange::kReplace:
      file = world.files[input.number % std::size(world.files)];
      break;
    case FileChange::kResize:
      if (file) file->resize(input.number % 500, 'x');
      break;
    case FileChange::kSetByte:
      if (file && !file->empty()) file->at(input.number % file->size()) = static_cast<char>(input.byte);
      break;
    case FileChange::kReadsFail:
      g_platform.readFailsAt = input.number % 500;
      break;
    case FileChange::kReadsSucceed:
      g_platform.readFailsAt.reset();
  }
}

/// Sets the gates, and stamps that run forwards, run backwards or wrap.
void ChangeDiagnostics(const CallInput& input) {
  g_enableOrvxLogs = uint64_t{input.number} << 32 | input.number;
  g_enableSystemLog = input.choice % 3;
  g_platform.stamps.clear();
  for (uint64_t i = 0; i < 8; ++i) g_platform.stamps.push_back({g_enableOrvxLogs * i, ~g_enableOrvxLogs * i});
}

/// Aligns a frame. Returns nothing if the library throws, which must leave the frame unchanged.
std::optional<Frame> Align(Frame frame, float ratio, int allocations) {
  const Frame before = frame;
  if (Succeeds(allocations, [&] { Require(itof_execute_algo(frame.data(), ratio) == 0, "the result is 0"); })) {
    return frame;
  }
  Require(frame == before, "a frame that fails is unchanged");
  return std::nullopt;
}

/// Makes one call or changes the surroundings.
void Act(const CallInput& input, const World& world, Model& model) {
  switch (Action{static_cast<uint8_t>(static_cast<int>(input.action) % kActions)}) {
    case Action::kInit: {
      int32_t result = 0;
      g_platform.events.clear();
      const bool succeeds = Succeeds(input.allocations, [&] { result = itof_init(); });
      Require(g_platform.openStreams == 0, "no file stays open");
      Require(g_platform.events.empty(), "itof_init reads no clock and writes no line");
      if (!succeeds) break;
      Require(result == Model::InitResult(), "itof_init returns the model's result");
      if (result == ITOF_OK) model.Init();
      break;
    }
    case Action::kAlign: {
      const Frame& frame = world.frames[input.choice % 2];
      g_platform.events.clear();
      const auto words = Align(frame, input.ratio, input.allocations);
      Require(model.IsInitialised() || g_platform.events.empty(), "frames before itof_init cause no call");
      Require(words || model.MayAllocate(), "only the first frame allocates");
      if (words) Require(*words == model.Aligned(frame, input.ratio), "the words are the model's");
      break;
    }
    case Action::kDeinit:
      Require(Succeeds(0, itof_deinit), "itof_deinit allocates nothing");
      model.Deinit();
      break;
    case Action::kFile:
      ChangeFile(input, world);
      break;
    case Action::kDiagnostics:
      ChangeDiagnostics(input);
  }
}

/// Requires that a good calibration gives the right words after any sequence.
void AlignAfterAll(const World& world) {
  g_platform = {.file = world.files[0]};
  Require(itof_init() == ITOF_OK, "a good calibration is accepted at the end");
  Require(Align(world.frames[0], 1.0F, -1) == world.expected, "it gives the right words");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  static NoAllocator noAllocator;
  static const World world;
  cv::Mat::setDefaultAllocator(&noAllocator);
  g_platform = {};
  g_enableOrvxLogs = 0;
  g_enableSystemLog = 0;

  const long live = g_liveAllocations;
  {
    Model model;
    for (size_t i = 0; i < std::min(size / sizeof(CallInput), size_t{12}); ++i) {
      CallInput input{};
      std::memcpy(&input, bytes + i * sizeof input, sizeof input);
      Act(input, world, model);
    }
  }
  AlignAfterAll(world);
  UnloadLibrary();
  g_platform = {};
  Require(g_liveAllocations == live, "nothing leaks");
  return 0;
}
