// Checks pixels of the preview against colours worked out by hand from its scale.
#include "report/preview.h"

#include <gtest/gtest.h>

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

  // 2000 is in the middle: shade 10 of 20. Shades go down from entry 240 of the Turbo map in steps of 11, so this is entry
  // 130: (57, 251, 169) in blue, green, red. The nearest of 24 levels are 5, 23 and 15 times 255 / 23.
  const cv::Vec3b middle(55, 255, 166);
  EXPECT_EQ(sheet.at<cv::Vec3b>(kTop + 7, kLeft + 9), middle);
  EXPECT_NE(sheet.at<cv::Vec3b>(kTop + 8, kLeft + 9), middle);
  EXPECT_EQ(sheet.at<cv::Vec3b>(kTop + 8, kSecondLeft + 9), middle);
  const auto near = sheet.at<cv::Vec3b>(kTop, kLeft), far = sheet.at<cv::Vec3b>(kTop, kLeft + 639);
  EXPECT_TRUE(near[2] > near[0] && far[0] > far[2]) << "near is warm, far is cold";

  // Hatched grey: two of eight diagonals are 88, and the others 56. The nearest levels are 8 and 5.
  for (const int left : {kLeft, kSecondLeft}) {
    EXPECT_EQ(sheet.at<cv::Vec3b>(kTop + 103, left + 1), cv::Vec3b(88, 88, 88));
    EXPECT_EQ(sheet.at<cv::Vec3b>(kTop + 103, left + 3), cv::Vec3b(55, 55, 55));
  }
}

}  // namespace
