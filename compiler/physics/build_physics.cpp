#include "compiler/physics/build_physics.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "compiler/mesh/corner_weights.h"
#include "compiler/physics/collision_pieces.h"
#include "compiler/physics/physics_text.h"
#include "compiler/skeleton/source_placement.h"
#include "core/number_parse.h"
#include "core/paths.h"
#include "model/phy_measures.h"
#include "model/phy_writer.h"
#include "qc/messages.h"

namespace tarnwick::compiler {

namespace {

/// Bytes that a corner takes while pieces are made, about; hulls cost more than that in time.
constexpr int64_t CornerCost = 600;

/// One rigid body to be.
struct Body {
  int32_t Bone = 0;
  int32_t Parent = -1;  // another body
  std::vector<CollisionCorner> Corners;
};

class PhysicsBuild {
 public:
  PhysicsBuild(CompileContext& context, const ModelBones& bones, BuiltPhysics& physics,
               const std::optional<model::RigidTransform>& rootPose)
      : m_context(context), m_plan(*context.Plan.Collision), m_bones(bones), m_physics(physics), m_rootPose(rootPose) {}

  bool Run() {
    const smd::SmdSource* source = m_context.Source(m_plan.Mesh.Source);
    if (source == nullptr || m_bones.Bones.empty()) return false;
    TellNotBuilt();
    if (!m_plan.RootBone.empty()) BoneNamed(m_plan.RootBone, "$rootbone");
    if (!m_context.Spend(static_cast<int64_t>(source->Corners.size()) * CornerCost, m_plan.At)) return false;
    FindMerges();
    GatherBodies(*source);
    OrderBodies();
    if (!MakeSolids()) return false;
    FindBoneSolids();
    std::vector<TextBody> bodies;
    bodies.reserve(m_bodies.size());
    for (size_t i = 0; i < m_bodies.size(); ++i) bodies.push_back({m_bodies[i].Bone, m_bodies[i].Parent, m_volumes[i]});
    m_physics.Text = MakePhysicsText(m_context, m_bones, bodies, m_target);
    m_physics.Mass = m_plan.Mass;
    return true;
  }

 private:
  void TellNotBuilt() {
    const auto tell = [&](const char* word) {
      m_context.Warning(m_plan.At, std::string(word) + " is not built", core::TroubleKind::Lost);
    };
    if (m_plan.AutoMass) tell("$automass");
    if (m_plan.MassCenter && m_plan.Joints) tell("$masscenter of joints");
    if (m_plan.Drag) tell("$drag");
#ifndef TARNWICK_HULLS
    m_context.Warning(m_plan.At, "this build makes no convex hulls: pieces have to be closed and convex as they stand",
                      core::TroubleKind::Lost);
#endif
  }

  /// The bone that a joint's statement names, or the one that took its place; -1, told, if there is none.
  int32_t BoneNamed(const std::string& name, const char* statement) {
    const int32_t bone = m_bones.Find(name);
    if (bone >= 0) return bone;
    qc::NearName near(name);
    for (const ModelBone& other : m_bones.Bones) near.Offer(other.Name);
    m_context.Warning(m_plan.At,
                      std::string(statement) + " names the bone " + qc::Shown(name) +
                          ", which the model does not have" + qc::DidYouMean(near.Best()),
                      core::TroubleKind::Missing);
    return -1;
  }

  void FindMerges() {
    m_target.resize(m_bones.Bones.size());
    for (size_t i = 0; i < m_target.size(); ++i) m_target[i] = static_cast<int32_t>(i);
    for (const auto& [into, other] : m_plan.Merged) {
      const int32_t first = BoneNamed(into, "$jointmerge"), second = BoneNamed(other, "$jointmerge");
      if (first < 0 || second < 0 || first == second) continue;
      if (m_bones.Named(other) >= 0) {
        m_target[static_cast<size_t>(second)] = first;
      } else {
        m_dropped[core::LowerAscii(other)] = first;
      }
    }
    // What was merged into a bone goes on with it; a ring of merges ends.
    for (int32_t& target : m_target) {
      for (size_t steps = 0; steps < m_target.size() && m_target[static_cast<size_t>(target)] != target; ++steps) {
        target = m_target[static_cast<size_t>(target)];
      }
    }
    for (const std::string& name : m_plan.Skipped) {
      const int32_t bone = BoneNamed(name, "$jointskip");
      if (bone < 0) continue;
      if (m_bones.Named(name) >= 0) {
        m_skipped[bone] = true;
      } else {
        m_dropped[core::LowerAscii(name)] = NoBody();
      }
    }
    m_target.push_back(NoBody());
    m_skipped[NoBody()] = true;
  }
  /// The number behind that of the last bone: triangles that no body gets.
  int32_t NoBody() const {
    return static_cast<int32_t>(m_bones.Bones.size());
  }

