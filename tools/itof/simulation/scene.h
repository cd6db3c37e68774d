// A room seen from inside, with boxes and spheres in it, and what a ray meets there.
#ifndef ITOF_TOOL_SIMULATION_SCENE_H_
#define ITOF_TOOL_SIMULATION_SCENE_H_

#include <vector>

#include "camera/geometry.h"

namespace itoftool::simulation {

enum class Pattern { kPlain, kStripes, kChecks, kTiles };

/// What a surface looks like. Colours are (red, green, blue), linear, 0..1.
struct Material {
  Vec3 colour;
  Vec3 secondColour;
  Pattern pattern;
  double size;      // of a stripe, check or tile, millimetres
  double infrared;  // share of the ToF camera's light that comes back, 0..1
  double gloss;     // strength of the mirrored highlight
};

struct Sphere {
  Vec3 centre;
  double radius;
  Material material;
};

struct Box {
  Vec3 centre;
  Vec3 halfSize;
  Mat3 toWorld;  // turns the box's own axes into the world's
  Material material;
};

/// World coordinates: millimetres, x to the right along the back wall, y down, z toward that wall, the ToF camera at
/// (0, 0, 0).
struct Scene {
  Mat3 cameraToWorld;  // turns the ToF camera's axes into the world's
  Vec3 roomCentre;
  Vec3 roomHalfSize;
  Material roomSides[3][2];  // by axis, at its low and its high end
  std::vector<Box> boxes;
  std::vector<Sphere> spheres;
  Vec3 lamp;
};

/// What a ray meets first.
struct Hit {
  double distance;  // in lengths of the ray's direction
  Vec3 normal;      // of length 1, toward the ray's origin
  Point2 texture;   // position on the surface, millimetres
  const Material* material;
};

/// Traces a ray from inside the room; it always ends at a wall. The hit points into `scene`.
Hit Trace(const Scene& scene, const Vec3& origin, const Vec3& direction);

/// The colour that is seen at a hit, linear: shaded by the lamp, with shadows.
Vec3 Shade(const Scene& scene, const Vec3& position, const Hit& hit);

/// The scene at a frame, from 0. All that either camera of a rig sees is 400 to 3900 mm away from the ToF camera, along
/// its axis.
Scene RoomScene(int frame);

}  // namespace itoftool::simulation

#endif  // ITOF_TOOL_SIMULATION_SCENE_H_
