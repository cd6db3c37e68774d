// Reads and checks calibration files. itof_init returns only a result code for a bad file; this runs the same check and
// names the field.
#include "files/calibrationfile.h"

#include <openssl/evp.h>

#include <algorithm>
#include <span>
#include <system_error>
#include <vector>

#include "calibration/calibrationcheck.h"
#include "files/files.h"
#include "support/errors.h"
#include "support/text.h"

namespace itoftool {
namespace {

std::string Sha256(std::span<const uint8_t> bytes) {
  uint8_t digest[EVP_MAX_MD_SIZE];
  unsigned int length = 0;
  if (EVP_Digest(bytes.data(), bytes.size(), digest, &length, EVP_sha256(), nullptr) != 1) {
    throw DataError("OpenSSL does not provide SHA-256");
  }
  std::string text;
  for (const uint8_t byte : std::span(digest, length)) {
    constexpr char kDigits[] = "0123456789abcdef";
    text += {kDigits[byte >> 4], kDigits[byte & 15]};
  }
  return text;
}

}  // namespace

CalibrationFile ReadCalibrationFile(const std::filesystem::path& path) {
  const std::vector<uint8_t> bytes = ReadFile(path);
  if (bytes.size() < itof::kCalibrationRecordSize) {
    throw DataError(path.string() + ": holds " + std::to_string(bytes.size()) + " bytes; a calibration file has " +
                    std::to_string(itof::kCalibrationRecordSize));
  }
  const itof::CalibrationRecord record = itof::DecodeCalibrationRecord(bytes.data());
  if (const auto fault = itof::FirstCalibrationFault(record)) {
    Fail(path, Format("%s at byte %zu: %.9g %s", itof::EntryName(*fault->field, fault->index).c_str(),
                      itof::EntryOffset(*fault->field, fault->index), static_cast<double>(fault->value), fault->cause));
  }
  return {path, record, Sha256(std::span(bytes).first(itof::kCalibrationRecordSize))};
}

std::vector<std::filesystem::path> CalibrationFilesIn(const std::filesystem::path& folder) {
  namespace fs = std::filesystem;
  std::vector<fs::path> files;
  std::error_code error, ignored;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    const fs::path& path = entry->path();
    if (path.filename().string().starts_with('.') || !entry->is_regular_file(ignored)) continue;
    const bool isNamed = LowerCaseExtension(path) == ".bin";
    if (isNamed || entry->file_size(ignored) == itof::kCalibrationRecordSize) files.push_back(path);
  }
  if (error) Fail(folder, error.message());
  if (files.empty()) Fail(folder, "is a folder without calibrations: no file of 228 bytes, none named *.bin");
  std::ranges::sort(files);
  return files;
}

}  // namespace itoftool
