#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <string_view>
#include <unordered_map>

#include "core/paths.h"
#include "smd/smd_reader.h"
#include "view/scene/complete_scene.h"
#include "view/scene/frame_source.h"
#include "view/scene/make_scene.h"

namespace tarnwick::view {

namespace {

/// Speed of a sequence whose file does not say one.
constexpr float SmdFps = 30;

Vec3 VectorOf(const smd::Triple& t) {
  return {t.X, t.Y, t.Z};
}

BonePose PoseOf(const smd::SourcePose& pose) {
  return {QuatOfAngles(VectorOf(pose.Rotation)), VectorOf(pose.Position)};
}

/// The frames of an SMD file, as they are read, in the order of the scene's bones.
class SmdFrames : public FrameSource {
 public:
  SmdFrames(int32_t frames, std::vector<smd::SourcePose> poses, std::vector<size_t> nodes,
            const std::vector<SceneBone>& bones, const Quat& turn)
      : m_frames(frames), m_nodes(std::move(nodes)), m_poses(std::move(poses)), m_turn(turn) {
    for (const SceneBone& bone : bones) m_isRoot.push_back(bone.Parent < 0);
  }

  void Read(int32_t /*animation*/, int32_t first, std::span<BonePose> poses) override {
    const size_t bones = m_nodes.size();
    const Matrix34 turn = MatrixOf(m_turn, {});
    for (size_t i = 0; i < poses.size(); ++i) {
      const auto frame = static_cast<size_t>(std::clamp(first + static_cast<int32_t>(i / bones), 0, m_frames - 1));
      BonePose pose = PoseOf(m_poses[frame * bones + m_nodes[i % bones]]);
      if (m_isRoot[i % bones]) pose = {m_turn * pose.Rotation, TransformPoint(turn, pose.Position)};
      poses[i] = pose;
    }
  }

 private:
  int32_t m_frames;
  std::vector<size_t> m_nodes;  // of each bone
  std::vector<smd::SourcePose> m_poses;
  std::vector<bool> m_isRoot;
  Quat m_turn;
};

/// The nodes in an order in which each stands behind its parent; those of a circle count as roots.
std::vector<size_t> ParentsFirst(const std::vector<smd::SourceNode>& nodes, std::vector<int32_t>& places) {
  std::vector<size_t> order;
  places.assign(nodes.size(), -1);
  const auto place = [&](size_t node) {
    places[node] = static_cast<int32_t>(order.size());
    order.push_back(node);
  };
  for (size_t first = 0; first < nodes.size(); ++first) {
    std::vector<size_t> chain;
    size_t node = first;
    while (places[node] < 0 && chain.size() <= nodes.size()) {
      chain.push_back(node);
      if (nodes[node].Parent < 0 || static_cast<size_t>(nodes[node].Parent) >= nodes.size()) break;
      node = static_cast<size_t>(nodes[node].Parent);
    }
    for (; !chain.empty(); chain.pop_back()) {
      if (places[chain.back()] < 0) place(chain.back());
    }
  }
  return order;
}

class SmdMaker {
 public:
  SmdMaker(smd::SmdSource source, const std::string& path) : m_source(std::move(source)) {
    m_scene.Path = path;
    const std::string_view name = core::LastComponent(path);
    m_scene.Name = name.substr(0, name.find_last_of('.'));
  }

  Scene Make() {
    m_scene.RestTurn = {0, 0, std::sqrt(0.5f), std::sqrt(0.5f)};
    TakeBones();
    TakeMesh();
    CompleteScene(m_scene);
    return std::move(m_scene);
  }

 private:
  void TakeBones() {
    const std::vector<size_t> order = ParentsFirst(m_source.Nodes, m_places);
    std::vector<Matrix34> placed;
    for (const size_t node : order) {
      SceneBone& bone = m_scene.Bones.emplace_back();
      bone.Name = m_source.Nodes[node].Name;
      const int32_t parent = m_source.Nodes[node].Parent;
      const int32_t place =
          parent >= 0 && static_cast<size_t>(parent) < m_places.size() ? m_places[static_cast<size_t>(parent)] : -1;
      bone.Parent = place < static_cast<int32_t>(placed.size()) ? place : -1;
      if (m_source.FrameCount > 0) {
        const BonePose pose = PoseOf(m_source.PoseOf(0, node));
        bone.Position = pose.Position;
        bone.Rotation = pose.Rotation;
      }
      const Matrix34 local = MatrixOf(bone.Rotation, bone.Position);
      placed.push_back(bone.Parent < 0 ? local : placed[static_cast<size_t>(bone.Parent)] * local);
      bone.PoseToBone = InverseOf(placed.back());
    }
    if (m_source.FrameCount < 1 || order.empty()) return;
    m_scene.Animations.push_back({m_scene.Name, SmdFps, m_source.FrameCount, false});
    SceneSequence& sequence = m_scene.Sequences.emplace_back();
    sequence.Name = m_scene.Name;
    sequence.Animations = {0};
    m_scene.Frames = std::make_shared<SmdFrames>(m_source.FrameCount, std::move(m_source.Poses), order, m_scene.Bones,
                                                 m_scene.RestTurn);
  }

