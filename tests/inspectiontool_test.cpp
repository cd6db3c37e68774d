// Checks the commands that inspect calibrations and frames, on cameras whose numbers are known by hand.
#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>
#include <string>
#include <vector>

#include "support/calibrationbytes.h"
#include "support/toolrunner.h"

namespace {

class InspectionToolTest : public ToolRunner {
 protected:
  void SetUp() override {
    ToolRunner::SetUp();
    Write("good.bin", CalibrationBytes(IdentityCalibration()));
    // 25 mm to the left: 12.8 pixels at 1 m.
    Write("apart.bin", CalibrationBytes(IdentityCalibration({{22, -25}})));
    Write("short.bin", Read("good.bin").substr(1));
    Write("bad.bin", CalibrationBytes(IdentityCalibration({{14, 0.5F}, {25, 1}})));
  }

  /// Expects the run to succeed and to print each of `parts`.
  void ExpectOutput(const std::string& arguments, const std::vector<std::string>& parts) const {
    const Result result = Run(arguments);
    EXPECT_TRUE(result.code == 0 && result.err.empty()) << arguments << ": " << result.err;
    for (const std::string& part : parts) {
      EXPECT_NE(result.out.find(part), std::string::npos) << '"' << part << "\" in\n" << result.out;
    }
  }

  /// The JSON that a run prints; it must print nothing else.
  nlohmann::json JsonOf(const std::string& arguments, int code = 0) const {
    const Result result = Run(arguments);
    EXPECT_EQ(result.code, code) << result.err;
    return nlohmann::json::parse(result.out);
  }
};

TEST_F(InspectionToolTest, ShowDescribesEqualCamerasSideBySide) {
  const Result result = Run("calibration show --json apart.bin");
  ASSERT_EQ(result.code, 0) << result.err;
  const auto json = nlohmann::json::parse(result.out);
  const auto& field = json["fields"][22];
  EXPECT_TRUE(field["byte"] == 88 && field["name"] == "translation[0]" && field["value"] == -25) << field;
  EXPECT_EQ(json["fields"].size(), 57U);
  EXPECT_EQ(json["aux_camera"]["matrix_640x360"], nlohmann::json::parse("[[512,0,320],[0,512,180],[0,0,1]]"));
  const double view = std::atan2(320.5, 512) + std::atan2(319.5, 512);  // from edge to edge
  EXPECT_NEAR(json["tof_camera"]["field_of_view_degrees"]["horizontal"], view * 180 / std::acos(-1), 1e-3);
  EXPECT_EQ(json["extrinsics"]["baseline_mm"], 25);
  EXPECT_EQ(json["extrinsics"]["aux_camera_in_tof_frame_mm"][0], 25);
  const auto& centre = json["exact_positions"][4];
  EXPECT_EQ(centre["tof_pixel"], nlohmann::json::parse("[320, 180]"));
  EXPECT_NEAR(centre["aux"][1]["position"][0], 320 - 12.8, 1e-9);
  // Rounded to 13 pixels, and measured from the middle of the cell.
  const auto& error = json["alignment_error_pixels"][1];
  EXPECT_NEAR(error["median"], std::hypot(0.3, 0.5), 1e-9);
  EXPECT_TRUE(error["pixels_compared"] == 627 * 360 && error["pixels_lost"] == 0) << error;
  ExpectOutput("calibration show apart.bin",
               {"\n  88  translation[0]      -25               depth codes (mm)\n", "25.000 mm\n",
                "(320, 180)    (277.33, 180.00)    (307.20, 180.00)    (315.73, 180.00)\n", "\n  1.0 m      0.58 "});
}

TEST_F(InspectionToolTest, ShowHasNoErrorWhereNoPixelCanBeCompared) {
  Write("far.bin", CalibrationBytes(IdentityCalibration({{22, -25000}})));
  const nlohmann::json json = JsonOf("calibration show --json far.bin");
  for (const auto& error : json["alignment_error_pixels"]) {
    EXPECT_TRUE(error["pixels_compared"] == 0 && error["median"].is_null() && error["maximum"].is_null()) << error;
  }
  ExpectOutput("calibration show far.bin", {"\n  1.0 m     no pixel can be compared  "});
}

TEST_F(InspectionToolTest, CheckPrintsFindingsAndFailsOnErrors) {
  ExpectOutput("calibration check apart.bin", {"apart.bin: 0 errors, 0 warnings\n"});
  // Against a reference, findings that it has too are left out.
  ExpectOutput(
      "calibration check --reference good.bin apart.bin",
      {"warning [reference]", "12.8 pixels at 1 m (at most 12.8)", "No other reading is", "0 errors, 1 warning\n"});
  ExpectOutput("calibration check --reference good.bin good.bin", {"good.bin: 0 errors, 0 warnings, 1 note\n"});
  ExpectOutput("calibration check good.bin",
               {"warning [no-extrinsics]\n  The rotation is", "\n  What to do: ", "good.bin: 0 errors, 1 warning\n"});
  const Result result = Run("calibration check bad.bin");
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "itof: bad.bin: 1 error, 1 warning\n");
  EXPECT_NE(result.out.find("error [rotation]\n"), std::string::npos) << result.out;
}

