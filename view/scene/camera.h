#pragma once

#include "view/scene/vector_math.h"

namespace tarnwick::view {

/// Sides from which a model is looked at.
enum class ViewSide { Front, Back, Left, Right, Top, Bottom };

/// A camera that circles round a point. Angles are degrees: at yaw 0 and pitch 0 it stands on the +X side and looks at
/// the model's face; a rising yaw takes it to the model's left (+Y), a rising pitch above it.
struct Camera {
  Vec3 Target = {};
  float Distance = 100;         // from the target
  float Yaw = 0;                // 0 to 360
  float Pitch = 0;              // -90 to 90
  float FieldOfView = 40;       // degrees from top to bottom
  bool IsOrthographic = false;  // the picture then is as high as what is seen at the target

  bool operator==(const Camera&) const = default;

  /// Turns the camera round its target; pitch stops straight above and below.
  void Turn(float yaw, float pitch);
  /// Moves the target with the camera, by parts of the picture's height: right and up in the picture.
  void Pan(float right, float up);
  /// Brings the camera nearer (a factor below 1) or takes it farther away, within bounds.
  void Zoom(float factor);
  /// Looks at `box` from where the camera is turned to, so that all of its ball fits a picture of this shape (width by
  /// height). An empty box becomes one about the origin.
  void Frame(const Box& box, float aspect);
  /// Looks at `box` from so far away, and so to the side, that it just fills that part of the picture, along the longer
  /// way.
  void Fit(const Box& box, float aspect, float part);
  void Look(ViewSide side);

  /// Where the camera stands, and the directions of the picture.
  Vec3 Eye() const;
  Vec3 Forward() const;
  Vec3 Right() const;
  Vec3 Up() const;

  /// From the model's space to that of the camera (X right, Y up, looking along -Z).
  Matrix44 ViewMatrix() const;
  /// From the camera's space to OpenGL's clip space (depth -1 to 1). What is nearer than a part of the distance, or
  /// very far, is clipped.
  Matrix44 ProjectionMatrix(float aspect) const;
  /// Both: from the model's space to clip space.
  Matrix44 ClipMatrix(float aspect) const;
  /// Where `point` stands in a picture of this size, in pixels from its upper left corner; Z is the depth (-1 to 1).
  /// A point behind the camera has a depth above 1.
  Vec3 Project(const Vec3& point, float width, float height) const;
  /// Pixels that a unit at the target covers in a picture of this height: what Scene::LodAt wants.
  float UnitPixels(float height) const;
};

}  // namespace tarnwick::view
