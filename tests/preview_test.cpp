// Checks pixels of the preview against colours worked out by hand from its scale.
#include "report/preview.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

constexpr int kLeft = 14, kTop = 34, kSecondLeft = kLeft + 640 + 14;  // of the two panels, pixels

TEST(Preview, ColoursDepthByItsPlaceBetweenNearAndFar) {
  // The scale leaves out 1 % of the pixels at either end, so it runs from 1000 to 3000.
  cv::Mat input(360, 640, CV_16U, cv::Scalar(1000));
  input.colRange(320, 640).setTo(3000);
  input.at<uint16_t>(7, 9) = 2000;
  input.rowRange(100, 110).setTo(0);
  cv::Mat aligned = input.clone();
  aligned.at<uint16_t>(8, 9) = 2000;
  const cv::Mat sheet = itoftool::DrawPreview(input, aligned, {}, "");

  // 2000 is in the middle: shade 10 of 20. Shades go down evenly from entry 255 of the plasma map to 0, so this is entry
  // 121: (126, 64, 197) in blue, green, red. The nearest of 24 levels are 11, 6 and 18 times 255 / 23.
  const cv::Vec3b middle(121, 66, 199);
  EXPECT_EQ(sheet.at<cv::Vec3b>(kTop + 7, kLeft + 9), middle);
  EXPECT_NE(sheet.at<cv::Vec3b>(kTop + 8, kLeft + 9), middle);
  EXPECT_EQ(sheet.at<cv::Vec3b>(kTop + 8, kSecondLeft + 9), middle);
  const auto near = sheet.at<cv::Vec3b>(kTop, kLeft), far = sheet.at<cv::Vec3b>(kTop, kLeft + 639);
  EXPECT_TRUE(near[2] > 200 && near[1] > 200 && near[0] < 60) << "near is yellow";
  EXPECT_TRUE(far[2] < 60 && far[1] < 60 && far[0] > 100) << "far is dark blue";

  // Hatched grey: two of eight diagonals are 88, and the others 56. The nearest levels are 8 and 5.
  for (const int left : {kLeft, kSecondLeft}) {
    EXPECT_EQ(sheet.at<cv::Vec3b>(kTop + 103, left + 1), cv::Vec3b(88, 88, 88));
    EXPECT_EQ(sheet.at<cv::Vec3b>(kTop + 103, left + 3), cv::Vec3b(55, 55, 55));
  }
}

/// Returns the columns of the white pixels in a row of a panel.
std::vector<int> WhiteColumns(const cv::Mat& sheet, int left, int row) {
  std::vector<int> columns;
  for (int x = 0; x < 640; ++x) {
    if (sheet.at<cv::Vec3b>(kTop + row, left + x) == cv::Vec3b::all(255)) columns.push_back(x);
  }
  return columns;
}

TEST(Preview, OutlinesNearSurfacesOverTheAuxPicture) {
  // A near square in front of a wall. The aligned square is 50 pixels to the left and hides some of the wall beside it.
  cv::Mat input(360, 640, CV_16U, cv::Scalar(3000)), aligned = input.clone();
  input(cv::Range(100, 200), cv::Range(200, 300)).setTo(1000);
  aligned(cv::Range(100, 200), cv::Range(150, 250)).setTo(1000);
  aligned(cv::Range(100, 200), cv::Range(250, 280)).setTo(0);
  for (cv::Mat* depth : {&input, &aligned}) {
    depth->col(170).setTo(0);  // cells that no pixel reaches
    depth->colRange(500, 640).setTo(0);
  }
  aligned(cv::Range(149, 152), cv::Range(265, 266)).setTo(900);   // stray pixels
  aligned(cv::Range(130, 170), cv::Range(280, 282)).setTo(2000);  // pixels that saw both surfaces
  const cv::Mat sheet = itoftool::DrawPreview(input, aligned, cv::Mat(360, 640, CV_8UC3, cv::Scalar(0, 0, 220)), "");

  // The last column before each jump in depth, and the first after it.
  EXPECT_EQ(WhiteColumns(sheet, kLeft, 150), (std::vector{199, 200, 299, 300}));
  EXPECT_EQ(WhiteColumns(sheet, kSecondLeft, 150), (std::vector{149, 150, 249, 250}));
  // The brightness of pure red is 0.299 of it, 66 of 255; the nearest of 24 levels is 6 times 255 / 23.
  EXPECT_EQ(sheet.at<cv::Vec3b>(kTop + 150, kSecondLeft + 600), cv::Vec3b::all(66));
}

}  // namespace
