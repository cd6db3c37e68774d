// Checks how the calibration file's bytes become parameters, and which values are refused.
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "calibration/alignmentparams.h"
#include "calibration/calibrationcheck.h"
#include "support/calibrationbytes.h"

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

itof::CalibrationRecord Decode(const CalibrationFields& fields) {
  return itof::DecodeCalibrationRecord(CalibrationBytes(fields).data());
}

TEST(Calibration, EveryFieldComesFromItsPlaceInTheFile) {
  CalibrationFields fields;
  for (size_t i = 0; i < fields.size(); ++i) fields[i] = 1000.75F + static_cast<float>(i);
  const itof::CalibrationRecord record = Decode(fields);
  EXPECT_EQ(record.aux_fl_ratio, 1056.75F);
  itof::AlignmentParams params{};
  itof::FillAlignmentParams(record, params);
  const int32_t sizes[] = {params.tofCalibWidth, params.tofCalibHeight, params.auxCalibWidth, params.auxCalibHeight};
  EXPECT_EQ(std::vector<int32_t>(sizes, sizes + 4), (std::vector<int32_t>{1002, 1003, 1027, 1028}));
  EXPECT_EQ(params.tofWidth, 0);  // working sizes do not come from the file
  const auto expectRun = [](const double* values, int count, double first) {
    for (int i = 0; i < count; ++i) EXPECT_EQ(values[i], first + i) << "entry " << i << " from " << first;
  };
  expectRun(params.tofIntrinsics, 9, 1004.75);
  expectRun(params.rotation, 9, 1013.75);
  expectRun(params.auxIntrinsics, 9, 1029.75);
  expectRun(params.tofDistortion, 8, 1039.75);
  expectRun(params.auxDistortion, 8, 1047.75);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(params.translation[i], (1022.75 + i) / 10.0);
}

TEST(Calibration, ConversionCutsFractionsAndDividesTheTranslation) {
  itof::AlignmentParams params{};
  itof::FillAlignmentParams(Decode(IdentityCalibration({{2, -3e9F}, {3, -0.5F}, {23, -3}, {27, 3e9F}, {28, kNan}})),
                            params);
  const int32_t sizes[] = {params.tofCalibWidth, params.tofCalibHeight, params.auxCalibWidth, params.auxCalibHeight};
  EXPECT_EQ(std::vector<int32_t>(sizes, sizes + 4), (std::vector<int32_t>{-2147483647 - 1, 0, 2147483647, 0}));
  EXPECT_EQ(params.translation[1], -0.3);  // -3.0 * 0.1 differs in the last bit
}

TEST(Calibration, FaultsNameFieldAndPlace) {
  struct Case {
    size_t field;
    float value;
    const char* name;   // of the refused field; null if the value is accepted
    const char* cause;  // part of the text
  };
  const Case cases[] = {
      {2, 639.9F, "tofCalibWidth", "640"},
      {2, 640.9F, nullptr, ""},
      {3, 0.99F, "tofCalibHeight", "below 1"},
      {3, 1.0F, nullptr, ""},
      {3, 2147483648.0F, "tofCalibHeight", "32-bit"},
      {28, kInfinity, "auxCalibHeight", "finite"},
      {4, 0.0F, "tofIntrinsics[0]", "focal length"},
      {29, -0.0F, "auxIntrinsics[0]", "focal length"},
      {33, kInfinity, "auxIntrinsics[4]", "finite"},
      {5, -7.0F, nullptr, ""},
  };
  for (const Case& c : cases) {
    const auto fault = itof::FirstCalibrationFault(Decode(IdentityCalibration({{c.field, c.value}})));
    ASSERT_EQ(fault.has_value(), c.name != nullptr) << "field " << c.field << " = " << c.value;
    if (!fault) continue;
    EXPECT_EQ(itof::EntryName(*fault->field, fault->index), c.name);
    EXPECT_EQ(itof::EntryOffset(*fault->field, fault->index), 4 * c.field);
    EXPECT_NE(std::string(fault->cause).find(c.cause), std::string::npos) << fault->cause;
  }
}

TEST(Calibration, EveryFieldThatTheGeometryUsesMustBeFinite) {
  for (size_t field = 0; field < 57; ++field) {
    const bool unused = field < 2 || field == 25 || field == 26 || field == 38 || field > 54;
    for (const float bad : {kNan, kInfinity, -kInfinity}) {
      const auto fault = itof::FirstCalibrationFault(Decode(IdentityCalibration({{field, bad}})));
      ASSERT_EQ(fault.has_value(), !unused) << "field " << field;
      if (fault) {
        EXPECT_EQ(itof::EntryOffset(*fault->field, fault->index), 4 * field);
      }
    }
  }
}

}  // namespace
