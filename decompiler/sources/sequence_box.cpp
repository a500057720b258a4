#include "decompiler/sources/sequence_box.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "model/animation_check.h"
#include "model/pose_player.h"
#include "model/rigid_transform.h"
#include "model/script_records.h"
#include "model/vertex_file.h"

namespace tarnwick::decompiler::sources {

namespace {

/// Points that are posed at the most: about a second's work.
constexpr int64_t MostPosedPoints = int64_t{1} << 25;

class BoxMaker {
 public:
  BoxMaker(JobContext& job, const Skeleton& skeleton) : m_job(job), m_skeleton(skeleton) {
    for (const RigidTransform& bone : RestPlacements(skeleton)) m_toBone.push_back(bone.Inverse());
    m_vertices = LoadVvdFile(job);
    if (m_vertices != nullptr && !m_vertices->HasVertices) m_vertices = nullptr;
    FindHitboxCorners();
  }

  /// Takes all frames of an animation. False if that cannot be.
  bool Take(const core::Record<StudioAnimDesc>& animation, int64_t number) {
    const auto& exports = m_job.Animations.Exports;
    const auto written = exports.find(number);
    if (written == exports.end() || written->second.State != AnimationFiles::Outcome::Written) return false;
    if ((animation->Flags & AnimFlagDelta) != 0) return false;
    const auto checked = CheckAnimation(m_job, animation, "");
    if (!checked) return false;
    PosePlayer player(m_skeleton.Bones, *checked);
    for (int32_t frame = 0; frame < animation->FrameCount; ++frame) {
      if (!player.GoTo(frame)) continue;
      if (!TakePose(player)) return false;
    }
    return true;
  }

  BoxOfPoints Box() const { return m_taken ? m_box : BoxOfPoints{}; }

 private:
  struct Corner {
    size_t Bone;
    Vec3 Place;
  };

  void FindHitboxCorners() {
    const auto header = m_job.Model.Header();
    const core::ImageView view = m_job.Model.View();
    const auto sets = view.Array<StudioHitboxSet>(header->HitboxSetOffset, header->HitboxSetCount);
    if (!sets || !m_job.Spend(sets->Count() * RecordCost)) return;
    for (const auto set : *sets) {
      const auto boxes = view.Array<StudioHitbox>(set.Offset() + set->HitboxOffset, set->HitboxCount);
      if (!boxes || !m_job.Spend(boxes->Count() * RecordCost)) continue;
      for (const auto box : *boxes) {
        if (!m_skeleton.Bones.Holds(box->Bone)) continue;
        const Vec3 least = box->Minimum, most = box->Maximum;
        for (int i = 0; i < 8; ++i) {
          m_corners.push_back(
              {static_cast<size_t>(box->Bone),
               {(i & 1) != 0 ? most.x : least.x, (i & 2) != 0 ? most.y : least.y, (i & 4) != 0 ? most.z : least.z}});
        }
      }
    }
  }

  bool TakePose(const PosePlayer& player) {
    const size_t count = m_toBone.size();
    const int64_t vertices = m_vertices == nullptr ? 0 : m_vertices->Vertices.Count();
    m_posed += vertices + static_cast<int64_t>(count + m_corners.size());
    if (m_posed > MostPosedPoints) return false;
    std::vector<RigidTransform> world(count), skin(count);
    for (size_t i = 0; i < count; ++i) {
      const RigidTransform local = RigidTransform::Of(player.Rotations()[i], player.Positions()[i]);
      const int32_t parent = m_skeleton.Bones[static_cast<int64_t>(i)]->Parent;
      const bool isRoot = parent < 0 || static_cast<size_t>(parent) >= i;
      world[i] = isRoot ? local : world[static_cast<size_t>(parent)] * local;
      skin[i] = world[i] * m_toBone[i];
      Take(world[i].Apply({0, 0, 0}));
    }
    for (const Corner& corner : m_corners) Take(world[corner.Bone].Apply(corner.Place));
    for (int64_t i = 0; i < vertices; ++i) {
      const auto vertex = m_vertices->Vertices[i];
      Vec3 posed = {0, 0, 0};
      for (int k = 0; k < std::min<int>(vertex->WeightCount, 3); ++k) {
        if (vertex->Bones[k] >= count) continue;
        const Vec3 place = skin[vertex->Bones[k]].Apply(vertex->Position);
        posed.x += vertex->Weights[k] * place.x;
        posed.y += vertex->Weights[k] * place.y;
        posed.z += vertex->Weights[k] * place.z;
      }
      Take(posed);
    }
    return true;
  }
  void Take(const Vec3& p) {
    if (!std::exchange(m_taken, true)) m_box = {p, p};
    m_box.Least = {std::min(m_box.Least.x, p.x), std::min(m_box.Least.y, p.y), std::min(m_box.Least.z, p.z)};
    m_box.Most = {std::max(m_box.Most.x, p.x), std::max(m_box.Most.y, p.y), std::max(m_box.Most.z, p.z)};
  }

  JobContext& m_job;
  const Skeleton& m_skeleton;
  std::vector<RigidTransform> m_toBone;
  const VertexImage* m_vertices = nullptr;
  std::vector<Corner> m_corners;
  BoxOfPoints m_box;
  bool m_taken = false;
  int64_t m_posed = 0;
};

}  // namespace

std::optional<BoxOfPoints> BoxOfFirstSequence(JobContext& job) {
  const auto header = job.Model.Header();
  const core::ImageView view = job.Model.View();
  if (header->SequenceCount <= 0 || header->BodyPartCount <= 0) return std::nullopt;
  const auto sequence = view.At<StudioSeqDesc>(header->SequenceOffset);
  const auto animations = view.Array<StudioAnimDesc>(header->AnimOffset, header->AnimCount);
  const Skeleton* skeleton = GetSkeleton(job);
  if (!sequence || !animations || skeleton == nullptr || skeleton->Count() == 0) return std::nullopt;
  const int64_t columns = (*sequence)->BlendSize[0], rows = (*sequence)->BlendSize[1];
  if (columns <= 0 || rows <= 0) return std::nullopt;
  const auto blends = view.Array<StudioShort>(sequence->Offset() + (*sequence)->BlendOffset, columns * rows);
  if (!blends || !job.Spend(blends->Count() * RecordCost)) return std::nullopt;
  BoxMaker maker(job, *skeleton);
  for (const auto entry : *blends) {
    if (!animations->Holds(entry->Value) || !maker.Take((*animations)[entry->Value], entry->Value)) return std::nullopt;
  }
  return maker.Box();
}

}  // namespace tarnwick::decompiler::sources
