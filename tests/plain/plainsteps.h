// Declares the plain form of the alignment steps: one pixel after the other, each operation as in its formula. Tests
// compare the library with it bit for bit, so it calls no code of the library.
#ifndef ITOF_TESTS_PLAIN_PLAINSTEPS_H_
#define ITOF_TESTS_PLAIN_PLAINSTEPS_H_

#include <cstdint>

#include "alignment/alignmentcontext.h"

namespace plain {

// Arguments, results and units are those of the functions with the same names in namespace itof. RunApproximateAlignment
// prints nothing, and InitAlignmentContext leaves the target table alone.

void InitAlignmentContext(itof::AlignmentContext& context, const itof::AlignmentParams& params,
                          uint8_t distortionEnabled);

void MatrixMultiply(double* out, const double* a, const double* b, int32_t rows, int32_t aRowLength, int32_t inner,
                    int32_t cols);

void AlignmentFarPlane(itof::AlignmentContext& context, float* farPlaneMapX, float* farPlaneMapY, double scaleX,
                       double scaleY);

void DistortLUT(const itof::AlignmentContext& context, float* mapX, float* mapY);

int32_t RunApproximateAlignment(itof::AlignmentContext& context, const uint16_t* frame, uint16_t* workingBuffer,
                                const float* farPlaneMapX, const float* farPlaneMapY, const float* distortMapX,
                                const float* distortMapY);

uint16_t AlignedWord(uint16_t workingWord);

}  // namespace plain

#endif  // ITOF_TESTS_PLAIN_PLAINSTEPS_H_
