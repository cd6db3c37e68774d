// Checks `itof calibration import` and `export`, between calibration files and OpenCV's stereo calibrations.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <map>
#include <opencv2/core.hpp>
#include <string>
#include <utility>
#include <vector>

#include "support/calibrationbytes.h"
#include "support/toolrunner.h"

namespace {

std::string Matrix(int rows, int cols, const std::string& data, const std::string& type = "d") {
  return "!!opencv-matrix\n   rows: " + std::to_string(rows) + "\n   cols: " + std::to_string(cols) +
         "\n   dt: " + type + "\n   data: [ " + data + " ]\n";
}

/// `fields` with other values. `groups` has the first field of each group and its values.
CalibrationFields Changed(CalibrationFields fields, const std::map<size_t, std::vector<float>>& groups) {
  for (const auto& [first, values] : groups) std::ranges::copy(values, fields.begin() + static_cast<ptrdiff_t>(first));
  return fields;
}

class ConvertTest : public ToolRunner {
 protected:
  using Entries = std::map<std::string, std::string>;

  void SetUp() override {
    ToolRunner::SetUp();
    WriteYaml("intrinsics.yml", intrinsics_);
    WriteYaml("extrinsics.yml", extrinsics_);
    Write("pair.bin", "what was there before");
  }

  void WriteYaml(const char* name, const Entries& entries) {
    std::string text = "%YAML:1.0\n---\n";
    for (const auto& [key, value] : entries) text += key + ": " + value + (value.back() == '\n' ? "" : "\n");
    Write(name, text);
  }
  /// The intrinsics with some entries replaced. An empty value removes the entry.
  Entries With(std::initializer_list<std::pair<std::string, std::string>> changes) const {
    Entries entries = intrinsics_;
    for (const auto& [key, value] : changes) {
      entries[key] = value;
      if (value.empty()) entries.erase(key);
    }
    return entries;
  }
  void ExpectImport(const std::string& arguments, const CalibrationFields& fields) const {
    SCOPED_TRACE(arguments);
    const Result result = Run("calibration import -o pair.bin " + arguments);
    // The check may find errors in a pair that is only made of easy numbers. The file is written all the same.
    if (result.code != 0) {
      EXPECT_EQ(fnmatch("itof: pair.bin: written, but the check finds *error*\n", result.err.c_str(), 0), 0) << result.err;
    }
    EXPECT_EQ(result.code, result.err.empty() ? 0 : 1);
    EXPECT_TRUE(Read("pair.bin") == CalibrationBytes(fields)) << result.out;
  }

