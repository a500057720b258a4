#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "view/scene/scene.h"

namespace tarnwick::view {

/// A sequence that plays on top of the main one.
struct PoseLayer {
  int32_t Sequence = 0;
  float Cycle = 0;   // 0 at the first frame, 1 at the last
  float Weight = 1;  // 0 to 1

  bool operator==(const PoseLayer&) const = default;
};

/// What a model does at a moment.
struct PoseRequest {
  int32_t Sequence = -1;                   // -1: the rest pose
  float Cycle = 0;                         // 0 at the first frame, 1 at the last
  std::vector<float> PoseParameters = {};  // values between Start and End; those that are missing have their defaults
  std::vector<PoseLayer> Layers = {};      // in their order, on top
  bool Autoplay = true;                    // sequences that always play do
  float Seconds = 0;                       // the time that those play by
  bool Ik = true;                          // limbs that a sequence locks end where they stood ahead of it
  bool Swings = false;                     // jiggle bones go on from where they were at the Seconds of the pose before

  bool operator==(const PoseRequest&) const = default;
};

/// Where the bones of a scene stand. Keeps its room from one pose to the next, and some frames that were decoded.
/// Of inverse kinematics the locks are held. The rules of animations are not: what their errors count from is not
/// known.
class ScenePose {
 public:
  /// Begins with the rest pose. `scene` must outlive the pose.
  explicit ScenePose(const Scene& scene);
  ~ScenePose();
  ScenePose(ScenePose&&) noexcept;
  ScenePose& operator=(ScenePose&&) noexcept;

  /// Poses the bones. A sequence that the scene does not have counts as none. Whether any bone stands elsewhere than
  /// before: a picture of one that does not need not be drawn again.
  bool Set(const PoseRequest& request);

  /// Each bone's place in the model's space: what attachments, hit boxes and hulls are turned by.
  std::span<const Matrix34> Bones() const;
  /// What vertices are turned by: from where they stand at rest to where they stand now. As many as Bones(), at least
  /// one.
  std::span<const Matrix34> SkinMatrices() const;

 private:
  class Worker;
  std::unique_ptr<Worker> m_worker;
};

/// Where vertex `index` stands and its normal, moved by `skin` (ScenePose::SkinMatrices) from `point`.
ScenePoint SkinPoint(const ScenePoint& point, const SceneVertex& vertex, std::span<const Matrix34> skin);

/// The box of all vertices that `bodyGroups` and `lod` show, in a pose.
Box PosedBox(const Scene& scene, std::span<const Matrix34> skin, const std::vector<int32_t>& bodyGroups, int32_t lod);

}  // namespace tarnwick::view
