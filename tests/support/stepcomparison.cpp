// Lets the library and the plain form write into separate buffers, and compares these.
#include "support/stepcomparison.h"

#include <algorithm>
#include <cfenv>
#include <iomanip>
#include <memory>
#include <sstream>
#include <utility>

#include "alignment/approximatealignment.h"
#include "alignment/distortlut.h"
#include "alignment/farplane.h"
#include "alignment/grid.h"
#include "plain/plainsteps.h"
#include "support/floats.h"

namespace {

template <typename T>
class Output {
 public:
  Output(size_t count, size_t guard, T content) : count_(count), guard_(guard) {
    for (auto* buffer : {&library_, &plain_}) {
      buffer->assign(count + 2 * guard, kSentinel);
      std::fill_n(buffer->data() + guard, count, content);
    }
  }
  T* Library() { return library_.data() + guard_; }
  T* Plain() { return plain_.data() + guard_; }

  /// Appends the first difference to `text`, if that is still empty.
  void Compare(const char* name, std::string& text) const {
    for (size_t i = 0; i < library_.size() && text.empty(); ++i) {
      const bool inside = i >= guard_ && i < guard_ + count_;
      const T expected = inside ? plain_[i] : kSentinel;
      if (SameBits(library_[i], expected) && SameBits(plain_[i], expected)) continue;
      std::ostringstream line;
      line << std::setprecision(17) << name << ", entry " << static_cast<ptrdiff_t>(i - guard_) << ": library "
           << +library_[i] << ", plain form " << +plain_[i];
      text = line.str();
    }
  }

 private:
  static constexpr T kSentinel{101};
  size_t count_, guard_;
  std::vector<T> library_, plain_;
};

size_t TofPixels(const itof::AlignmentContext& context) {
  return itof::PixelCount(context.params.tofWidth, context.params.tofHeight);
}

}  // namespace

std::string CompareFarPlane(itof::AlignmentContext& context, double scaleX, double scaleY, size_t guard) {
  Output<float> x(TofPixels(context), guard, -7.5F), y(TofPixels(context), guard, 8.25F);
  Output<double> matrix(9, guard, 0);
  itof::AlignmentFarPlane(context, x.Library(), y.Library(), scaleX, scaleY);
  std::ranges::copy(context.auxRatioIntrinsics, matrix.Library());
  plain::AlignmentFarPlane(context, x.Plain(), y.Plain(), scaleX, scaleY);
  std::ranges::copy(context.auxRatioIntrinsics, matrix.Plain());
  std::string difference;
  matrix.Compare("aux matrix at the ratio", difference);
  x.Compare("far-plane map x", difference);
  y.Compare("far-plane map y", difference);
  return difference;
}

std::string CompareDistortLUT(const itof::AlignmentContext& context, size_t guard, size_t* written) {
  const size_t count = TofPixels(context);
  Output<float> x(count, guard, -7.5F), y(count, guard, 8.25F);
  itof::DistortLUT(context, x.Library(), y.Library());
  plain::DistortLUT(context, x.Plain(), y.Plain());
  if (written != nullptr) *written += count - static_cast<size_t>(std::count(x.Plain(), x.Plain() + count, -7.5F));
  std::string difference;
  x.Compare("lens table x", difference);
  y.Compare("lens table y", difference);
  return difference;
}

std::string CompareAlignment(itof::AlignmentContext& context, const StepFrame& frame, bool prepareTargets,
                             size_t guard) {
  const float *lensX = frame.lensX.data(), *lensY = frame.lensY.data();
  if (prepareTargets) {
    for (auto& [own, map] : {std::pair(&context.distortMapX, &frame.lensX), {&context.distortMapY, &frame.lensY}}) {
      *own = std::make_unique<float[]>(map->size());
      std::ranges::copy(*map, own->get());
    }
    lensX = context.distortMapX.get(), lensY = context.distortMapY.get();
    itof::PrepareTargets(context);
  }
  Output<uint16_t> working(itof::PixelCount(context.params.auxWidth, context.params.auxHeight), guard, 0xABCD);
  Output<uint8_t> confidence(TofPixels(context), guard, 0xEE);
  const auto run = [&](auto step, uint16_t* workingBuffer, uint8_t* confidences) {
    context.confidence.reset(confidences);
    step(context, frame.words.data(), workingBuffer, frame.farX.data(), frame.farY.data(), lensX, lensY);
    (void)context.confidence.release();
  };
  std::feclearexcept(FE_DIVBYZERO);
  run(itof::RunApproximateAlignment, working.Library(), confidence.Library());
  std::string difference = std::fetestexcept(FE_DIVBYZERO) == 0 ? "" : "the library divides by zero";
  run(plain::RunApproximateAlignment, working.Plain(), confidence.Plain());
  working.Compare("working word", difference);
  confidence.Compare("confidence", difference);
  return difference;
}
