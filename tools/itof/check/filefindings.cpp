// Files that are no calibration at all, or one that only another machine would understand.
#include <algorithm>
#include <cmath>
#include <optional>

#include "calibration/calibrationcheck.h"
#include "calibration/calibrationfields.h"
#include "check/checkedpair.h"
#include "support/text.h"

namespace itoftool {
namespace {

using Bytes = std::span<const uint8_t, itof::kCalibrationRecordSize>;

constexpr char kReadAgain[] =
    "Read the partition or the module's memory again, and compare with the file that the calibration station wrote.";

/// The record with the bytes of every field in the other order.
itof::CalibrationRecord SwapBytes(Bytes bytes) {
  uint8_t swapped[itof::kCalibrationRecordSize];
  for (size_t i = 0; i < bytes.size(); ++i) swapped[i] = bytes[i / 4 * 4 + 3 - i % 4];
  return itof::DecodeCalibrationRecord(swapped);
}

/// No camera has such a number in its calibration.
bool IsAbsurd(float value) {
  const float size = std::fabs(value);
  return !std::isfinite(value) || size > 1e12F || (size > 0 && size < 1e-20F);
}

bool IsOrdinary(float value) {
  const float size = std::fabs(value);
  return size >= 1e-9F && size <= 1e6F;
}

/// Fields that make sense only with their bytes swapped.
std::optional<Finding> FindSwappedFields(const itof::CalibrationRecord& record,
                                         const itof::CalibrationRecord& swapped) {
  std::string first;
  size_t count = 0;
  itof::ForEachEntry([&](const itof::CalibrationField& field, size_t index) {
    if (!itof::IsGeometry(field.kind)) return;
    const float asWritten = EntryValue(record, field, index), asSwapped = EntryValue(swapped, field, index);
    if (!IsAbsurd(asWritten) || !IsOrdinary(asSwapped)) return;
    if (count++ == 0) {
      first = Format("%s at byte %zu is %.4g as written, and %.6g with its bytes in the other order",
                     itof::EntryName(field, index).c_str(), itof::EntryOffset(field, index),
                     static_cast<double>(asWritten), static_cast<double>(asSwapped));
    }
  });
  if (count == 0) return std::nullopt;
  const bool whole = itof::FirstCalibrationFault(record) && !itof::FirstCalibrationFault(swapped);
  return Finding{Severity::kError, "byte-order",
                 first + (whole       ? "; the whole file makes sense that way, and no pixel can be placed as it is."
                          : count > 1 ? Format("; %zu more fields are like that.", count - 1)
                                      : "."),
                 "Write all fields as little-endian floats."};
}

std::optional<Finding> FindErasedMemory(Bytes bytes) {
  const auto erased = std::ranges::count_if(bytes, [](uint8_t byte) { return byte == 0x00 || byte == 0xFF; });
  if (static_cast<double>(erased) < 0.9 * static_cast<double>(bytes.size())) return std::nullopt;
  return Finding{Severity::kError, "erased",
                 Format("%td of the 228 bytes are 00 or FF: this is erased memory, not a calibration.", erased),
                 kReadAgain};
}

void FindUnusableFields(const itof::CalibrationRecord& record, std::vector<Finding>& findings) {
  itof::ForEachEntry([&](const itof::CalibrationField& field, size_t index) {
    const float value = EntryValue(record, field, index);
    const char* cause = itof::EntryFault(field, index, value);
    if (cause == nullptr) return;
    findings.push_back({Severity::kError, "field",
                        Format("%s at byte %zu: %.9g %s. itof_init refuses the file, and frames come back unchanged.",
                               itof::EntryName(field, index).c_str(), itof::EntryOffset(field, index),
                               static_cast<double>(value), cause),
                        "Have the station that wrote the file write this field again; "
                        "docs/calibration.md says what belongs there."});
  });
}

}  // namespace

std::optional<itof::CalibrationRecord> CheckFile(std::span<const uint8_t> bytes, Findings& findings) {
  constexpr size_t kSize = itof::kCalibrationRecordSize;
  if (bytes.size() < kSize) {
    findings.push_back({Severity::kError, "size",
                        Format("The file holds %zu bytes; a calibration has 228.", bytes.size()), kReadAgain});
    return std::nullopt;
  }
  if (bytes.size() > kSize) {
    findings.push_back({Severity::kWarning, "size",
                        Format("The file holds %zu bytes; what follows the first 228 is ignored.", bytes.size()),
                        "Make sure that the calibration is at the start of the file."});
  }
  const Bytes calibration = bytes.first<kSize>();
  if (auto erased = FindErasedMemory(calibration)) {
    findings.push_back(*erased);
    return std::nullopt;
  }
  const itof::CalibrationRecord record = itof::DecodeCalibrationRecord(calibration.data());
  if (auto swapped = FindSwappedFields(record, SwapBytes(calibration))) {
    findings.push_back(*swapped);
    return std::nullopt;
  }
  FindUnusableFields(record, findings);
  if (CountErrors(findings) > 0) return std::nullopt;
  return record;
}

}  // namespace itoftool