  /// The bones of a source's nodes. A node whose bone the model dropped is told apart from the bone that took its
  /// place: what a statement says of the one is not for the other.
  std::vector<int32_t> BonesOfNodes(const smd::SmdSource& source) const {
    std::vector<int32_t> bones = m_bones.OfNodes(source);
    for (size_t i = 0; i < bones.size() && !m_dropped.empty(); ++i) {
      const auto own = m_dropped.find(core::LowerAscii(source.Nodes[i].Name));
      if (own != m_dropped.end()) bones[i] = own->second;
    }
    return bones;
  }

  /// Where a point of the source stands in the space of its body.
  model::RigidTransform PlacementOf(int32_t bone) const {
    const model::RigidTransform quarter = model::RigidTransform::QuarterTurn();
    if (m_plan.AssumeWorldSpace && !m_plan.Joints) return {};
    if (m_bones.Static) return quarter;
    const model::RigidTransform& rest = m_bones.Bones[static_cast<size_t>(bone)].ToModel;
    if (m_plan.Joints) return rest.Inverse();
    if (m_rootPose && m_context.Options.KeepValues) return *m_rootPose * m_bones.Bones[0].ToModel.Inverse();
    return quarter;
  }

  static model::Vec3 Vector(const smd::Triple& t) {
    return {t.X, t.Y, t.Z};
  }

  static CollisionCorner CornerOf(const smd::SourceCorner& corner, const SourceUse& use,
                                  const std::optional<model::RigidTransform>& placement) {
    CollisionCorner made{Vector(corner.Position), Vector(corner.Normal)};
    if (use.Scale != 1) {
      made.Position = {made.Position.x * use.Scale, made.Position.y * use.Scale, made.Position.z * use.Scale};
    }
    if (placement) {
      made.Position = placement->Apply(made.Position);
      model::RigidTransform turn = *placement;
      turn.Move = {0, 0, 0};
      made.Normal = turn.Apply(made.Normal);
    }
    return made;
  }

  void GatherBodies(const smd::SmdSource& source) {
    const std::vector<int32_t> nodes = BonesOfNodes(source);
    std::map<int32_t, size_t> bodyOf;
    const auto placement = compiler::PlacementOf(m_plan.Mesh);
    for (size_t t = 0; 3 * t + 2 < source.Corners.size(); ++t) {
      int32_t bone = 0;
      if (m_plan.Joints && !m_bones.Static && !nodes.empty()) {
        bone = m_target[static_cast<size_t>(BoneOfTriangle(source, t, nodes))];
        if (m_skipped.count(bone) != 0) continue;
      }
      const auto [entry, isNew] = bodyOf.try_emplace(bone, m_bodies.size());
      if (isNew) m_bodies.push_back({bone, -1, {}});
      Body& body = m_bodies[entry->second];
      for (size_t k = 0; k < 3; ++k)
        body.Corners.push_back(CornerOf(source.Corners[3 * t + k], m_plan.Mesh, placement));
    }
    if (!m_plan.Joints && m_bodies.size() == 1) m_bodies[0].Bone = 0;
  }

  /// The bone that most of a triangle follows: of its corners' heaviest bones the one that is met most, the first of
  /// equally many.
  int32_t BoneOfTriangle(const smd::SmdSource& source, size_t t, const std::vector<int32_t>& nodes) const {
    int32_t bones[3];
    for (size_t k = 0; k < 3; ++k) {
      bones[k] = WeightsOfCorner(source, source.Corners[3 * t + k], nodes, m_context.Options.KeepValues).Bones[0];
    }
    return bones[1] == bones[2] ? bones[1] : bones[0];
  }