TEST_F(InspectionToolTest, DiffNamesFieldsAndMovesPixels) {
  ExpectOutput("calibration diff good.bin good.bin", {"The fields are the same.\n"});
  ExpectOutput("calibration diff good.bin apart.bin",
               {"  translation[0]      0                 -25 ", "\n  1.0 m     12.80     12.80 ",
                "4320             0\n", "(320, 180)  (-12.8, +0.0)"});
  const auto json = JsonOf("calibration diff good.bin apart.bin --json");
  const auto& field = json["fields"][0];
  EXPECT_TRUE(json["fields"].size() == 1 && field["name"] == "translation[0]" && field["b"] == -25) << json["fields"];
  const auto& moved = json["moved_pixels"][1];
  EXPECT_NEAR(moved["median"], 12.8, 1e-9);
  EXPECT_TRUE(moved["depth_mm"] == 1000 && moved["pixels_compared"] == 628 * 360 &&
              moved["pixels_only_with_a"] == 4320);
  EXPECT_NEAR(json["moves_at_1_m"][4]["move"][0], -12.8, 1e-9);

  Write("far.bin", CalibrationBytes(IdentityCalibration({{22, -9000}})));  // 4608 pixels at 1 m
  ExpectOutput("calibration diff good.bin far.bin",
               {"  1.0 m  no pixel lands with both                     230400             0\n"});
  const auto none = JsonOf("calibration diff good.bin far.bin --json")["moved_pixels"][2];
  EXPECT_TRUE(none["pixels_compared"] == 0 && none["median"].is_null() && none["maximum_at_tof_pixel"].is_null())
      << none;
}

TEST_F(InspectionToolTest, ExplainFollowsOnePixel) {
  ExpectOutput("explain --calibration apart.bin --at 320,180 --code 1000",
               {"undistorted           (320.000, 180.000)", "parallax              (-12.800, 0.000)",
                "ideal position        (307.200, 180.000)", "lens table            (307.000, 180.000)",
                "lands in cell         (307, 180)", "exact projection      (307.200, 180.000)", "0.583"});
  ExpectOutput("explain --calibration apart.bin --at 5,180 --code 1000",
               {"ideal cell            (-7, 180)", "dropped"});
  // In a picture twice as fine, pixel p is at 2 p + 1/2.
  ExpectOutput("explain --calibration good.bin --at 100,50 --code 1000 --ratio 2",
               {"at the far plane      (200.500, 100.500)", "lands in cell         (100, 50)"});
  // The lens puts this pixel's ideal cell outside the frame, so the pixel goes to the corner.
  Write("pincushion.bin", CalibrationBytes(IdentityCalibration({{22, -1}, {47, 0.5F}})));
  ExpectOutput("explain --calibration pincushion.bin --at 8,8 --code 8000",
               {"no entry", "lands in cell         (0, 0)"});
  ExpectOutput("explain --calibration apart.bin --at 5,180 --code 0", {"no depth", "ideal cell            (0, 0)"});

  const auto landed = JsonOf("explain --calibration apart.bin --at 320,180 --code 1000 --json");
  EXPECT_TRUE(landed["fate"] == "landed" && landed["target"] == nlohmann::json({307, 180})) << landed;
  EXPECT_NEAR(landed["ideal_position"][0], 307.2, 1e-9);
  EXPECT_NEAR(landed["off_by_pixels"], std::hypot(0.3, 0.5), 1e-9);
  const auto dropped = JsonOf("explain --calibration apart.bin --at 5,180 --code 1000 --json");
  EXPECT_TRUE(dropped["fate"] == "outside_ideal_grid" && dropped["target"].is_null()) << dropped;
  const auto corner = JsonOf("explain --calibration pincushion.bin --at 8,8 --code 8000 --json");
  EXPECT_TRUE(corner["fate"] == "sent_to_corner" && corner["lens_table"].is_null()) << corner;
  const auto start = JsonOf("explain --calibration apart.bin --at 5,180 --code 0 --json");
  EXPECT_TRUE(start["fate"] == "without_depth" && start["undistorted"].is_null() &&
              start["ideal_cell"] == nlohmann::json({0, 0}))
      << start;
}

