// Checks `itof calibration import` and `export`, between calibration files and stereo calibrations in all formats.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <map>
#include <nlohmann/json.hpp>
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
      EXPECT_EQ(fnmatch("itof: pair.bin: written, but the check finds *error*\n", result.err.c_str(), 0), 0)
          << result.err;
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

/// A camera of 640 x 480 in Kalibr's form, and the start of its distortion.
std::string KalibrCamera(const std::string& name, const std::string& rest) {
  return name + ":\n  camera_model: pinhole\n  intrinsics: [512, 500, 320.5, 240.25]\n  resolution: [640, 480]\n  " +
         rest;
}
const char kRadtan[] = "distortion_model: radtan\n  distortion_coeffs: [0.5, -0.25, 0.125, -0.0625]\n  ";

/// A camera of the raw JSON. The numbers of `parameters` are cx, cy, fx and fy in pixels, then k1 to k6, 0, 0, p2, p1.
std::string RawCamera(const std::string& purpose, int width, int height, std::vector<double> parameters,
                      const std::string& pose) {
  for (size_t i = 0; i < 4; ++i) parameters[i] = (parameters[i] + (i < 2 ? 0.5 : 0)) / (i % 2 == 0 ? width : height);
  return nlohmann::json{{"Purpose", "CALIBRATION_CameraPurpose" + purpose},
                        {"SensorWidth", width},
                        {"SensorHeight", height},
                        {"Rt", nlohmann::json::parse(pose)},
                        {"Intrinsics", {{"ModelType", "X_BrownConrady"}, {"ModelParameters", parameters}}}}
      .dump();
}

