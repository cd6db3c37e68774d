// Parts of images, and what becomes of a camera matrix when one is taken for the whole.
#ifndef ITOF_TOOL_CAMERA_IMAGEPART_H_
#define ITOF_TOOL_CAMERA_IMAGEPART_H_

namespace itoftool {

/// A part of an image, in its pixels, whose first pixel is (left, top).
struct ImagePart {
  double left, top, width, height;
};

/// Moves and scales a 3x3 row-major camera matrix, in place, as when `part` of its image becomes a whole image of `width` x
/// `height` pixels. Centres of pixels are kept: the part's edges, half a pixel outside the centres of its outermost
/// pixels, become the image's.
template <typename Entry>
void TakePart(Entry* matrix, const ImagePart& part, double width, double height) {
  const double scale[] = {width / part.width, height / part.height}, origin[] = {part.left, part.top};
  for (const int row : {0, 1}) {
    for (const int column : {0, 1, 2}) {
      Entry& entry = matrix[3 * row + column];
      auto value = static_cast<double>(entry);
      if (column == 2) value += 0.5 - origin[row];
      value *= scale[row];
      if (column == 2) value -= 0.5;
      entry = static_cast<Entry>(value);
    }
  }
}

}  // namespace itoftool

#endif  // ITOF_TOOL_CAMERA_IMAGEPART_H_
