#include "decompiler/sources/physics.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <span>
#include <utility>

#include "core/paths.h"
#include "decompiler/sources/collision_statement.h"
#include "decompiler/sources/script_values.h"
#include "decompiler/stages/animation_file.h"
#include "decompiler/stages/reference_skeleton.h"
#include "decompiler/writers/mesh_names.h"
#include "decompiler/writers/physics_smd.h"
#include "model/animation_check.h"
#include "model/phy_file.h"
#include "model/phy_measures.h"
#include "model/pose_player.h"
#include "model/rigid_transform.h"

namespace tarnwick::decompiler::sources {

namespace {

/// Bytes of a triangle's four lines, about, and of what stands for it in memory.
constexpr int64_t TriangleCost = 360;

/// The point that the six decimals of a source file tell. What is derived from it then comes out the same when the
/// model that a compile makes of the file is taken apart.
Vec3 AsWritten(const Vec3& p) {
  const auto written = [](float value) { return static_cast<float>(std::round(double{value} * 1e6) / 1e6); };
  return {written(p.x), written(p.y), written(p.z)};
}

/// The file beside the model; nothing if it has none.
std::optional<core::FileImage> LoadPhysics(JobContext& job) {
  const std::string& modelPath = job.Model.Mdl.Path();
  const std::string wanted = modelPath.substr(0, modelPath.size() - std::min<size_t>(4, modelPath.size())) + ".phy";
  const auto path = job.Files().FindCompanion(wanted);
  if (!path) return std::nullopt;
  std::string reason;
  auto file = job.Files().Read(*path, &reason);
  if (file) {
    DecompileLog(job, "Loaded physics " + *path + "\r\n");
  } else {
    job.LogError("Unable to read " + *path + ": " + reason, core::TroubleKind::Unreadable, "Unable to read physics");
    job.Script().Text("// the physics file cannot be read\n");
  }
  return file;
}

/// Where the root bone stands in the first frame of the first sequence, as the animation's file has it, in the model's
/// own directions. Nothing if there is no such frame.
std::optional<RigidTransform> FirstRootPose(JobContext& job, const Skeleton& skeleton) {
  const core::ImageView view = job.Model.View();
  const auto header = job.Model.Header();
  if (header->SequenceCount <= 0 || skeleton.Count() == 0) return std::nullopt;
  const auto sequence = view.At<StudioSeqDesc>(header->SequenceOffset);
  const auto animations = view.Array<StudioAnimDesc>(header->AnimOffset, header->AnimCount);
  if (!sequence || !animations) return std::nullopt;
  const auto number = view.Value<int16_t>(sequence->Offset() + (*sequence)->BlendOffset);
  if (!number || !animations->Holds(*number)) return std::nullopt;
  const auto animation = (*animations)[*number];
  if (animation->FrameCount <= 0 || (animation->Flags & AnimFlagDelta) != 0) return std::nullopt;
  const auto name = job.Model.NameOf(animation, animation->NameOffset);
  const auto checked = CheckAnimation(job, animation, name.value_or(""));
  if (!checked) return std::nullopt;
  PosePlayer player(skeleton.Bones, *checked);
  player.GoTo(0);
  const auto* text = GetAnimationSmdModel(job);
  if (text != nullptr && player.RotationPacked(0)) {
    if (auto typed = TypedAnglesOf(*text, *skeleton.Bones[0], player.Rotations()[0])) {
      if (text->TurnRoots) typed->z += RootTurnZ;
      return RigidTransform::Of(*typed, player.Positions()[0]);
    }
  }
  return RigidTransform::Of(player.Rotations()[0], player.Positions()[0]);
}

/// Whether the mass centre is another than that which follows from the pieces, which it meets within 0.0001 of the
/// radius in sound files.
bool HasOwnCentre(const PhySolid& solid) {
  constexpr double Part = 0.0002;
  if (!solid.MassCentre) return false;
  const Vec3 stored = *solid.MassCentre;
  const PhyCentre made = CentreOfPieces(solid);
  const double off = std::hypot(stored.x - made.Place[0], stored.y - made.Place[1], stored.z - made.Place[2]);
  return off > Part * made.Radius && std::abs(stored.x) <= FarthestPhyCoordinate &&
         std::abs(stored.y) <= FarthestPhyCoordinate && std::abs(stored.z) <= FarthestPhyCoordinate;
}

/// Which bone has the name; in letters of either case where none has it as it stands. -1 for none.
int32_t BoneNamed(const Skeleton& skeleton, std::string_view name) {
  const auto& names = skeleton.Names;
  auto found = std::find(names.begin(), names.end(), name);
  if (found == names.end()) {
    found = std::find_if(names.begin(), names.end(),
                         [&](std::string_view other) { return core::EqualIgnoringCase(other, name); });
  }
  return found == names.end() ? -1 : static_cast<int32_t>(found - names.begin());
}

class PhysicsExport {
 public:
  PhysicsExport(JobContext& job, const Skeleton& skeleton, const std::string& path, PhyFile file)
      : m_job(job), m_skeleton(skeleton), m_path(path), m_file(std::move(file)) {}

