// Checks `itof align` and `itof simulate`: what they write and what they refuse.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>
#include <string>
#include <utility>
#include <vector>

#include "support/calibrationbytes.h"
#include "support/toolrunner.h"

namespace {
namespace fs = std::filesystem;
using Words = std::vector<uint16_t>;

constexpr int kWidth = 640, kHeight = 360;
constexpr size_t kPixels = size_t{kWidth} * kHeight;

uint16_t AlignedWord(int code, int confidence) { return static_cast<uint16_t>(code / 16 % 256 + confidence * 256); }
std::string Bytes(const Words& words) { return {reinterpret_cast<const char*>(words.data()), words.size() * 2}; }
cv::Mat Picture(Words& words) { return {kHeight, kWidth, CV_16U, words.data()}; }

class ToolTest : public ToolRunner {
 protected:
  void SetUp() override {
    fs::create_directories(folder_ / "out");
    Write("good.bin", CalibrationBytes(IdentityCalibration()));
    for (size_t i = 0; i < kPixels; ++i) {
      words_.push_back(static_cast<uint16_t>(i * 40503));
      if (words_[i] % 8192 == 0) ++words_[i];  // a pixel without depth would not stay in place
    }
    Write("frame.raw", Bytes(words_));
  }

  using ToolRunner::Write;
  void Write(const char* name, const cv::Mat& picture) { ASSERT_TRUE(cv::imwrite(folder_ / name, picture)); }

