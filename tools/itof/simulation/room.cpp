// Furnishes the room of the simulated scene and moves its objects.
#include <cmath>

#include "simulation/scene.h"

namespace itoftool::simulation {
namespace {

/// Swings between -1 and 1 with the given period in frames, close to a sine. It is made of parabolas, because std::sin
/// has different last bits on different machines.
double Swing(int frame, double period, double phase) {
  const double turns = frame / period + phase;
  const double x = 2 * (turns - std::floor(turns)) - 1;
  return 4 * x * (1 - std::abs(x));
}

/// A rotation about the vertical axis by twice the arc tangent of `halfTangent`.
Mat3 Upright(double halfTangent) { return Rotation(0, halfTangent, 0); }

constexpr Vec3 kWhite{0.80, 0.79, 0.76};

constexpr Material Plain(Vec3 colour, double infrared) { return {colour, colour, Pattern::kPlain, 100, infrared, 0}; }

}  // namespace

Scene RoomScene(int frame) {
  Scene scene{};
  // The camera looks at the corner of the back wall and the right wall, and down, so it sees every wall at a slant.
  // Half-angle tangents: 18 degrees to the right, 12 down, 1.5 of roll.
  const Mat3 yaw = Rotation(0, 0.158, 0);
  const Mat3 pitchAndRoll = Rotation(-0.105, 0, 0.013);
  scene.cameraToWorld = yaw * pitchAndRoll;

  scene.roomCentre = {0, 0, 1250};
  scene.roomHalfSize = {1700, 1250, 1750};
  scene.roomSides[0][0] = Plain({0.55, 0.62, 0.58}, 0.6);
  scene.roomSides[0][1] = {{0.62, 0.33, 0.24}, {0.70, 0.64, 0.56}, Pattern::kTiles, 230, 0.45, 0};
  scene.roomSides[1][0] = Plain(kWhite, 0.7);
  scene.roomSides[1][1] = {{0.46, 0.33, 0.22}, {0.66, 0.53, 0.38}, Pattern::kChecks, 300, 0.5, 0};
  scene.roomSides[2][0] = Plain(kWhite, 0.7);
  scene.roomSides[2][1] = {{0.52, 0.60, 0.68}, {0.60, 0.67, 0.73}, Pattern::kStripes, 140, 0.6, 0};
  scene.lamp = {-250, -1150, 1000};

  const Material wood{{0.58, 0.38, 0.18}, {0.50, 0.31, 0.14}, Pattern::kStripes, 60, 0.55, 0};
  const Material cabinet{{0.13, 0.42, 0.42}, {0.06, 0.20, 0.20}, Pattern::kTiles, 400, 0.5, 0};
  const Material painting{{0.82, 0.66, 0.20}, {0.62, 0.16, 0.14}, Pattern::kChecks, 140, 0.5, 0};
  const Material parcel{{0.75, 0.20, 0.16}, {0.85, 0.78, 0.68}, Pattern::kStripes, 45, 0.5, 0};
  // Black rubber returns too little light at a distance and leaves a hole.
  const Material rubber = Plain({0.05, 0.05, 0.06}, 0.02);
  const Material beachBall{{0.86, 0.86, 0.82}, {0.12, 0.30, 0.68}, Pattern::kStripes, 110, 0.7, 0};
  const Material glazed{{0.80, 0.52, 0.10}, {0.80, 0.52, 0.10}, Pattern::kPlain, 100, 0.6, 6};
  const Material felt{{0.24, 0.50, 0.22}, {0.78, 0.80, 0.62}, Pattern::kStripes, 36, 0.6, 0};

  // The table: its top, then its legs.
  const Mat3 tableTurn = Upright(-0.16);
  const Vec3 table{240, 470, 1480};
  scene.boxes.push_back({table, {430, 22, 260}, tableTurn, wood});
  for (const double x : {-390.0, 390.0}) {
    for (const double z : {-220.0, 220.0}) {
      scene.boxes.push_back({table + tableTurn * Vec3{x, 401, z}, {26, 379, 26}, tableTurn, wood});
    }
  }
  scene.boxes.push_back({{380, 358, 1520}, {95, 90, 75}, Upright(0.35 + 0.3 * Swing(frame, 40, 0.5)), parcel});
  scene.boxes.push_back({{1450, 400, 2150}, {249, 850, 330}, Upright(0), cabinet});
  scene.boxes.push_back({{150, -330, 2985}, {420, 300, 14}, Upright(0), painting});
  scene.boxes.push_back({{-480, 960, 2500}, {230, 290, 230}, Upright(0.25), rubber});

  scene.spheres.push_back({{1010, 1000, 1520 + 110 * Swing(frame, 30, 0.4)}, 250, beachBall});
  scene.spheres.push_back({{100 + 130 * Swing(frame, 24, 0.6), 348, 1440}, 100, glazed});
  scene.spheres.push_back({{-15 + 45 * Swing(frame, 32, 0.5), -5 + 40 * Swing(frame, 20, 0.75), 760}, 85, felt});
  return scene;
}

}  // namespace itoftool::simulation
