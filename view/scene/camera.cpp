#include "view/scene/camera.h"

#include <algorithm>
#include <cmath>

namespace tarnwick::view {

namespace {

constexpr float RadiansOfDegree = 0.017453292f;
/// A pitch of 90 degrees is kept: "up" is then taken from the yaw, so there is nothing to lose at the poles.
constexpr float HighestPitch = 90;
/// Distances that the wheel can reach, in units.
constexpr float Nearest = 0.01f;
constexpr float Farthest = 1e6f;
/// What is clipped, in parts of the distance: small enough for the inside of a model, large enough for 24 bits of
/// depth.
constexpr float NearPart = 0.01f;
constexpr float FarPart = 100;
/// Half the size of what is shown where there is nothing to show.
constexpr float EmptyRadius = 32;
/// Room round a model that is framed.
constexpr float Margin = 1.05f;

float Sine(float degrees) {
  return std::sin(degrees * RadiansOfDegree);
}
float Cosine(float degrees) {
  return std::cos(degrees * RadiansOfDegree);
}
float Tangent(float degrees) {
  return std::tan(degrees * RadiansOfDegree);
}

}  // namespace

void Camera::Turn(float yaw, float pitch) {
  Yaw = std::fmod(Yaw + yaw, 360.0f);
  if (Yaw < 0) Yaw += 360;
  Pitch = std::clamp(Pitch + pitch, -HighestPitch, HighestPitch);
}

void Camera::Pan(float right, float up) {
  const float height = 2 * Distance * Tangent(FieldOfView / 2);
  Target = Target + Right() * (right * height) + Up() * (up * height);
}

void Camera::Zoom(float factor) {
  if (factor > 0) Distance = std::clamp(Distance * factor, Nearest, Farthest);
}

void Camera::Frame(const Box& box, float aspect) {
  Target = box.Centre();
  const float radius = box.Radius() > 0 ? box.Radius() : EmptyRadius;
  // The ball has to fit the narrower side of the picture. Seen in perspective its rim lies before its middle.
  const float half = FieldOfView / 2;
  const float narrow = aspect > 0 ? std::min(1.0f, aspect) : 1.0f;
  const float side = std::atan(Tangent(half) * narrow);
  const float fit = IsOrthographic ? radius / (Tangent(half) * narrow) : radius / std::sin(side);
  Distance = std::clamp(fit * Margin, Nearest, Farthest);
}

void Camera::Fit(const Box& box, float aspect, float part) {
  Frame(box, aspect);
  for (int step = 0; step < 6; ++step) {
    float left = 1e9f, right = -1e9f, top = 1e9f, bottom = -1e9f;
    for (size_t i = 0; i < 8; ++i) {
      const Vec3 corner{(i & 1) != 0 ? box.Maximum.X : box.Minimum.X, (i & 2) != 0 ? box.Maximum.Y : box.Minimum.Y,
                        (i & 4) != 0 ? box.Maximum.Z : box.Minimum.Z};
      const Vec3 at = Project(corner, aspect, 1);  // in parts of the height
      if (at.Z > 1) return;                        // too near to tell
      left = std::min(left, at.X), right = std::max(right, at.X);
      top = std::min(top, at.Y), bottom = std::max(bottom, at.Y);
    }
    const float reach = std::max((right - left) / aspect, bottom - top);
    if (!std::isfinite(reach) || reach <= 0) return;
    Pan((left + right - aspect) / 2, (1 - top - bottom) / 2);
    Zoom(reach / part);
  }
}

void Camera::Look(ViewSide side) {
  constexpr std::array<std::array<float, 2>, 6> Angles = {{{0, 0}, {180, 0}, {90, 0}, {270, 0}, {0, 90}, {0, -90}}};
  Yaw = Angles[static_cast<size_t>(side)][0];
  Pitch = Angles[static_cast<size_t>(side)][1];
}

Vec3 Camera::Forward() const {
  return {-Cosine(Pitch) * Cosine(Yaw), -Cosine(Pitch) * Sine(Yaw), -Sine(Pitch)};
}

Vec3 Camera::Right() const {
  return {-Sine(Yaw), Cosine(Yaw), 0};
}

Vec3 Camera::Up() const {
  return {-Sine(Pitch) * Cosine(Yaw), -Sine(Pitch) * Sine(Yaw), Cosine(Pitch)};
}

Vec3 Camera::Eye() const {
  return Target - Forward() * Distance;
}

Matrix44 Camera::ViewMatrix() const {
  const Vec3 right = Right(), up = Up(), forward = Forward(), eye = Eye();
  return {right.X, up.X, -forward.X, 0, right.Y,          up.Y,          -forward.Y,        0,
          right.Z, up.Z, -forward.Z, 0, -Dot(right, eye), -Dot(up, eye), Dot(forward, eye), 1};
}

Matrix44 Camera::ProjectionMatrix(float aspect) const {
  const float nearest = Distance * NearPart, farthest = Distance * FarPart;
  const float slope = Tangent(FieldOfView / 2);
  const float width = aspect > 0 ? aspect : 1;
  Matrix44 m{};
  if (IsOrthographic) {
    // What lies behind the camera is seen as well: there is no near side to a picture without perspective.
    m[0] = 1 / (slope * Distance * width);
    m[5] = 1 / (slope * Distance);
    m[10] = -1 / farthest;
    m[15] = 1;
  } else {
    m[0] = 1 / (slope * width);
    m[5] = 1 / slope;
    m[10] = -(farthest + nearest) / (farthest - nearest);
    m[11] = -1;
    m[14] = -2 * farthest * nearest / (farthest - nearest);
  }
  return m;
}

Matrix44 Camera::ClipMatrix(float aspect) const {
  return Multiply(ProjectionMatrix(aspect), ViewMatrix());
}

Vec3 Camera::Project(const Vec3& point, float width, float height) const {
  const Matrix44 m = ClipMatrix(height > 0 ? width / height : 1);
  const auto row = [&](size_t r) { return m[r] * point.X + m[4 + r] * point.Y + m[8 + r] * point.Z + m[12 + r]; };
  const float w = row(3);
  if (!(w > 0)) return {0, 0, 2};
  return {(row(0) / w + 1) / 2 * width, (1 - row(1) / w) / 2 * height, row(2) / w};
}

float Camera::UnitPixels(float height) const {
  return height / (2 * Distance * Tangent(FieldOfView / 2));
}

}  // namespace tarnwick::view
