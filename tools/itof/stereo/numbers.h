// Reads the numbers of a quantity from a file and checks their form.
#ifndef ITOF_TOOL_STEREO_NUMBERS_H_
#define ITOF_TOOL_STEREO_NUMBERS_H_

#include <cstddef>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "stereo/document.h"
#include "stereo/keys.h"
#include "stereo/pair.h"

namespace itoftool {

/// Reads the numbers under the key of `place` and converts a rotation to a matrix. Returns none if the file does not
/// have the key. Throws DataError, which names file and key, if they do not have an accepted form.
std::vector<double> ReadKey(const Document& document, const Quantity& place, QuantityKind kind);

/// Reads exactly `count` numbers, in a list, in rows, or as a matrix in OpenCV's form. Throws DataError, also if the key
/// is missing.
Quantity ReadList(const Document& document, const std::string& key, size_t count);

/// Reads a text. Returns an empty one if the file does not have the key. Throws DataError if it is not a text.
std::string ReadText(const Document& document, const std::string& key);

/// Reads a 4 x 4 transform whose upper left part is a rotation. Throws DataError.
cv::Matx44d ReadTransform(const Document& document, const std::string& key);

/// Sets rotation and translation of `pair` to those of `toAux` times the inverse of `toTof`: transforms that take the
/// coordinates of one frame to those of each camera.
void SetPose(const cv::Matx44d& toTof, const cv::Matx44d& toAux, const Quantity& place, StereoPair& pair);

/// Returns the matrix of a rotation given as 9 numbers row by row, a rotation vector of 3 in radians, or a quaternion
/// x, y, z, w. Throws DataError if it is not a rotation.
std::vector<double> RotationMatrix(const Quantity& place, const std::vector<double>& values);

}  // namespace itoftool

#endif  // ITOF_TOOL_STEREO_NUMBERS_H_
