// Describes a room with boxes and spheres in it, and traces rays through it.
#ifndef ITOF_TOOL_SIMULATION_SCENE_H_
#define ITOF_TOOL_SIMULATION_SCENE_H_

#include <vector>

#include "camera/geometry.h"

namespace itoftool::simulation {

enum class Pattern { kPlain, kStripes, kChecks, kTiles };

/// The look of a surface. Colours are (red, green, blue), linear, 0..1.
struct Material {
  Vec3 colour;
  Vec3 secondColour;
  Pattern pattern;
  double size;      // of a stripe, check or tile, millimetres
  double infrared;  // share of the ToF camera's light that it returns, 0..1
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

/// The first point that a ray meets.
struct Hit {
  double distance;  // in units of the direction's length
  Vec3 normal;      // of length 1, toward the ray's origin
  Point2 texture;   // position on the surface, millimetres
  const Material* material;
};

/// Traces a ray from inside the room, which always hits something. The result points into `scene`.
Hit Trace(const Scene& scene, const Vec3& origin, const Vec3& direction);

/// Returns the linear colour at a hit, in the lamp's light and with shadows.
Vec3 Shade(const Scene& scene, const Vec3& position, const Hit& hit);

/// The scene at a frame, from 0. Everything that either camera of a rig sees has a depth of 400 to 3900 mm along the
/// ToF camera's axis.
Scene RoomScene(int frame);

}  // namespace itoftool::simulation

#endif  // ITOF_TOOL_SIMULATION_SCENE_H_
