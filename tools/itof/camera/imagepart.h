// Adapts a camera matrix to a part of its image.
#ifndef ITOF_TOOL_CAMERA_IMAGEPART_H_
#define ITOF_TOOL_CAMERA_IMAGEPART_H_

namespace itoftool {

/// A part of an image, in its pixels, whose first pixel is (left, top).
struct ImagePart {
  double left, top, width, height;
};

/// Makes a 3x3 row-major camera matrix that of `part` of its image, scaled to `width` x `height` pixels. Pixel centres
/// stay pixel centres: the part's edges, half a pixel outside the centres of its outermost pixels, become the edges of
/// the new image.
inline void TakePart(double* matrix, const ImagePart& part, double width, double height) {
  const double scale[] = {width / part.width, height / part.height}, origin[] = {part.left, part.top};
  for (const int row : {0, 1}) {
    for (const int column : {0, 1, 2}) {
      double entry = matrix[3 * row + column];
      if (column == 2) entry += 0.5 - origin[row];
      entry *= scale[row];
      if (column == 2) entry -= 0.5;
      matrix[3 * row + column] = entry;
    }
  }
}

}  // namespace itoftool

#endif  // ITOF_TOOL_CAMERA_IMAGEPART_H_