  // These numbers are exact in single precision, so the expected bytes are known.
  const Entries intrinsics_{{"M1", Matrix(3, 3, "512., 0., 320.5, 0., 500., 240.25, 0., 0., 1.")},
                            {"D1", Matrix(1, 5, "0.5, -0.25, 0.125, -0.0625, 0.75")},
                            {"M2", Matrix(3, 3, "1000., 0., 960., 0., 1001., 540., 0., 0., 1.")},
                            {"D2", Matrix(8, 1, "1., 2., 3., 4., 5., 6., 7., 8.", "f")},
                            {"image_size_1", "[ 640, 480 ]"},
                            {"image_Width_2", "1920"},
                            {"image_Height_2", "1080"}};
  // A quarter turn about z: x of the ToF camera is y of the aux camera.
  const Entries extrinsics_{{"R", Matrix(3, 3, "0., -1., 0., 1., 0., 0., 0., 0., 1.")},
                            {"T", Matrix(3, 1, "-25., 3., 4.")}};
  const CalibrationFields fields_{0, 0,   640, 480,  512, 0, 320.5, 0,   500, 240.25, 0,     0,     1,       0,    -1,
                                  0, 1,   0,   0,    0,   0, 1,     -25, 3,   4,      0,     0,     1920,    1080, 1000,
                                  0, 960, 0,   1001, 540, 0, 0,     1,   0,   0.5,    -0.25, 0.125, -0.0625, 0.75, 0,
                                  0, 0,   1,   2,    3,   4, 5,     6,   7,   8,      0,     1};
};

TEST_F(ConvertTest, ImportTakesEveryFieldFromItsKey) {
  ExpectImport("intrinsics.yml extrinsics.yml", fields_);
  const Result result = Run("calibration import intrinsics.yml extrinsics.yml -o new/pair.bin");
  EXPECT_EQ(Read("new/pair.bin"), CalibrationBytes(fields_));
  for (const char* line : {"640 x 480, from image_size_1 in intrinsics.yml", "90.000 degrees", "25.4951 mm"}) {
    EXPECT_NE(result.out.find(line), std::string::npos) << line << " in\n" << result.out;
  }

  // Other keys, one size for both cameras, which an option overrides for one, metres, and a rotation vector.
  WriteYaml("other.yml", {{"camera_matrix_1", intrinsics_.at("M1")},
                          {"dist_coeffs_1", intrinsics_.at("D1")},
                          {"cameraMatrix2", intrinsics_.at("M2")},
                          {"distCoeffs2", intrinsics_.at("D2")},
                          {"R12", Matrix(1, 3, "0., 0., 0.")},
                          {"T", Matrix(1, 3, "-0.25, 0.5, 1.")},
                          {"image_width", "1920"},
                          {"image_height", "1080"}});
  ExpectImport("other.yml --unit m --tof-size 640,480",
               Changed(fields_, {{13, {1, 0, 0, 0, 1}}, {22, {-250, 500, 1000}}}));

  const std::string camera = R"({"width": 640, "height": 360, "fx": 512, "fy": 500.0, "cx": 320, "cy": 180,
                                 "k1": 1, "k2": 2, "k3": 3, "k4": 4, "k5": 5, "k6": 6, "p1": 7, "p2": 8})";
  Write("words.json", "{\"depth\": " + camera + ", \"color\": " + camera +
                          R"(, "rotation": [0, 1, 0, 0, 0, 1, 1, 0, 0], "translation_mm": [10, 20, 30], "note": "x"})");
  ExpectImport("words.json", {0, 0, 640, 360, 512, 0,  320, 0, 500, 180, 0,   0, 1,   0, 1,   0,   0, 0, 1,
                              1, 0, 0,   10,  20,  30, 0,   0, 640, 360, 512, 0, 320, 0, 500, 180, 0, 0, 1,
                              0, 1, 2,   7,   8,   3,  4,   5, 6,   1,   2,   7, 8,   3, 4,   5,   6, 0, 1});
  ExpectFailure(2, "calibration import words.json -o pair.bin --unit m", "--unit*words.json*translation_mm");
}

TEST_F(ConvertTest, ImportsRealPairs) {
  const std::string folder = ITOF_REALDATA;
  if (folder.empty()) GTEST_SKIP() << "ITOF_REALDATA is not set";
  for (const std::string name : {"camera_a", "wide_stereo"}) {
    const std::string path = folder + "/calibrations/" + name;
    ASSERT_EQ(Run("calibration import '" + path + ".json' -o pair.bin").code, 0);
    EXPECT_TRUE(Read("pair.bin") == Read(path + ".bin")) << name;
  }
  const std::string wide = "calibration import '" + folder + "/calibrations/camera_512.json' -o pair.bin";
  ExpectFailure(1, wide, "512 x 424*--tof-window*: 0,68,512,288");
  EXPECT_EQ(Run(wide + " --tof-window 0,68,512,288").code, 0);
}

