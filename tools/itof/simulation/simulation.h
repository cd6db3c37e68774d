// What the cameras of a rig make of a scene: depth words, the aux picture, and the truth to compare with. All frames
// are 640 x 360, row after row.
#ifndef ITOF_TOOL_SIMULATION_SIMULATION_H_
#define ITOF_TOOL_SIMULATION_SIMULATION_H_

#include <cstdint>
#include <vector>

#include "simulation/rig.h"
#include "simulation/scene.h"

namespace itoftool::simulation {

/// A perfect ToF camera: the depth word (bits 0 to 12 depth along the camera's axis in whole millimetres,
/// bits 13 to 15 confidence) of what lies behind each pixel's centre.
std::vector<uint16_t> ExactDepthWords(const Rig& rig, const Scene& scene);

/// A real one: noise that grows where less light comes back, depths between both sides of strong edges, and words of
/// depth 0 where too little or too much light comes back. The same seed gives the same words.
std::vector<uint16_t> DepthWords(const Rig& rig, const Scene& scene, uint64_t seed);

/// The aux camera's picture: blue, green, red bytes of each pixel.
std::vector<uint8_t> AuxPicture(const Rig& rig, const Scene& scene);

/// For each cell (u, v) of the aux camera's view, the depth along the ToF camera's axis, in whole millimetres, of the
/// point that the aux camera sees at (u + offset, v + offset). Integers are pixel centres; an aligned cell holds
/// positions from u to u + 1, so its centre is at offset 0.5.
std::vector<uint16_t> Truth(const Rig& rig, const Scene& scene, double offset = 0.5);

}  // namespace itoftool::simulation

#endif  // ITOF_TOOL_SIMULATION_SIMULATION_H_