TEST_F(InspectionToolTest, ReportSumsFatesOverAFrame) {
  std::string frame;
  for (int i = 0; i < 640 * 360; ++i) frame += i == 700 ? std::string(2, '\0') : std::string("\xE8\x03");  // 1000
  Write("frame.raw", frame);
  // Of the pixels with depth, those in columns 0 to 11 leave the frame on the left, and those in 12 and 13 land in the same
  // cells. The pixel without depth takes the cell of the one before it.
  ExpectOutput("align --calibration apart.bin --report --output out frame.raw",
               {"ToF pixels                  230400, of which\n      225718 ",
                "  361    0.2 %  overwritten by a later pixel, 1 of them by a pixel without depth\n",
                "4320    1.9 %  outside the ideal grid\n"});
  const auto json = nlohmann::json::parse(Read("out/alignment.json"));
  EXPECT_EQ(json["frames"][0]["pixels_by_fate"]["outside_ideal_grid"], 12 * 360);
  EXPECT_EQ(json["frames"][0]["outputs"][3], "frame.fates.png");
  EXPECT_EQ(Run("align --calibration apart.bin --report --json --output out frame.raw").out,
            Read("out/alignment.json"));
  ExpectFailure(2, "align --calibration apart.bin --json --log frame.raw", "--log excludes --json");
  const cv::Mat sheet = cv::imread(folder_ / "out/frame.fates.png");
  ASSERT_FALSE(sheet.empty());
  const auto colourAt = [&](int x, int y) { return sheet.at<cv::Vec3b>(34 + y, 14 + x); };
  EXPECT_EQ(colourAt(5, 100), cv::Vec3b(255, 190, 80));  // outside the ideal grid: blue
  EXPECT_NE(colourAt(5, 100), colourAt(50, 100));
  EXPECT_NE(colourAt(59, 1), colourAt(50, 100));  // overwritten
}

TEST_F(InspectionToolTest, FailuresPrintOneLine) {
  ExpectFailure(1, "calibration show short.bin", "short.bin*227*228");
  ExpectFailure(1, "calibration show missing.bin", "missing.bin*No such file");
  ExpectFailure(1, "calibration check missing.bin", "missing.bin*No such file");
  ExpectFailure(1, "calibration check --reference bad.bin good.bin", "bad.bin: is not a good unit: 1 error");
  ExpectFailure(1, "calibration check --reference short.bin good.bin", "short.bin*227 bytes");
  ExpectFailure(1, "calibration diff good.bin short.bin", "short.bin*227*228");
  ExpectFailure(2, "explain --calibration good.bin --at 640,1 --code 5", "--at: (640, 1) is not in the frame");
  ExpectFailure(2, "explain --calibration good.bin --at 010,020 --code 5", "--at*010*decimal");
  ExpectFailure(2, "explain --calibration good.bin --at 1,1 --code 0100", "--code*0100*decimal");
  ExpectFailure(2, "explain --calibration good.bin --at 1,1 --code 5 --ratio 0", "--ratio: 0 ");
  ExpectFailure(1, "explain --calibration short.bin --at 1,1 --code 5", "short.bin*227*228");
}

}  // namespace
