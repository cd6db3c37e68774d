// Checks the bytes of a calibration file: its size, erased memory, byte order, and values that itof_init refuses.
#include <algorithm>
#include <cmath>
#include <optional>

#include "calibration/calibrationcheck.h"
#include "calibration/calibrationfields.h"
#include "check/checkedpair.h"
#include "framesize.h"
#include "support/text.h"

namespace itoftool {
namespace {

using Bytes = std::span<const uint8_t, itof::kCalibrationRecordSize>;

constexpr char kReadAgain[] =
    "Read the partition or the module's memory again, and compare it with the calibration station's file.";

/// The record with the bytes of every field swapped.
itof::CalibrationRecord SwapBytes(Bytes bytes) {
  uint8_t swapped[itof::kCalibrationRecordSize];
  for (size_t i = 0; i < bytes.size(); ++i) swapped[i] = bytes[i / 4 * 4 + 3 - i % 4];
  return itof::DecodeCalibrationRecord(swapped);
}

/// True for numbers that no calibration contains.
bool IsAbsurd(float value) {
  const float size = std::fabs(value);
  return !std::isfinite(value) || size > 1e12F || (size > 0 && size < 1e-20F);
}

/// True for numbers of a size that calibrations contain.
bool IsOrdinary(float value) {
  const float size = std::fabs(value);
  return size >= 1e-9F && size <= 1e6F;
}

/// Returns false if at least 90 % of the bytes are 00 or FF.
bool CheckErased(Bytes bytes, Findings& findings) {
  const auto erased = std::ranges::count_if(bytes, [](uint8_t byte) { return byte == 0x00 || byte == 0xFF; });
  if (static_cast<double>(erased) < 0.9 * static_cast<double>(bytes.size())) return true;
  findings.push_back({Severity::kError, "erased", "",
                      Format("%td of the 228 bytes are 00 or FF: this is erased memory, not a calibration.", erased),
                      kReadAgain});
  return false;
}

/// Returns false if fields make sense only with their bytes swapped.
bool CheckByteOrder(const itof::CalibrationRecord& record, const itof::CalibrationRecord& swapped, Findings& findings) {
  std::string text;  // describes the first such field
  size_t count = 0;
  itof::ForEachEntry([&](const itof::CalibrationField& field, size_t index) {
    if (!itof::IsGeometry(field.kind)) return;
    const float asWritten = EntryValue(record, field, index), asSwapped = EntryValue(swapped, field, index);
    if (!IsAbsurd(asWritten) || !IsOrdinary(asSwapped)) return;
    if (count++ == 0) {
      text = Format("%s at byte %zu is %.4g as written, and %.6g with its bytes swapped",
                    itof::EntryName(field, index).c_str(), itof::EntryOffset(field, index),
                    static_cast<double>(asWritten), static_cast<double>(asSwapped));
    }
  });
  if (count == 0) return true;
  if (itof::FirstCalibrationFault(record) && !itof::FirstCalibrationFault(swapped)) {
    text += "; the whole file is a valid calibration with its bytes swapped, and unusable as it is.";
  } else {
    text += count > 1 ? Format("; the same is true of %zu more field%s.", count - 1, count == 2 ? "" : "s") : ".";
  }
  findings.push_back({Severity::kError, "byte-order", "", text, "Write all fields as little-endian floats."});
  return false;
}

void CheckFields(const itof::CalibrationRecord& record, Findings& findings) {
  itof::ForEachEntry([&](const itof::CalibrationField& field, size_t index) {
    const float value = EntryValue(record, field, index);
    const char* cause = itof::EntryFault(field, index, value);
    if (cause == nullptr) return;
    const bool isExchanged =
        field.kind == itof::FieldKind::kTofImageWidth && std::trunc(record.auxCalibWidth) == itof::kFrameWidth;
    findings.push_back({Severity::kError, "field", "",
                        Format("%s at byte %zu: %.9g %s. itof_init refuses the file, and frames come back unchanged.",
                               itof::EntryName(field, index).c_str(), itof::EntryOffset(field, index),
                               static_cast<double>(value), cause) +
                            (isExchanged ? " The aux image has that width: are the cameras exchanged?" : ""),
                        "Have the calibration station write this field again. docs/calibration.md describes it."});
  });
}

}  // namespace

std::optional<itof::CalibrationRecord> CheckFile(std::span<const uint8_t> bytes, Findings& findings) {
  constexpr size_t kSize = itof::kCalibrationRecordSize;
  if (bytes.size() < kSize) {
    findings.push_back({Severity::kError, "size", "",
                        Format("The file holds %zu bytes; a calibration has 228.", bytes.size()), kReadAgain});
    return std::nullopt;
  }
  if (bytes.size() > kSize) {
    findings.push_back({Severity::kWarning, "size", "",
                        Format("The file holds %zu bytes; everything after the first 228 is ignored.", bytes.size()),
                        "Check that the calibration is at the start of the file."});
  }
  const Bytes calibration = bytes.first<kSize>();
  if (!CheckErased(calibration, findings)) return std::nullopt;
  const itof::CalibrationRecord record = itof::DecodeCalibrationRecord(calibration.data());
  if (!CheckByteOrder(record, SwapBytes(calibration), findings)) return std::nullopt;
  CheckFields(record, findings);
  if (CountErrors(findings) > 0) return std::nullopt;
  return record;
}

}  // namespace itoftool