  /// Whether the script has the statement.
  bool Run() {
    m_collision.Values =
        TakePhyValues(m_file.Text, static_cast<int64_t>(m_file.Solids.size()), m_path, m_job.Troubles());
    if (!TakeSolids()) return false;
    FindParents();
    if (!GatherMeshes()) return false;
    if (m_meshes.empty()) {
      m_job.Script().Text("// the physics file has no solid that can be read\n");
      return false;
    }
    NameFile();
    if (!WriteFile()) return false;
    WriteCollisionStatement(m_job, m_collision);
    WriteCollisionText(m_job, m_collision.Values.Others);
    CountSurfaces();
    return true;
  }

 private:
  /// Puts form and text of each solid together. False if there is none.
  bool TakeSolids() {
    std::vector<PhySolidValues> values = std::move(m_collision.Values.Solids);
    const size_t count = m_file.Solids.size();
    if (values.size() > count) {
      m_job.Lose("physics solids without a form", static_cast<int64_t>(values.size() - count));
    }
    values.resize(count);
    m_collision.IsJoined = count > 1 || (count == 1 && BelongsToBone(m_file.Solids[0], values[0].Name));
    for (size_t i = 0; i < count; ++i) {
      SourceSolid solid{.Values = std::move(values[i])};
      if (m_file.Solids[i]) solid.PieceCount = m_file.Solids[i]->Pieces.size();
      if (m_collision.IsJoined) FindBone(solid, i);
      m_collision.Solids.push_back(std::move(solid));
    }
    return count > 0;
  }

  /// Whether a model's only solid is that of a bone: it has the bone's name, and its pieces have the bone's number.
  bool BelongsToBone(const std::optional<PhySolid>& solid, const std::string& name) const {
    if (BoneNamed(m_skeleton, name) < 0) return false;
    return !solid || solid->Pieces.empty() || solid->Pieces.front().BoneNumber != 0;
  }

  void FindBone(SourceSolid& solid, size_t index) {
    int32_t bone = BoneNamed(m_skeleton, solid.Values.Name);
    if (bone < 0 && m_file.Solids[index]) {
      const int32_t number = m_file.Solids[index]->Pieces.front().BoneNumber - 1;
      if (solid.Values.Name.empty() && m_skeleton.Bones.Holds(number)) bone = number;
    }
    if (bone < 0) {
      m_job.Warn("Physics solid " + std::to_string(index) + " belongs to \"" + solid.Values.Name +
                     "\", a bone that the model has not; it goes on bone 0",
                 core::TroubleKind::Mismatch);
      bone = 0;
    }
    solid.Bone = bone;
    if (m_skeleton.Bones.Holds(bone)) solid.Values.Name = m_skeleton.Names[static_cast<size_t>(bone)];
  }