  /// Finds the parents, and puts the bodies in order: the root, those that joint statements name, in the order in which
  /// they do first, then the others by their bones.
  void OrderBodies() {
    std::sort(m_bodies.begin(), m_bodies.end(), [](const Body& a, const Body& b) { return a.Bone < b.Bone; });
    std::vector<size_t> order;
    std::vector<bool> taken(m_bodies.size());
    const auto take = [&](size_t body) {
      if (body < m_bodies.size() && !taken[body]) {
        taken[body] = true;
        order.push_back(body);
      }
    };
    const auto bodyOf = [&](int32_t bone) {
      const auto found =
          std::lower_bound(m_bodies.begin(), m_bodies.end(), bone, [](const Body& a, int32_t b) { return a.Bone < b; });
      return found != m_bodies.end() && found->Bone == bone ? static_cast<size_t>(found - m_bodies.begin())
                                                            : m_bodies.size();
    };
    for (size_t i = 0; i < m_bodies.size(); ++i) {
      if (AncestorBody(m_bodies[i].Bone, bodyOf) == m_bodies.size()) {
        take(i);
        break;
      }
    }
    for (const std::string& name : m_plan.NamedBones) {
      const int32_t bone = m_bones.Named(name);
      if (bone >= 0) take(bodyOf(bone));
    }
    for (size_t i = 0; i < m_bodies.size(); ++i) take(i);
    std::vector<size_t> places(m_bodies.size());
    for (size_t i = 0; i < order.size(); ++i) places[order[i]] = i;
    std::vector<Body> ordered;
    ordered.reserve(order.size());
    for (const size_t i : order) {
      const size_t parent = AncestorBody(m_bodies[i].Bone, bodyOf);
      if (parent < m_bodies.size()) m_bodies[i].Parent = static_cast<int32_t>(places[parent]);
    }
    for (const size_t i : order) ordered.push_back(std::move(m_bodies[i]));
    m_bodies = std::move(ordered);
  }

  template <typename BodyOf>
  size_t AncestorBody(int32_t bone, const BodyOf& bodyOf) const {
    for (bone = m_bones.Bones[static_cast<size_t>(bone)].Parent; bone >= 0;
         bone = m_bones.Bones[static_cast<size_t>(bone)].Parent) {
      const size_t body = bodyOf(bone);
      if (body < m_bodies.size()) return body;
    }
    return m_bodies.size();
  }

  PieceRule RuleOfPieces() const {
    PieceRule rule;
    rule.NormalAngle = m_context.Options.NormalAngle;
    rule.KeepClosed = m_context.Options.KeepValues;
    rule.Split =
        m_plan.Joints ? m_plan.ConcavePerJoint || (m_plan.Concave && m_context.Options.KeepValues) : m_plan.Concave;
#ifndef TARNWICK_HULLS
    rule.KeepClosed = true;
    rule.Split = true;
#endif
    return rule;
  }

  std::string NameOf(const Body& body) const {
    return NameOfBody(m_plan, m_bones, body.Bone);
  }

  bool MakeSolids() {
    std::vector<Body> made;
    std::vector<int32_t> newPlaces(m_bodies.size(), -1);
    for (size_t i = 0; i < m_bodies.size(); ++i) {
      if (MakeSolid(m_bodies[i])) {
        newPlaces[i] = static_cast<int32_t>(made.size());
        made.push_back(m_bodies[i]);
      }
    }
    for (Body& body : made) {
      int32_t parent = body.Parent;
      while (parent >= 0 && newPlaces[static_cast<size_t>(parent)] < 0)
        parent = m_bodies[static_cast<size_t>(parent)].Parent;
      body.Parent = parent < 0 ? -1 : newPlaces[static_cast<size_t>(parent)];
    }
    m_bodies = std::move(made);
    if (m_bodies.empty()) {
      m_context.Warning(m_plan.At,
                        "the collision mesh " + qc::Shown(m_plan.Mesh.Name) +
                            " has no body with a volume; the model has no collision model",
                        core::TroubleKind::Lost);
    }
    return !m_bodies.empty();
  }

