#include "decompiler/sources/sequence_box.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <utility>
#include <vector>

#include "decompiler/sources/posed_vertices.h"
#include "model/animation_check.h"
#include "model/pose_player.h"
#include "model/rigid_transform.h"
#include "model/script_records.h"
#include "model/vertex_file.h"

namespace tarnwick::decompiler::sources {

namespace {

/// Points that are posed at the most: about a second's work.
constexpr int64_t MostPosedPoints = int64_t{1} << 25;

/// The array of a file without fix-ups goes on to the end of the file, where the tangents lie.
int64_t CountOfVertices(const VertexImage& image) {
  const int64_t all = image.Vertices.Count();
  if (!image.Rebuilt.empty()) return all;
  const auto header = image.File.View().At<VvdHeader>(0);
  const int64_t told = header ? (*header)->LodVertexCount[0] : 0;
  return told > 0 ? std::min(told, all) : all;
}

class BoxMaker {
 public:
  BoxMaker(JobContext& job, const Skeleton& skeleton) : m_job(job), m_skeleton(skeleton) {
    for (const RigidTransform& bone : RestPlacements(skeleton)) m_toBone.push_back(bone.Inverse());
    m_vertices = LoadVvdFile(job);
    if (m_vertices != nullptr && !m_vertices->HasVertices) m_vertices = nullptr;
    if (m_vertices != nullptr) m_vertexCount = CountOfVertices(*m_vertices);
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
    m_posed += m_vertexCount + static_cast<int64_t>(count + m_corners.size());
    if (m_posed > MostPosedPoints) return false;
    const bool isFirst = m_skin.empty();
    m_world.resize(count);
    m_skin.resize(count);
    m_placements.resize(count);
    for (size_t i = 0; i < count; ++i) {
      const RigidTransform local = RigidTransform::Of(player.Rotations()[i], player.Positions()[i]);
      const int32_t parent = m_skeleton.Bones[static_cast<int64_t>(i)]->Parent;
      const bool isRoot = parent < 0 || static_cast<size_t>(parent) >= i;
      m_world[i] = isRoot ? local : m_world[static_cast<size_t>(parent)] * local;
      const RigidTransform skin = m_world[i] * m_toBone[i];
      m_placements[i] = BonePlacement::Of(skin, isFirst || skin.Turn != m_skin[i].Turn || skin.Move != m_skin[i].Move);
      m_skin[i] = skin;
      Take(m_world[i].Apply({0, 0, 0}));
    }
    for (const Corner& corner : m_corners) Take(m_world[corner.Bone].Apply(corner.Place));
    if (m_vertexCount > 0 && m_taken) {
      const std::span<const VvdVertex> all(&*m_vertices->Vertices[0], static_cast<size_t>(m_vertexCount));
      TakePosedVertices(isFirst ? all : MovedOf(all), m_placements, m_box);
    }
    return true;
  }

  /// The vertices of the bones that have moved, of which there are mostly few, and the same from pose to pose.
  std::span<const VvdVertex> MovedOf(std::span<const VvdVertex> all) {
    std::vector<bool> moved;
    for (const BonePlacement& bone : m_placements) moved.push_back(bone.Moved);
    if (moved != m_movedBones) {
      m_movedBones = std::move(moved);
      m_movedVertices.clear();
      std::copy_if(all.begin(), all.end(), std::back_inserter(m_movedVertices),
                   [&](const VvdVertex& vertex) { return HasMoved(vertex, m_placements); });
    }
    return m_movedVertices;
  }

  void Take(const Vec3& p) {
    if (!std::exchange(m_taken, true)) m_box = {p, p};
    m_box.Least = {std::min(m_box.Least.x, p.x), std::min(m_box.Least.y, p.y), std::min(m_box.Least.z, p.z)};
    m_box.Most = {std::max(m_box.Most.x, p.x), std::max(m_box.Most.y, p.y), std::max(m_box.Most.z, p.z)};
  }

  JobContext& m_job;
  const Skeleton& m_skeleton;
  std::vector<RigidTransform> m_toBone;
  std::vector<RigidTransform> m_world;      // of the pose that is being taken
  std::vector<RigidTransform> m_skin;       // where it brings the vertices of each bone
  std::vector<BonePlacement> m_placements;  // the same
  std::vector<bool> m_movedBones;           // of the pose for which the vertices behind were sought
  std::vector<VvdVertex> m_movedVertices;
  const VertexImage* m_vertices = nullptr;
  int64_t m_vertexCount = 0;
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