  /// Finds each solid's parent: that of the nearest bone above its own that has one.
  void FindParents() {
    std::vector<int32_t> solidOf(static_cast<size_t>(m_skeleton.Count()), -1);  // of the bone or one above it
    for (size_t i = 0; i < m_collision.Solids.size(); ++i) {
      const auto bone = static_cast<size_t>(m_collision.Solids[i].Bone);
      if (bone < solidOf.size()) solidOf[bone] = static_cast<int32_t>(i);
    }
    std::vector<int32_t> above(solidOf.size(), -1);
    for (size_t bone = 0; bone < solidOf.size(); ++bone) {
      const int32_t parent = m_skeleton.Bones[static_cast<int64_t>(bone)]->Parent;
      if (parent < 0 || static_cast<size_t>(parent) >= bone) continue;
      above[bone] = solidOf[static_cast<size_t>(parent)];
      if (solidOf[bone] < 0) solidOf[bone] = above[bone];
    }
    for (SourceSolid& solid : m_collision.Solids) {
      const auto bone = static_cast<size_t>(solid.Bone);
      solid.Parent = m_collision.IsJoined && bone < above.size() ? above[bone] : -1;
    }
  }

  /// Where the source file has a point of a solid: in a joined model on its bone at rest; in a single one in the model
  /// at rest, since the file has it where the first frame of the first sequence puts it. A compile turns a static model
  /// by a quarter about Z.
  RigidTransform PlacementOf(const SourceSolid& solid, const std::vector<RigidTransform>& rest) {
    const RigidTransform turnedBack = RigidTransform::QuarterTurn().Inverse();
    if ((m_job.Model.Header()->Flags & ModelFlagStatic) != 0) return turnedBack;
    if (m_collision.IsJoined) return rest[static_cast<size_t>(solid.Bone)];
    if (rest.empty() || m_job.WithoutAnimations()) return turnedBack;
    const auto pose = FirstRootPose(m_job, m_skeleton);
    return pose ? rest[0] * pose->Inverse() : turnedBack;
  }

  bool GatherMeshes() {
    const std::vector<RigidTransform> rest = RestPlacements(m_skeleton);
    if (rest.empty()) return false;
    int64_t triangles = 0;
    for (const auto& solid : m_file.Solids) {
      if (!solid) continue;
      for (const PhyPiece& piece : solid->Pieces) triangles += static_cast<int64_t>(piece.Triangles.size());
    }
    if (!m_job.Spend(FileCost + TriangleCost * triangles)) return false;
    for (size_t i = 0; i < m_file.Solids.size(); ++i) {
      SourceSolid& source = m_collision.Solids[i];
      if (!m_file.Solids[i]) {
        m_job.Script().Text("// physics solid " + std::to_string(i) + " is left out, since it cannot be read\n");
        m_job.Lose("physics solids that cannot be read");
        continue;
      }
      PhySolid& solid = *m_file.Solids[i];
      const RigidTransform placement = PlacementOf(source, rest);
      if (HasOwnCentre(solid)) {
        if (m_collision.IsJoined) {
          m_job.Lose("mass centres of joined physics solids");
        } else {
          m_collision.MassCentre = placement.Apply(PhyToModel(*solid.MassCentre));
        }
      }
      PhysicsMesh mesh{.Bone = source.Bone, .Points = std::move(solid.Points), .Pieces = std::move(solid.Pieces)};
      for (Vec3& point : mesh.Points) point = AsWritten(placement.Apply(PhyToModel(point)));
      m_job.Lose("copies of physics pieces", RemoveCopies(mesh));
      source.IsWritten = true;
      source.PieceCount = mesh.Pieces.size();
      m_meshes.push_back(std::move(mesh));
    }
    return true;
  }