TEST_F(ConvertTest, ImportsEveryFormat) {
  // OpenCV with other names, without its first line, and with plain lists. A leading 0 is not octal.
  Write(
      "left.yml",
      "camera_matrix_left: [[512, 0, 320.5], [0, 500, 240.25], [0, 0, 1]]\ndist_coeffs_left: [.5, -.25, .125, -.0625, "
      ".75]\ncamera_matrix_right: [1000, 0, 960, 0, 1001, 540, 0, 0, 1]\ndistortion_coeffs_right: [1, 2, 3, 4]\n"
      "image_size: [640, 480]\nrotation_matrix: [[0, -1, 0], [1, 0, 0], [0, 0, 1]]\ntranslation_vector: [010, 3, "
      "+4.]\n");
  const CalibrationFields left = Changed(fields_, {{22, {10}}, {27, {640, 480}}, {47, {1, 2, 3, 4, 0, 0, 0, 0}}});
  ExpectImport("left.yml", left);
  EXPECT_NE(Run("calibration import left.yml -o pair.bin").out.find("read as k1 k2 p1 p2; if they come from a fisheye"),
            std::string::npos);
  const auto single = [](double value) { return static_cast<float>(value); };
  for (const auto& [unit, factor] : std::map<std::string, double>{{"um", 0.001}, {"cm", 10}, {"in", 25.4}}) {
    ExpectImport("left.yml --unit " + unit,
                 Changed(left, {{22, {single(10 * factor), single(3 * factor), single(4 * factor)}}}));
  }

  // A file per camera, the same from ROS, and the pose in a file or in options.
  const std::string pose = " --translation=-25,3,4 --rotation ";
  for (const bool isRos : {false, true}) {
    const std::string model = isRos ? "distortion_model: plumb_bob\n" : "rotation: [1, 0, 0, 0, 1, 0, 0, 0, 1]\n";
    Write("1.yaml",
          model +
              "image_width: 640\nimage_height: 480\ncamera_matrix: {rows: 3, cols: 3, data: [512, 0, 320.5, 0, "
              "500, 240.25, 0, 0, 1]}\ndistortion_coefficients: {rows: 1, cols: 5, data: [.5, -.25, .125, "
              "-.0625, .75]}\n");
    Write("2.yaml", (isRos ? "distortion_model: rational_polynomial\n" : "") +
                        std::string("width: 1920\nheight: 1080\nK: [1000, 0, 960, 0, 1001, 540, 0, 0, 1]\n"
                                    "D: [1, 2, 3, 4, 5, 6, 7, 8]\n"));
    Write("pose.yaml", "translation: {x: -0.25, y: 0.5, z: 1}\nrotation: {x: 0.5, y: 0.5, z: 0.5, w: 0.5}\n");
    ExpectImport(std::string("1.yaml 2.yaml pose.yaml") + (isRos ? "" : " --unit m"),
                 Changed(fields_, {{13, {0, 0, 1, 1, 0, 0, 0, 1, 0}}, {22, {-250, 500, 1000}}}));
    ExpectFailure(1, "calibration import -o pair.bin 1.yaml 2.yaml", "no rotation*--translation X,Y,Z and --rotation");
    ExpectFailure(1, "calibration import -o pair.bin 1.yaml pose.yaml", "1.yaml: has one camera");
    ExpectFailure(2, "calibration import -o pair.bin 1.yaml 2.yaml pose.yaml" + pose + "0,0,0",
                  "pose.yaml has the pose");
  }
  const CalibrationFields turned = Changed(fields_, {{13, {1, 0, 0, 0, -1, 0, 0, 0, -1}}});
  ExpectImport("1.yaml 2.yaml" + pose + "0,-1,0,1,0,0,0,0,1", fields_);
  ExpectImport("1.yaml 2.yaml" + pose + "0,0,0", Changed(fields_, {{13, {1, 0, 0, 0, 1}}}));
  ExpectImport("1.yaml 2.yaml" + pose + "1,0,0,0 --quaternion-order xyzw", turned);
  ExpectImport("1.yaml 2.yaml" + pose + "0,1,0,0 --quaternion-order wxyz", turned);
  ExpectFailure(2, "calibration import -o pair.bin 1.yaml 2.yaml pose.yaml --unit mm", "--unit: pose.yaml: *is in m");
  const std::string import = "calibration import -o pair.bin 1.yaml 2.yaml --translation 1,2,3";
  ExpectFailure(2, import, "one needs the other");
  ExpectFailure(2, import + " --rotation 1,0,0,0", "--quaternion-order");
  ExpectFailure(2, import + " --rotation 1,0", "2 numbers");
  ExpectFailure(2, import + " --rotation 1,0,x", "x is not a number");
  ExpectFailure(2, import + " --rotation 1,0,0,1 --quaternion-order xyzw", "--rotation: is not a rotation*1.41");

  // Kalibr, with the pose between the cameras and with those of both against an inertial sensor.
  const CalibrationFields kalibr = Changed(fields_, {{22, {-250, 500, 1000}},
                                                     {27, {640, 480, 512, 0, 320.5, 0, 500, 240.25}},
                                                     {43, {0}},
                                                     {47, {0, 0, 0, 0, 0, 0, 0, 0}}});
  const std::string plain = "distortion_model: none\n  ";
  Write("chain.yaml",
        KalibrCamera("cam0", kRadtan) + "\n" +
            KalibrCamera("cam1", plain + "T_cn_cnm1:\n  - [0, -1, 0, -0.25]\n  - [1, 0, 0, 0.5]\n  - [0, 0, "
                                         "1, 1]\n  - [0, 0, 0, 1]\n"));
  ExpectImport("chain.yaml", kalibr);
  Write(
      "imu.yaml",
      KalibrCamera("cam0",
                   kRadtan + std::string("T_cam_imu: [[0, 0, 1, 1], [1, 0, 0, 2], [0, 1, 0, 3], [0, 0, 0, 1]]\n")) +
          KalibrCamera("cam1", plain + "T_cam_imu: [[-1, 0, 0, -2.25], [0, 0, 1, 1.5], [0, 1, 0, 4], [0, 0, 0, 1]]\n"));
  ExpectImport("imu.yaml --format kalibr", kalibr);
  ExpectFailure(1, "calibration import -o pair.bin imu.yaml --format ros",
                "imu.yaml: --format: is not in the format ros");

  // The raw JSON, whose Rt are those of both cameras in the device's frame.
  Write("raw.json",
        "{\"CalibrationInformation\": {\"Cameras\": [" +
            RawCamera("PhotoVideo", 1920, 1440, {960, 720, 1000, 1001, 1, 2, 5, 6, 7, 8, 0, 0, 4, 3},
                      R"({"Rotation": [-1, 0, 0, 0, 0, 1, 0, 1, 0], "Translation": [-2.25, 1.5, 4]})") +
            "," +
            RawCamera("Depth", 640, 480, {320.5, 240.25, 512, 500, 0.5, -0.25, 0.75, 0, 0, 0, 0, 0, -0.0625, 0.125},
                      R"({"Rotation": [0, 0, 1, 1, 0, 0, 0, 1, 0], "Translation": [1, 2, 3]})") +
            "]}}" + std::string(1, '\0'));
  ExpectImport("raw.json --aux-window 0,180,1920,1080", Changed(fields_, {{22, {-250, 500, 1000}}}));
  ExpectFailure(2, "calibration import -o pair.bin raw.json --aux-window 0,0,1920,1440",
                "--aux-window*16:9*0,180,1920,1080");
  const auto refuse = [&](const std::string& part, const std::string& other, const char* pattern) {
    std::string text = Read("raw.json");
    text.replace(text.find(part), part.size(), other);
    Write("other.json", text);
    ExpectFailure(1, "calibration import -o pair.bin other.json", pattern);
  };
  refuse("X_BrownConrady", "X_Polynomial3K", "Intrinsics.ModelType: \"X_Polynomial3K\" is not supported");
  refuse("8.0,0.0,0.0,4.0", "8.0,0.25,0.0,4.0", "Intrinsics.ModelParameters: has a centre of distortion");
}