TEST_F(ConvertTest, ImportOfAnExportGivesTheSameBytes) {
  // Numbers that need all their decimal digits, a skew, a fraction of a pixel, and negative zeros.
  const CalibrationFields fields = Changed(
      fields_,
      {{4, {521.6F, 0.1F}}, {15, {-0.F}}, {24, {-0.F}}, {28, {1080.5F, 1e-30F}}, {33, {3.4e38F}}, {56, {1.7F}}});
  Write("first.bin", CalibrationBytes(fields));
  for (const char* name : {"a.yml", "a.yaml", "a.xml", "a.JSON"}) {
    SCOPED_TRACE(name);
    ASSERT_EQ(Run(std::string("calibration export first.bin -o ") + name).code, 0);
    ExpectImport(name, fields);
    // OpenCV's own reader reads the file too.
    const cv::FileStorage file(folder_ / name, cv::FileStorage::READ);
    cv::Mat translation;
    file["T"] >> translation;
    EXPECT_TRUE(translation.type() == CV_64F && translation.size() == cv::Size(1, 3) && translation.at<double>(1) == 3);
  }
}

TEST_F(ConvertTest, TheWindowBecomesTheFrameAndKeepsPixelCentres) {
  // Half the scale from pixel (40, 20) on: the window's edges at 39.5 and 1319.5 become -0.5 and 639.5.
  WriteYaml("wide.yml", With({{"image_size_1", "[ 1400, 800 ]"},
                              {"M1", Matrix(3, 3, "1000., 2., 600., 0., 1100., 300., 0., 0., 1.")}}));
  ExpectImport("wide.yml extrinsics.yml --tof-window 40,20,1280,720",
               Changed(fields_, {{3, {360, 500, 1, 279.75, 0, 550, 139.75}}}));

  const std::string import = "calibration import -o pair.bin wide.yml extrinsics.yml ";
  ExpectFailure(1, import, "wide.yml: image_size_1: *1400 x 800*--tof-window*: 4,8,1392,783");
  ExpectFailure(2, import + "--tof-window 40,20,1281,720", "16:9*: 40,20,1280,720");
  ExpectFailure(2, import + "--tof-window 0,0,1600,900", "not inside 1400 x 800*: 8,17,1392,783");
  ExpectFailure(2, import + "--tof-window -1,0,16,9", "not inside*: 0,0,16,9");
  WriteYaml("wide.yml", With({{"image_size_1", "[ 15, 800 ]"}}));
  ExpectFailure(2, import + "--tof-window 0,0,16,9", ": none in 15 x 800");
}

TEST_F(ConvertTest, MoreThanEightCoefficientsMayOnlyBeZero) {
  for (const int count : {12, 14}) {
    std::string zeros;
    for (int i = 5; i < count; ++i) zeros += ", 0.";
    WriteYaml("more.yml", With({{"D1", Matrix(1, count, "0.5, -0.25, 0.125, -0.0625, 0.75" + zeros)}}));
    ExpectImport("more.yml extrinsics.yml", fields_);
  }
  // s1 moves x by fx s1 r^2 pixels. The corner farthest from the middle is (0, 479), at x = -320 / 512 and y = 240 / 512.
  // There r^2 = 0.6103515625, and 512 * 0.02 * r^2 = 6.25.
  WriteYaml("more.yml", With({{"M1", Matrix(3, 3, "512., 0., 320., 0., 512., 239., 0., 0., 1.")},
                              {"D1", Matrix(1, 12, "0., 0., 0., 0., 0., 0., 0., 0., 0.02, 0., 0., 0.")}}));
  ExpectFailure(1, "calibration import -o pair.bin more.yml extrinsics.yml", "more.yml: D1: *12*6.25 pixels");
}