  /// The single solid is named after its file; the file of a joined model, after the model. Many a collision model was
  /// made of the very mesh that is shown: its file then has the other ending that a compile takes for a physics mesh.
  void NameFile() {
    constexpr std::string_view Extension = ".smd";
    constexpr std::string_view PhysicsExtension = ".phys";
    const std::string model(FileStem(core::LastComponent(core::FixedText(m_job.Model.Header()->Name))));
    const std::string& solid = m_collision.Solids.front().Values.Name;
    const std::string stem = CleanFileName(m_collision.IsJoined || solid.empty() ? model : solid);
    const bool named = !m_collision.IsJoined && stem == solid;
    if (m_job.Names.IsFree(stem + std::string(Extension))) {
      m_collision.File = m_job.Names.Take(stem, Extension);
    } else if (named && m_job.Names.IsFree(stem + std::string(PhysicsExtension))) {
      m_collision.File = m_job.Names.Take(stem, PhysicsExtension);
    } else {
      m_collision.File = m_job.Names.Take(stem + "_physics", Extension);
    }
    if (!m_collision.IsJoined && std::string_view(m_collision.File).substr(0, m_collision.File.rfind('.')) != solid) {
      m_job.Lose("names of a single physics solid that its file cannot have");
    }
  }

  bool WriteFile() {
    const auto skeleton = FormatReferenceSkeleton(m_job);
    if (skeleton == nullptr) return false;
    std::string reason;
    auto file = m_job.Create(m_collision.File, &reason);
    if (!file) {
      m_job.Error("Error opening " + m_job.OutputPath(m_collision.File) + ": " + reason, "File Error",
                  core::TroubleKind::Unwritable, m_job.OutputPath(m_collision.File), "Error opening a physics file");
      return false;
    }
    DecompileLog(m_job, "Creating " + m_job.OutputPath(m_collision.File) + "\r\n");
    auto meshes = std::make_shared<const std::vector<PhysicsMesh>>(std::move(m_meshes));
    m_job.WriteFile(std::move(*file), [skeleton, meshes](core::TextWriter& writer) {
      smd::WriteReferenceHead(writer, *skeleton);
      WritePhysicsTriangles(writer, *meshes);
      writer.Text("end\n");
      return true;
    });
    m_job.FinishFiles();
    return true;
  }

  /// The surface property of a solid is that of its bone, for which other statements stand.
  void CountSurfaces() {
    const std::string_view whole = m_job.Model.Name(m_job.Model.Header()->SurfacePropOffset).value_or("");
    for (const SourceSolid& solid : m_collision.Solids) {
      std::string_view surface = whole;
      if (m_collision.IsJoined && m_skeleton.Bones.Holds(solid.Bone)) {
        const auto bone = m_skeleton.Bones[solid.Bone];
        if (bone->SurfacePropOffset != 0) surface = m_job.Model.NameOf(bone, bone->SurfacePropOffset).value_or(whole);
      }
      if (!core::EqualIgnoringCase(surface, solid.Values.SurfaceProp)) {
        m_job.Lose("surface properties of physics solids that their bones do not have");
      }
    }
  }

  JobContext& m_job;
  const Skeleton& m_skeleton;
  const std::string& m_path;
  PhyFile m_file;
  Collision m_collision;
  std::vector<PhysicsMesh> m_meshes;
};

}  // namespace

bool WritePhysics(JobContext& job) {
  if (job.WithoutPhysics() || job.Stopped()) return false;
  const auto image = LoadPhysics(job);
  if (!image) {
    // Without a collision model there is no statement for a mass.
    if (job.Model.Header()->Mass != 1) job.Lose("masses of physics that are not there");
    return false;
  }
  const Skeleton* skeleton = GetSkeleton(job);
  auto file = ReadPhyFile(image->View(), image->Path(), job.Troubles());
  if (!file || skeleton == nullptr) {
    job.Script().Text("// the physics file cannot be read\n");
    return false;
  }
  if (file->Checksum != static_cast<uint32_t>(job.Model.Header()->Checksum)) {
    job.Warn(image->Path() + " was not made together with " + job.Model.Mdl.Path() +
                 " (they have different checksums); the physics may be wrong",
             core::TroubleKind::Mismatch);
  }
  return PhysicsExport(job, *skeleton, image->Path(), std::move(*file)).Run();
}

}  // namespace tarnwick::decompiler::sources