TEST_F(ConvertTest, KnownButUnsuitableFilesAreRefusedByName) {
  const std::string deep(101, '['),
      raw = R"({"CalibrationInformation": {"Cameras": [{"Purpose": "Depth", "Intrinsics": )";
  const struct {
    std::string text;
    const char* pattern;
  } bad[] = {
      {"{\"value0\": {\"T_imu_cam\": []}}", "recognised as a Basalt calibration, which is not supported*opencv"},
      {"{\"cameraData\": []}", "recognised as*OAK"},
      {KalibrCamera("cam0", "distortion_model: equidistant"), "cam0.distortion_model: *\"equidistant\"*rational"},
      {"cam0: {intrinsics: [1], camera_model: omni}", "cam0.camera_model: *\"omni\""},
      {"cam0: {intrinsics: [1], camera_model: else}", "cam0.camera_model: *\"else\" is not supported"},
      {KalibrCamera("cam0", "distortion_model: else"), "cam0.distortion_model: *\"else\" is not supported"},
      {KalibrCamera("cam0", kRadtan), "cam1.intrinsics: is missing"},
      {"model_type: KANNALA_BRANDT\nK: [1]", "model_type: *KANNALA_BRANDT"},
      {"a: [{lens_model: Double-Sphere}]", "Double-Sphere"},
      {"fisheye: true\nM1: 1", "fisheye: the lens model is \"fisheye\""},
      {"distortion_model: else\nK: [1, 0, 0, 0, 1, 0, 0, 0, 1]", "other: has one camera"},
      {raw + "{\"ModelType\": \"Rational6KT\"}}]}}", "no camera has the purpose PhotoVideo"},
      {"a: 1\nb: {c: 1, c: 2}", "c: appears twice"},
      {"{\"a\": {\"c\": 1, \"c\": 2}}", "c: appears twice"},
      {"<?xml version=\"1.0\"?><opencv_storage><a>1</a><a>2</a></opencv_storage>", "a: appears twice"},
      {"a: &x 1\nb: *x", "line 2: *alias"},
      {"a: " + deep, "deeper than 100"},
      {"{\"a\": " + deep, "deeper than 100"},
      {"<a>" + std::string(101, '<'), "deeper than 100"},
      {"a:\n  - - - b\n - c", "line 3"},
      {"{[1]: 2}", "a key that is not text"},
      {"a: 1\n}", "line 2: "},
      {"{a: 1}, b", "line 1: a stray bracket or comma"},
      {"T: [1, 2, .inf]", "T: contains a number that is not finite"},
      {"{\"T\": [1, 2, 1e999]}", "T: contains a number that is not finite"},
  };
  for (const auto& [text, pattern] : bad) {
    SCOPED_TRACE(text);
    Write("other", text);
    ExpectFailure(1, "calibration import -o pair.bin other", pattern);
  }
}

TEST_F(ConvertTest, ImportsRealFilesOfOtherPrograms) {
  const std::string folder = std::string(ITOF_REALDATA) + "/stereo";
  if (folder == "/stereo") GTEST_SKIP() << "ITOF_REALDATA is not set";
  const std::map<std::string, size_t> first{{"tofCalibWidth", 2},   {"tofCalibHeight", 3}, {"tofIntrinsics", 4},
                                            {"rotation", 13},       {"translation", 22},   {"auxCalibWidth", 27},
                                            {"auxCalibHeight", 28}, {"auxIntrinsics", 29}, {"tofDistortion", 39},
                                            {"auxDistortion", 47}};
  std::ifstream file(folder + "/expected.json");
  const auto folders = nlohmann::json::parse(file);
  for (const auto& [name, expected] : folders.items()) {
    SCOPED_TRACE(name);
    std::filesystem::create_directory_symlink(folder + "/" + name, folder_ / name);
    const std::string command = "calibration import -o pair.bin " + std::string(expected["options"]);
    if (expected["fields"].is_null()) {
      ExpectFailure(1, command, "recognised as*not supported");
      continue;
    }
    CalibrationFields fields{};
    fields[56] = 1;
    for (const auto& [field, values] : expected["fields"].items()) {
      size_t i = first.at(field);
      for (const auto& value : values) fields.at(i++) = value.get<float>();
    }
    EXPECT_EQ(Run(command).code, 0);
    EXPECT_TRUE(Read("pair.bin") == CalibrationBytes(fields));
  }
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
  ExpectFailure(2, "calibration import bad.yml extrinsics.yml -o new/", "--output: *new/*not a file name");
  ExpectFailure(2, "calibration import bad.yml extrinsics.yml -o ./bad.yml", "bad.yml*-o*overwrite");
  ExpectFailure(2, "calibration", "calibration*import export");
  ExpectFailure(2, "calibration export pair.bin -o a.txt", "a.txt*.json");
  ExpectFailure(1, "calibration export pair.bin -o a.yml", "pair.bin*228");
}

}  // namespace