  /// Makes the bytes of a body's solid. False if it has no piece; what the format cannot hold is an error.
  bool MakeSolid(const Body& body) {
    const model::RigidTransform placement = PlacementOf(body.Bone);
    std::vector<CollisionCorner> corners = body.Corners;
    for (CollisionCorner& corner : corners) corner.Position = placement.Apply(corner.Position);
    std::vector<CollisionPiece> pieces = PiecesOf(corners, RuleOfPieces());
    if (m_plan.MostPieces > 0 && pieces.size() > static_cast<size_t>(m_plan.MostPieces)) {
      m_context.Warning(m_plan.At,
                        qc::Shown(NameOf(body)) + " has " + std::to_string(pieces.size()) +
                            " convex pieces, more than $maxconvexpieces allows; it becomes one",
                        core::TroubleKind::Limit);
      PieceRule whole = RuleOfPieces();
      whole.Split = false;
      whole.KeepClosed = false;
      pieces = PiecesOf(corners, whole);
    }
    if (!m_plan.Joints) AddMorePieces(placement, pieces);
    if (pieces.empty()) {
      m_context.Warning(m_plan.At,
                        "the collision body " + qc::Shown(NameOf(body)) +
                            " is flat, or has more points than a solid can hold; it is left out",
                        core::TroubleKind::Lost);
      return false;
    }
    if (!SpendOn(pieces)) return false;
    std::vector<model::PhyCorners> hull;
    const model::PhySolid solid = SolidOf(pieces, m_plan.Joints ? body.Bone + 1 : 0, hull);
    std::string reason;
    std::optional<model::PhyVector> centre;
    if (m_plan.MassCenter && !m_plan.Joints) {
      const model::Vec3 place = model::ModelToPhy(placement.Apply(*m_plan.MassCenter));
      const auto isNear = [](float value) { return std::abs(value) <= model::FarthestPhyCoordinate; };
      if (isNear(place.x) && isNear(place.y) && isNear(place.z)) {
        centre = {double{place.x}, double{place.y}, double{place.z}};
      } else {
        m_context.Warning(m_plan.At, "the $masscenter lies farther away than any body reaches; it is left out");
      }
    }
    auto bytes = model::WritePhySolid(solid, hull, &reason, centre ? &*centre : nullptr);
    if (!bytes) {
      m_context.Error(m_plan.At, "the collision body " + qc::Shown(NameOf(body)) + " cannot be written: " + reason,
                      core::TroubleKind::Limit);
      return false;
    }
    m_physics.Solids.push_back(std::move(*bytes));
    m_volumes.push_back(static_cast<float>(model::MeasurePhySolid(solid).CubicInches));
    if (!m_plan.Joints) {
      for (const CollisionPiece& piece : pieces) {
        for (const model::Vec3& point : piece.Points) AddToBox(point);
      }
    }
    return true;
  }

  /// Pays for what a surface's derived values cost: the cells of half an inch that its triangles cross, and the look
  /// for the triangle across each.
  bool SpendOn(const std::vector<CollisionPiece>& pieces) {
    double steps = 0;
    for (const CollisionPiece& piece : pieces) {
      const auto triangles = static_cast<double>(piece.Triangles.size());
      double size = 0;
      for (const model::Vec3& p : piece.Points) {
        for (const float value : {float{p.x}, float{p.y}, float{p.z}}) size = std::max(size, std::abs(double{value}));
      }
      steps += triangles * triangles + triangles * std::min(size, 1e6) * 4;
    }
    return m_context.Spend(static_cast<int64_t>(std::min(steps * 4, 1e15)), m_plan.At);
  }

  void AddToBox(const model::Vec3& point) {
    if (!m_physics.Box) m_physics.Box = {point, point};
    auto& [low, high] = *m_physics.Box;
    low = {std::min<float>(low.x, point.x), std::min<float>(low.y, point.y), std::min<float>(low.z, point.z)};
    high = {std::max<float>(high.x, point.x), std::max<float>(high.y, point.y), std::max<float>(high.z, point.z)};
  }

