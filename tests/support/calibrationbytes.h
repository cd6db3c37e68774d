// Builds calibration files for tests, field by field, without the library's record.
#ifndef ITOF_TESTS_SUPPORT_CALIBRATIONBYTES_H_
#define ITOF_TESTS_SUPPORT_CALIBRATIONBYTES_H_

#include <array>
#include <bit>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>

using CalibrationFields = std::array<float, 57>;

/// Two equal cameras without distortion in one place; all numbers are exact, and aligning changes no position. `changes`
/// gives fields by number other values.
inline CalibrationFields IdentityCalibration(std::initializer_list<std::pair<size_t, float>> changes = {}) {
  CalibrationFields fields{};
  for (const size_t matrix : {4U, 29U}) {
    fields[matrix - 2] = 640;
    fields[matrix - 1] = 360;
    fields[matrix + 0] = 512;
    fields[matrix + 2] = 320;
    fields[matrix + 4] = 512;
    fields[matrix + 5] = 180;
    fields[matrix + 8] = 1;
  }
  fields[13] = fields[17] = fields[21] = 1;
  for (const auto& [field, value] : changes) fields[field] = value;
  return fields;
}

/// The bytes of a file with `fields`.
inline std::string CalibrationBytes(const CalibrationFields& fields) {
  std::string bytes;
  for (const float field : fields) {
    const auto bits = std::bit_cast<uint32_t>(field);
    for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<char>(bits >> shift));
  }
  return bytes;
}

#endif  // ITOF_TESTS_SUPPORT_CALIBRATIONBYTES_H_