  Words words_;
};

TEST_F(ToolTest, EqualCamerasLeaveEveryWordInPlace) {
  const Result result = Run("$align frame.raw", "ORVO_ENABLE_LOGS=0xffffffff");  // has an effect with --log only
  ASSERT_TRUE(result.code == 0 && result.err.empty()) << result.err;
  EXPECT_EQ(Files().size(), 3 + 4);
  Words expected, expectedDepth;
  for (const uint16_t word : words_) {
    expected.push_back(AlignedWord(word % 8192, word / 8192));
    expectedDepth.push_back(static_cast<uint16_t>(expected.back() % 256 * 16));
  }
  EXPECT_TRUE(Read("out/frame.aligned.raw") == Bytes(expected));
  const cv::Mat depth = cv::imread(folder_ / "out/frame.aligned.png", cv::IMREAD_UNCHANGED);
  EXPECT_EQ(cv::norm(depth, Picture(expectedDepth), cv::NORM_INF), 0);
  EXPECT_FALSE(cv::imread(folder_ / "out/frame.preview.png").empty());

  const auto json = nlohmann::json::parse(Read("out/alignment.json"));
  // cx and cy are 320 and 180 in the file. Cells begin at whole positions. The checksum is from sha256sum.
  EXPECT_EQ(json["aux_camera"]["matrix"], nlohmann::json::parse("[[512,0,319.5],[0,512,179.5],[0,0,1]]"));
  EXPECT_EQ(json["calibration"]["sha256"], "ce063636bedbe63edb68623f72615a798af76b05300d2782594109d0e1618221");
  const auto zeros = static_cast<double>(std::ranges::count(expected, 0));
  EXPECT_EQ(json["frames"][0]["share_of_aux_pixels_reached"], 1 - zeros / double{kPixels});

  // Time, process, thread, priority and tag, as logcat prints them; then the framework's line.
  const Result loud = Run("$align --log frame.raw", "ORVO_ENABLE_SYSTEM_LOG=1");
  const std::string line = "itofinterface.cpp:307 itof_execute_algo() \\[Velmor_Perf] WarpTest * ms\n";
  const std::string lines =
      "[01][0-9]-[0-3][0-9] [0-2][0-9]:[0-5][0-9]:[0-6][0-9].[0-9][0-9][0-9] *[0-9] *[0-9] E OrvoX: "
      "\\[ERROR]\\[UNKNOWN] " +
      line + "E \\[ERROR]\\[UNKNOWN] " + line + "*";
  EXPECT_EQ(fnmatch(lines.c_str(), loud.err.c_str(), 0), 0) << loud.err;
  EXPECT_EQ(std::ranges::count(loud.err, '\n'), 10) << loud.err;
  EXPECT_TRUE(loud.out.starts_with("cost time(distort) : ")) << loud.out;
  EXPECT_EQ(result.out.find("cost time"), std::string::npos) << result.out;

  Write("good.bin", CalibrationBytes(IdentityCalibration({{51, 0.25F}})));
  ASSERT_EQ(Run("$align frame.raw").code, 0);
  EXPECT_EQ(nlohmann::json::parse(Read("out/alignment.json"))["aux_camera"]["distortion"]["k3"], 0.25);
}

TEST_F(ToolTest, AlignsMillimetresConfidenceAndWordsFromPng) {
  cv::Mat depth(kHeight, kWidth, CV_16U, cv::Scalar(1000)), confidence(kHeight, kWidth, CV_8U);
  Words expected(kPixels, AlignedWord(1000, 7));
  Write("depth.png", depth);
  depth.at<uint16_t>(6, 20) = 8191;
  expected[6 * kWidth + 20] = AlignedWord(8191, 7);
  depth.at<uint16_t>(5, 10) = 8192;
  // Beyond the range a pixel has no depth, so it goes where the pixel before it went, and replaces that one.
  expected[5 * kWidth + 9] = AlignedWord(0, 7);
  expected[5 * kWidth + 10] = 0;
  Write("far.PNG", depth);
  Write("aux.jpg", cv::Mat(720, 1280, CV_8UC3, cv::Scalar::all(90)));
  const Result result = Run("$align --aux aux.jpg far.PNG frame.raw");
  EXPECT_NE(result.out.find("far.PNG: 1\n"), std::string::npos) << result.out << result.err;
  EXPECT_TRUE(Read("out/far.aligned.raw") == Bytes(expected));

  Write("words.png", Picture(words_));
  Run("$align --kind words words.png");
  EXPECT_TRUE(Read("out/words.aligned.raw") == Read("out/frame.aligned.raw"));

  for (size_t i = 0; i < kPixels; ++i) expected[i] = AlignedWord(1000, confidence.data[i] = i % 8);
  Write("confidence.png", confidence);
  ASSERT_EQ(Run("$align --confidence confidence.png depth.png").code, 0);
  EXPECT_TRUE(Read("out/depth.aligned.raw") == Bytes(expected));
}

TEST_F(ToolTest, TakesACalibrationThroughAPipe) {
  ASSERT_EQ(Run("$align frame.raw").code, 0);
  const Result result = Run("align --calibration /dev/stdin --output pipe frame.raw", "cat good.bin |");
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_TRUE(Read("pipe/frame.aligned.raw") == Read("out/frame.aligned.raw"));
}

TEST_F(ToolTest, SimulationsDependOnTheSeed) {
  ASSERT_EQ(Run("simulate --frames 1 --seed 5 --output a").code, 0);
  ASSERT_EQ(Run("simulate --frames 1 --seed 5 --output b").code, 0);
  ASSERT_EQ(Run("simulate --frames 1 --seed 6 --output c").code, 0);
  for (const fs::path name : {"calibration.bin", "frame_000.words.raw", "frame_000.aux.png", "frame_000.truth.png"}) {
    EXPECT_FALSE(Read("a" / name).empty()) << name;
    EXPECT_TRUE(Read("a" / name) == Read("b" / name)) << name;
    EXPECT_EQ(Read("a" / name) == Read("c" / name), name != "frame_000.words.raw") << name;
  }
  for (const std::string seed : {"-1", "1.5", "18446744073709551616", "x"}) {
    ExpectFailure(2, "simulate --frames 1 --output d --seed " + seed, ("--seed*" + seed).c_str());
  }
}

TEST_F(ToolTest, EveryCommandReportsAFailedStandardOutput) {
  for (const std::string command :
       {"--help", "--version", "--man", "--complete s", "align --help", "selftest", "calibration show good.bin",
        "calibration show --json good.bin", "calibration check good.bin", "calibration diff good.bin good.bin",
        "explain --calibration good.bin --at 1,1 --code 5"}) {
    const Result result = Run(command + " >/dev/full");
    EXPECT_EQ(result.code, 1) << command;
    EXPECT_TRUE(result.err.starts_with("itof: standard output: ") && result.err.find("written") == std::string::npos)
        << result.err;
  }
  for (const std::string command : {"$align frame.raw", "simulate --frames 1 --output s",
                                    "calibration export good.bin -o e.json", "calibration import e.json -o i.bin"}) {
    EXPECT_EQ(Run(command).code, 0) << command;
    ExpectFailure(1, command + " >/dev/full", "standard output: No space*; the files are written");
  }
  ExpectFailure(1, "--version >&-", "standard output");
}

TEST_F(ToolTest, AnInterruptEndsTheProcessByItsSignal) {
  // Without --foreground, timeout signals its process group as well, and a second signal ends the tool at once.
  const Result result = Run("simulate --frames 1000 --output new", "timeout --foreground --preserve-status 0.5");
  EXPECT_EQ(result.code, 128 + SIGTERM) << result.err;
  EXPECT_FALSE(fs::exists(folder_ / "new"));
}

TEST_F(ToolTest, TakesPicturesAsTheyAreStored) {
  cv::Mat aux(kHeight, kWidth, CV_8UC3, cv::Scalar::all(0));
  aux.rowRange(0, 100) = cv::Scalar(10, 200, 90);
  // An orientation of 3, upside down.
  const std::string tiff("MM\0*\0\0\0\10\0\1\1\22\0\3\0\0\0\1\0\3\0\0\0\0\0\0", 26);
  const std::string exif = std::string("\xFF\xE1\0\42Exif\0\0", 10) + tiff;
  const std::string chunk = std::string("\0\0\0\32eXIf", 8) + tiff + "\x84_d\xCE";
  const std::pair<const char*, const std::string&> turns[] = {{"aux.jpg", exif}, {"aux.png", chunk}};
  for (const auto& [name, turn] : turns) {
    Write(name, aux);
    ASSERT_EQ(Run(std::string("$align frame.raw --aux ") + name).code, 0);
    const std::string preview = Read("out/frame.preview.png");
    std::string bytes = Read(name);
    Write(name, bytes.insert(name == std::string("aux.jpg") ? 2 : 33, turn));
    ASSERT_EQ(Run(std::string("$align frame.raw --aux ") + name).code, 0);
    EXPECT_TRUE(Read("out/frame.preview.png") == preview) << name;
  }
}

TEST_F(ToolTest, UnknownWordsAreNamedWithWhatTheyResemble) {
  const std::pair<const char*, const char*> cases[] = {
      {"calibraton show good.bin", "\"itof calibraton\"; did you mean \"itof calibration\"[?]"},
      {"calibration chek good.bin", "\"itof calibration chek\"; did you mean \"itof calibration check\"[?]"},
      {"calibration shwo good.bin", "did you mean \"itof calibration show\"[?]"},
      {"check good.bin", "\"itof check\"; use \"itof calibration check\""},
      {"improt e.json", "\"itof improt\"; did you mean \"itof calibration import\"[?]"},
      {"calibration align frame.raw", "; use \"itof align\""},
      {"align --ratoi 2 frame.raw", "\"itof align\" has no option \"--ratoi\"; did you mean \"--ratio\"[?]"},
      {"calibration import --qaternion-ordr=xyzw e.json",
       "\"--qaternion-ordr\"; did you mean \"--quaternion-order\"[?]"},
      {"$align --conf frame.raw", "\"--conf\"; did you mean \"--confidence\"[?]"},
      {"$align -ratio 2 frame.raw", "\"-ratio\"; use \"--ratio\""},
      {"simulate -output new", "\"itof simulate\" has no option \"-output\"; use \"--output\""},
      {"$align -outptu=new frame.raw", "\"-outptu\"; did you mean \"--output\"[?]"},
      {"$align --frames 2 frame.raw", "\"itof align\" has no option \"--frames\"; see \"itof align --help\""},
      {"zebra", "\"itof zebra\"; see \"itof --help\""},
      {"''", "\"itof \"; see \"itof --help\""},
      {"calibration show good.bin chek", "unexpected argument \"chek\" of \"itof calibration show\"; see"}};
  for (const auto& [arguments, message] : cases) ExpectFailure(2, arguments, message);
}

// A test of its own, because the limit also keeps the tool from writing coverage counts.
TEST_F(ToolTest, AFullDiskLeavesNothingBehind) {
  // At most 450 blocks of 512 bytes: half of the aligned words.
  ExpectFailure(1, "$align --ratio 2 frame.raw", "frame.aligned.raw*File too large", "ulimit -f 450 &&");
}

TEST_F(ToolTest, FailuresPrintOneLineAndChangeNoFile) {
  Write("short.bin", Read("good.bin").substr(1));
  Write("narrow.bin", CalibrationBytes(IdentityCalibration({{2, 512.0F}})));
  Write("new\nline.raw", Read("frame.raw").substr(1));
  Write("depth.png", Picture(words_));
  Write("cut.png", Read("depth.png").substr(0, fs::file_size(folder_ / "depth.png") / 2));
  Write("aux.jpg", cv::Mat(kHeight, kWidth, CV_8U, words_.data()));
  Write("aux.jpg", Read("aux.jpg").substr(0, kPixels / 4));
  Write("eight.png", cv::Mat(kHeight, kWidth, CV_8U, cv::Scalar(8)));
  Write("large.png", cv::Mat(480, 640, CV_16U, cv::Scalar(1)));
  // Headers of pictures that nothing follows.
  Write("huge.png", std::string("\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\xE1\0\0\0\x7E\x90\20\0\0\0\0CRC!", 33));
  Write("huge.jpg", std::string("\xFF\xD8\xFF\xC0\0\13\10\x7E\x90\xE1\0\1\1\21\0\xFF\xDA\0\2\xFF\xD9", 21));
  fs::create_directory(folder_ / "out/depth.preview.png");
  fs::create_directory(folder_ / "mine");
  Write("mine/calibration.bin", Read("good.bin"));
  Write("linked", "content");
  fs::create_symlink("linked", folder_ / "link.yml");
  fs::create_symlink("nowhere", folder_ / "dangling");
  ASSERT_EQ(mkfifo((folder_ / "pipe.yml").c_str(), 0600), 0);
  ASSERT_EQ(Run("$align frame.raw").code, 0);

  ExpectFailure(2, "align frame.raw", "--calibration");
  ExpectFailure(2, "$align --ratio 1e39 frame.raw", "--ratio* 1e+39");
  ExpectFailure(2, "$align --kind millimetres frame.raw", "frame.raw*--kind");
  ExpectFailure(2, "$align frame.txt", "frame.txt*.raw");
  ExpectFailure(2, "$align --confidence depth.png frame.raw", "--confidence");
  ExpectFailure(2, "$align --aux aux.jpg --aux aux.jpg frame.raw", "--aux");
  ExpectFailure(2, "$align frame.raw ./frame.raw", "./frame.raw*frame.aligned.raw");
  ExpectFailure(2, "$align out/frame.aligned.raw out/frame.raw", "frame.aligned.raw*--output*overwrite");
  ExpectFailure(1, "$align frame.raw 'new\nline.raw'", "line.raw*460799*460800");
  ExpectFailure(1, "$align cut.png", "cut.png*damaged");
  ExpectFailure(1, "$align large.png", "large.png*640 x 480");
  ExpectFailure(1, "$align --confidence eight.png depth.png", "eight.png*(0, 0)*confidence 8");
  ExpectFailure(1, "$align --aux large.png frame.raw", "large.png*640 x 480");
  ExpectFailure(1, "$align --aux aux.jpg frame.raw", "aux.jpg*damaged");
  ExpectFailure(1, "align --calibration short.bin frame.raw", "short.bin*227*228");
  ExpectFailure(1, "align --calibration narrow.bin frame.raw", "narrow.bin*tofCalibWidth*512*640");
  ExpectFailure(1, "align --calibration good.bin --output good.bin frame.raw", "good.bin");
  ExpectFailure(1, "align --calibration good.bin --output out/a/../b/ missing.raw", "missing.raw*No such file");
  ExpectFailure(1, "$align huge.png", "huge.png*57600 x 32400*640 x 360");
  ExpectFailure(1, "$align --aux huge.png frame.raw", "huge.png*57600 x 32400*100 megapixels");
  ExpectFailure(1, "$align --aux huge.jpg frame.raw", "huge.jpg*57600 x 32400*100 megapixels");
  ExpectFailure(2, "$align --confidence '' depth.png", "--confidence*empty");
  ExpectFailure(2, "simulate --output ''", "--output*empty");
  ExpectFailure(2, "simulate --frames 010 --output new", "--frames*010");
  ExpectFailure(2, "simulate --frames 1 --output mine", "mine/calibration.bin*overwrite");
  ExpectFailure(1, "simulate --frames 1 --output dangling", "dangling");
  ExpectFailure(1, "simulate --frames 1 --output dangling/sub", "dangling/sub");
  ExpectFailure(1, "calibration export good.bin -o dangling/out.yml", "dangling");
  ExpectFailure(1, "calibration export good.bin -o link.yml", "link.yml*symbolic link");
  ExpectFailure(1, "calibration export good.bin -o pipe.yml", "pipe.yml*regular file");
  ExpectFailure(1, "$align depth.png", "depth.preview.png*directory");
}

}  // namespace
