// The size of the frames that the library takes and gives.
#ifndef ITOF_FRAMESIZE_H_
#define ITOF_FRAMESIZE_H_

#include <cstdint>

namespace itof {

/// Width and height in pixels of the ToF frame and of the aligned frame.
inline constexpr int32_t kFrameWidth = 640;
inline constexpr int32_t kFrameHeight = 360;

}  // namespace itof

#endif  // ITOF_FRAMESIZE_H_
