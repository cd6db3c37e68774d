// Simulates what the cameras of a rig see of a scene: depth words, the aux picture, and the true depth. All frames are
// 640 x 360, row after row.
#ifndef ITOF_TOOL_SIMULATION_SIMULATION_H_
#define ITOF_TOOL_SIMULATION_SIMULATION_H_

#include <cstdint>
#include <vector>

#include "simulation/rig.h"
#include "simulation/scene.h"

namespace itoftool::simulation {

/// The depth words of a perfect ToF camera, for the surface seen at each pixel's centre: bits 0 to 12 are the depth
/// along the camera's axis in whole millimetres, bits 13 to 15 the confidence.
std::vector<uint16_t> ExactDepthWords(const Rig& rig, const Scene& scene);

/// The depth words of a real ToF camera: with noise that grows as less light returns, depths between the two sides of
/// strong edges, and depth 0 where too little or too much light returns. The same seed gives the same words.
std::vector<uint16_t> DepthWords(const Rig& rig, const Scene& scene, uint64_t seed);

/// The seed for one frame of a sequence. Sequences with neighbouring seeds do not share frame seeds.
uint64_t FrameSeed(uint64_t sequenceSeed, int frame);

/// The aux camera's picture: blue, green and red byte of each pixel.
std::vector<uint8_t> AuxPicture(const Rig& rig, const Scene& scene);

/// For each cell (u, v) of the aux camera's view, the depth of the point that the aux camera sees at (u + offset,
/// v + offset), along the ToF camera's axis in whole millimetres. Integers are pixel centres; an aligned cell holds
/// positions from u to u + 1, so its middle is at offset 0.5.
std::vector<uint16_t> Truth(const Rig& rig, const Scene& scene, double offset = 0.5);

}  // namespace itoftool::simulation

#endif  // ITOF_TOOL_SIMULATION_SIMULATION_H_