  void TakeMesh() {
    m_scene.Materials = m_source.Materials;
    if (m_source.Corners.empty()) return;
    m_scene.BodyParts.push_back({m_scene.Name, {{m_scene.Name, {}, {0}, {0}}}});
    SceneModel& model = m_scene.BodyParts.front().Models.front();
    const size_t materials = m_source.Materials.size();
    std::vector<std::vector<uint32_t>> indices(materials);
    for (size_t t = 0; t < m_source.TriangleMaterials.size(); ++t) {
      const int32_t material = m_source.TriangleMaterials[t];
      if (material < 0 || static_cast<size_t>(material) >= materials || 3 * t + 2 >= m_source.Corners.size()) continue;
      for (size_t k = 0; k < 3; ++k) {
        indices[static_cast<size_t>(material)].push_back(VertexOf(m_source.Corners[3 * t + k]));
      }
    }
    for (size_t m = 0; m < materials; ++m) {
      if (indices[m].empty()) continue;
      SceneDraw draw;
      draw.Material = static_cast<int32_t>(m);
      draw.FirstIndex = static_cast<int64_t>(m_scene.Indices.size());
      draw.IndexCount = static_cast<int64_t>(indices[m].size());
      model.TriangleCounts[0] += draw.IndexCount / 3;
      m_scene.Indices.insert(m_scene.Indices.end(), indices[m].begin(), indices[m].end());
      m_scene.Draws.push_back(draw);
    }
    model.VertexCounts[0] = static_cast<int64_t>(m_scene.Points.size());
  }

  /// The number of the vertex at a corner: one that is the same in everything, or a new one.
  uint32_t VertexOf(const smd::SourceCorner& corner) {
    Whole whole;
    whole.Point = {VectorOf(corner.Position), VectorOf(corner.Normal)};
    whole.Vertex.U = corner.U;
    whole.Vertex.V = 1 - corner.V;
    TakeWeights(corner, whole.Vertex);
    const auto number = static_cast<uint32_t>(m_scene.Points.size());
    const auto [entry, isNew] = m_numbers.try_emplace(std::bit_cast<Key>(whole), number);
    if (isNew) {
      m_scene.Points.push_back(whole.Point);
      m_scene.Vertices.push_back(whole.Vertex);
    }
    return entry->second;
  }

  /// The three links that weigh most; what they leave of 1 goes to the corner's own bone.
  void TakeWeights(const smd::SourceCorner& corner, SceneVertex& vertex) {
    std::vector<smd::Link>& links = m_links;
    links.clear();
    float sum = 0;
    for (uint32_t i = 0; i < corner.LinkCount && corner.FirstLink + i < m_source.Links.size(); ++i) {
      const smd::Link& link = m_source.Links[corner.FirstLink + i];
      if (!(link.Weight > 0) || PlaceOf(link.Bone) < 0) continue;
      links.push_back(link);
      sum += link.Weight;
    }
    if (sum < 0.9999f && PlaceOf(corner.Bone) >= 0) links.push_back({corner.Bone, 1 - sum});
    std::sort(links.begin(), links.end(), [](const smd::Link& a, const smd::Link& b) { return a.Weight > b.Weight; });
    const size_t count = std::min(links.size(), vertex.Weights.size());
    if (count == 0) return;
    float total = 0;
    for (size_t i = 0; i < count; ++i) total += links[i].Weight;
    vertex.Weights = {0, 0, 0};
    for (size_t i = 0; i < count; ++i) {
      vertex.Weights[i] = links[i].Weight / total;
      vertex.Bones[i] = static_cast<uint16_t>(PlaceOf(links[i].Bone));
    }
  }

  int32_t PlaceOf(int32_t node) const {
    return node >= 0 && static_cast<size_t>(node) < m_places.size() ? m_places[static_cast<size_t>(node)] : -1;
  }

  struct Whole {
    ScenePoint Point;
    SceneVertex Vertex;
  };
  using Key = std::array<uint32_t, sizeof(Whole) / sizeof(uint32_t)>;  // all bits of a vertex
  static_assert(sizeof(Whole) == sizeof(ScenePoint) + sizeof(SceneVertex), "no bytes between, which would be compared");
  struct KeyHash {
    size_t operator()(const Key& key) const {
      return std::hash<std::string_view>()(std::string_view(reinterpret_cast<const char*>(key.data()), sizeof key));
    }
  };

  smd::SmdSource m_source;
  Scene m_scene;
  std::vector<int32_t> m_places;  // of each node among the bones
  std::unordered_map<Key, uint32_t, KeyHash> m_numbers;
  std::vector<smd::Link> m_links;
};

}  // namespace

Scene MakeSmdSceneOfText(std::string_view text, const std::string& path, core::TroubleSink& troubles) {
  smd::SmdSource source;
  for (const smd::SourceMessage& message : smd::ReadSource(text, path, source)) {
    troubles.Tell({.Level = message.IsError ? core::Severity::Error : core::Severity::Warning,
                   .Kind = core::TroubleKind::Damaged,
                   .File = path,
                   .Text = path + ", line " + std::to_string(message.Line) + ": " + message.Text,
                   .Alike = message.Text});
  }
  Scene scene = SmdMaker(std::move(source), path).Make();
  scene.FileBytes = static_cast<int64_t>(text.size());
  return scene;
}

std::optional<Scene> MakeSmdScene(const std::string& path, core::TroubleSink& troubles, const core::FileSource& files) {
  std::string reason = "there is no such file";
  const auto found = files.FindCompanion(path);
  const auto file = found ? files.Read(*found, &reason) : std::nullopt;
  if (!file) {
    troubles.Tell({.Kind = core::TroubleKind::Unreadable,
                   .File = path,
                   .Text = "Unable to read " + path + ": " + reason,
                   .Alike = "a file cannot be read"});
    return std::nullopt;
  }
  const auto bytes = file->Bytes();
  return MakeSmdSceneOfText(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()), path,
                            troubles);
}

}  // namespace tarnwick::view