  /// Three numbers behind `word[` in the text of an $addconvexsrc.
  static std::optional<model::Vec3> NumbersBehind(std::string_view text, std::string_view word) {
    const size_t at = core::LowerAscii(text).find(word);
    if (at == std::string::npos) return std::nullopt;
    text.remove_prefix(at + word.size());
    float values[3] = {0, 0, 0};
    for (float& value : values) {
      const size_t begin = text.find_first_of("-+.0123456789");
      if (begin == std::string_view::npos || text.substr(0, begin).find(']') != std::string_view::npos)
        return std::nullopt;
      text.remove_prefix(begin);
      const size_t end = std::min(text.find_first_not_of("-+.0123456789eE"), text.size());
      value = static_cast<float>(std::strtod(std::string(text.substr(0, end)).c_str(), nullptr));
      if (!std::isfinite(value)) return std::nullopt;
      text.remove_prefix(end);
    }
    return model::Vec3{values[0], values[1], values[2]};
  }

  void AddMorePieces(const model::RigidTransform& placement, std::vector<CollisionPiece>& pieces) {
    constexpr float Degree = 3.14159265358979323846f / 180;
    for (const auto& [use, words] : m_plan.MorePieces) {
      const smd::SmdSource* source = m_context.Source(use.Source);
      if (source == nullptr) continue;
      if (!m_context.Spend(static_cast<int64_t>(source->Corners.size()) * CornerCost, use.At)) return;
      const model::Vec3 move = NumbersBehind(words, "pos[").value_or(model::Vec3{0, 0, 0});
      const model::Vec3 turn = NumbersBehind(words, "angle[").value_or(model::Vec3{0, 0, 0});
      // Pitch, yaw and roll, as everywhere in the language.
      const model::RigidTransform moved =
          placement *
          model::RigidTransform::Of(model::EulerAngles{turn.z * Degree, turn.x * Degree, turn.y * Degree}, move);
      const auto placed = compiler::PlacementOf(use);
      std::vector<CollisionCorner> corners;
      corners.reserve(source->Corners.size());
      for (const smd::SourceCorner& corner : source->Corners) {
        corners.push_back(CornerOf(corner, use, placed));
        corners.back().Position = moved.Apply(corners.back().Position);
      }
      PieceRule rule = RuleOfPieces();
      rule.Split = false;
      auto more = PiecesOf(corners, rule);
      if (more.empty()) {
        m_context.Warning(use.At, "the convex piece " + qc::Shown(use.Name) + " is flat; it is left out",
                          core::TroubleKind::Lost);
      }
      for (CollisionPiece& piece : more) pieces.push_back(std::move(piece));
    }
  }

  /// A bone has the number of its own solid, else that of the nearest ancestor with one, else 0.
  void FindBoneSolids() {
    m_physics.BoneSolids.assign(m_bones.Bones.size(), 0);
    if (!m_plan.Joints) return;
    std::vector<int32_t> nearest(m_bones.Bones.size(), -1);
    for (size_t i = 0; i < m_bodies.size(); ++i)
      nearest[static_cast<size_t>(m_bodies[i].Bone)] = static_cast<int32_t>(i);
    for (size_t i = 0; i < nearest.size(); ++i) {
      const int32_t parent = m_bones.Bones[i].Parent;
      if (nearest[i] < 0 && parent >= 0 && static_cast<size_t>(parent) < i)
        nearest[i] = nearest[static_cast<size_t>(parent)];
      m_physics.BoneSolids[i] = std::max(nearest[i], 0);
    }
  }

  CompileContext& m_context;
  const PlanCollision& m_plan;
  const ModelBones& m_bones;
  BuiltPhysics& m_physics;
  const std::optional<model::RigidTransform>& m_rootPose;
  std::vector<int32_t> m_target;  // of a bone: the bone that its triangles are merged into
  std::map<int32_t, bool> m_skipped;
  std::map<std::string, int32_t> m_dropped;  // names, in small letters, of dropped bones: where their triangles go
  std::vector<Body> m_bodies;
  std::vector<float> m_volumes;  // cubic inches
};

}  // namespace

bool BuildPhysics(CompileContext& context, const ModelBones& bones, BuiltPhysics& physics,
                  const std::optional<model::RigidTransform>& rootPose) {
  return PhysicsBuild(context, bones, physics, rootPose).Run();
}

}  // namespace tarnwick::compiler