TEST_F(ConvertTest, FailuresPrintOneLineAndChangeNoFile) {
  const std::string good = Read("intrinsics.yml");
  const struct {
    const char *key, *pattern;
    std::string value;
  } bad[] = {
      {"M1", "M1: *2 x 3*3 x 3", Matrix(2, 3, "1., 2., 3., 4., 5., 6.")},
      {"M1", "M1: *2000000000 x 2000000000*holds 1", Matrix(2000000000, 2000000000, "1.")},
      {"M1", "M1: *\"u\"", Matrix(3, 3, "1, 2, 3, 4, 5, 6, 7, 8, 9", "u")},
      {"M1", "M1: *\"3d\"", Matrix(3, 1, "1., 2., 3., 4., 5., 6., 7., 8., 9.", "\"3d\"")},
      {"M1", "M1: *not a number", Matrix(3, 3, "1., 2., 3., 4., 5., 6., 7., 8., x")},
      {"M1", "M1: *not finite", Matrix(3, 3, "1., 2., 3., 4., 5., 6., 7., 8., .Nan")},
      {"M1", "M1: *single precision", Matrix(3, 3, "1e300, 0., 1., 0., 1., 1., 0., 0., 1.")},
      {"M1", "M1: tofIntrinsics?4?*focal length", Matrix(3, 3, "1., 0., 1., 0., -1., 1., 0., 0., 1.")},
      {"M1", "M1: *matrix", "text"},
      {"M1", "M1: *lengths", "[ [ 1, 2, 3 ], [ 4, 5 ] ]"},
      {"M1", "yml, extrinsics.yml: no camera matrix for camera 1 (ToF)*K1, cameraMatrix1,*camera_matrix_1,*left", ""},
      {"D2", "D2: *6*expected", Matrix(1, 6, "1., 2., 3., 4., 5., 6.")},
      {"D2", "D2: *-1 x -4", Matrix(-1, -4, "1., 2., 3., 4.")},
      {"R12", "extrinsics.yml: R: differs from R12 in bad.yml", Matrix(1, 3, "0., 0., 0.")},
      {"R", "R: is not a rotation*by 0.5", Matrix(3, 3, "0., -1., 0., 1., 0.5, 0., 0., 0., 1.")},
      {"R", "R: is a reflection", Matrix(3, 3, "0., 1., 0., 1., 0., 0., 0., 0., 1.")},
      {"cameraMatrix2", "cameraMatrix2: differs from M2 in", Matrix(3, 3, "1., 0., 1., 0., 1., 1., 0., 0., 1.")},
      {"image_Height_2", "image_Width_2+image_Height_2: *missing", ""},
      {"image_size_1", "no image size for camera 1 (ToF); add --tof-size W,H", ""},
      {"image_size_1", "image_size_1: is not a valid*size", "[ 0, 480 ]"},
      {"image_size_1", "image_size_1: *3 entries", "[ 640, 480, 3 ]"},
  };
  const std::string import = "calibration import -o pair.bin bad.yml extrinsics.yml ";
  for (const auto& [key, pattern, value] : bad) {
    WriteYaml("bad.yml", With({{key, value}}));
    SCOPED_TRACE(value);
    ExpectFailure(1, import, pattern);
  }
  for (const std::string& text :
       {std::string(), std::string("text\n"), good.substr(0, 90), std::string("[1]"), std::string("{\"M1\": [[[1"),
        std::string("%YAML:1.0\n---\n- 1\n"), std::string("%YAML:1.0\n---\na:\n   : 8\n")}) {
    Write("bad.yml", text);
    ExpectFailure(1, import, "bad.yml: ");
  }
  Write("bad.yml", good + "M2: " + Matrix(3, 3, "1., 0., 1., 0., 1., 1., 0., 0., 1."));
  ExpectFailure(1, import, "bad.yml: M2: appears twice");
  Write("bad.yml", good);
  ExpectFailure(1, import + "--tof-size 640,360", "image_size_1: differs from --tof-size");
  ExpectFailure(1, import + "missing.yml", "missing.yml*No such file");
  ExpectFailure(2, "calibration import bad.yml extrinsics.yml -o new/", "-o*new/*not a file name");
  ExpectFailure(2, "calibration import bad.yml extrinsics.yml -o ./bad.yml", "bad.yml*-o*overwrite");
  ExpectFailure(2, "calibration", "calibration*import export");
  ExpectFailure(2, "calibration export pair.bin -o a.txt", "a.txt*.json");
  ExpectFailure(1, "calibration export pair.bin -o a.yml", "pair.bin*228");
}

}  // namespace
