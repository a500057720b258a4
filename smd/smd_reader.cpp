// One pass over the text, block by block; nothing is copied but names.

#include "smd/smd_reader.h"

#include <cstring>
#include <unordered_map>
#include <utility>

#include "core/paths.h"
#include "smd/source_text.h"

namespace tarnwick::smd {

namespace {

/// Whether a line where a material could stand is the end of its block, with a comment behind it perhaps.
bool IsEnd(std::string_view line) {
  constexpr std::string_view End = "end";
  if (!core::EqualIgnoringCase(line.substr(0, End.size()), End)) return false;
  const std::string_view rest = line.substr(End.size());
  const size_t comment = rest.find_first_not_of(" \t");
  return comment == std::string_view::npos ||
         (comment > 0 && (rest[comment] == '#' || rest[comment] == ';' || rest.substr(comment).starts_with("//")));
}

/// A corner of a triangle has a bone, a place, a normal and two texture coordinates.
constexpr int CornerNumbers = 9;

class Reader {
 public:
  Reader(std::string_view text, SmdSource& source, std::vector<SourceMessage>& messages, core::VectorLevel level)
      : m_text(text, messages, level), m_source(source) {}

  void Run() {
    bool seenVersion = false;
    while (m_text.NextLine()) {
      const std::string_view word = m_text.Word();
      if (word.empty()) continue;
      if (core::EqualIgnoringCase(word, "version")) {
        if (m_text.Word() != "1") m_text.Tell(false, "the version is not 1");
        seenVersion = true;
      } else if (core::EqualIgnoringCase(word, "nodes")) {
        Nodes();
      } else if (core::EqualIgnoringCase(word, "skeleton")) {
        Skeleton();
      } else if (core::EqualIgnoringCase(word, "triangles")) {
        Triangles();
      } else if (core::EqualIgnoringCase(word, "vertexanimation")) {
        Shapes();
      } else if (!core::EqualIgnoringCase(word, "end")) {
        if (!seenVersion && m_source.Nodes.empty()) {
          m_text.Tell(true, "this is no SMD file: it does not begin with \"version 1\"");
          return;
        }
        m_text.Tell(false, "a line of no block is passed over");
      }
    }
    FinishSkeleton();
  }

 private:
  void Nodes() {
    if (m_source.FrameCount > 0 || !m_source.Corners.empty()) m_text.Tell(true, "nodes stand behind what names them");
    while (m_text.NextLine()) {
      if (m_text.AtEnd()) continue;
      if (m_text.TakeEnd()) return;
      int32_t id = 0, parent = -1;
      const bool haveId = m_text.Int(id);
      const std::string_view name = m_text.Name();
      if (!haveId || !m_text.Int(parent)) {
        m_text.Tell(true, "a node needs a number, a name and the number of its parent");
        continue;
      }
      if (m_source.FrameCount > 0 || !m_source.Corners.empty()) continue;
      if (m_source.Nodes.size() >= MostSourceNodes) {
        m_text.Tell(true, "more than " + std::to_string(MostSourceNodes) + " nodes");
        continue;
      }
      if (!m_nodes.try_emplace(id, static_cast<int32_t>(m_source.Nodes.size())).second) {
        m_text.Tell(false, "node " + std::to_string(id) + " stands twice; the first counts");
        continue;
      }
      m_source.Nodes.push_back({std::string(name), -1});
      m_parents.push_back(parent);
    }
  }

  /// The place of node `id`, -1 if there is none.
  int32_t NodeAt(int32_t id) {
    if (id >= 0 && static_cast<size_t>(id) < m_quick.size()) return m_quick[static_cast<size_t>(id)];
    const auto found = m_nodes.find(id);
    return found == m_nodes.end() ? -1 : found->second;
  }
  void MakeQuick() {
    m_quick.assign(MostSourceNodes, -1);
    for (const auto& [id, place] : m_nodes) {
      if (id >= 0 && static_cast<size_t>(id) < m_quick.size()) m_quick[static_cast<size_t>(id)] = place;
    }
  }

  void FinishSkeleton() {
    for (size_t i = 0; i < m_parents.size(); ++i) {
      const int32_t parent = m_parents[i] < 0 ? -1 : NodeAt(m_parents[i]);
      m_source.Nodes[i].Parent = parent;
      if (m_parents[i] >= 0 && parent < 0) {
        m_text.Tell(false, "the parent of \"" + m_source.Nodes[i].Name + "\" is no node");
      }
    }
    // A ring of parents has no root: its first bone is made one.
    for (size_t i = 0; i < m_source.Nodes.size(); ++i) {
      int32_t at = static_cast<int32_t>(i);
      for (size_t steps = 0; at >= 0; ++steps) {
        if (steps > m_source.Nodes.size()) {
          m_text.Tell(true, "\"" + m_source.Nodes[i].Name + "\" hangs from itself");
          m_source.Nodes[i].Parent = -1;
          break;
        }
        at = m_source.Nodes[static_cast<size_t>(at)].Parent;
      }
    }
  }

  void Skeleton() {
    MakeQuick();
    const size_t nodes = m_source.Nodes.size();
    m_source.NodePosed.resize(nodes, 0);
    std::vector<SourcePose>& poses = m_source.Poses;
    bool full = false;
    while (m_text.NextLine()) {
      if (m_text.AtEnd()) continue;
      if (!m_text.AtNumber()) {
        const std::string_view word = m_text.Word();
        if (core::EqualIgnoringCase(word, "end")) return;
        if (!core::EqualIgnoringCase(word, "time")) {
          m_text.Tell(true, "a line of the skeleton is neither a frame nor a bone's place");
          continue;
        }
        full = full || poses.size() + nodes > MostSourcePoses;
        if (full) {
          m_text.Tell(true, "more frames than can be held");
          continue;
        }
        const size_t before = poses.size();
        poses.resize(before + nodes);
        if (before >= nodes && nodes > 0) {
          std::memcpy(&poses[before], &poses[before - nodes], nodes * sizeof(SourcePose));
        }
        ++m_source.FrameCount;
        continue;
      }
      int32_t id = 0;
      SourcePose pose;
      if (!Place(id, pose.Position, pose.Rotation)) {
        m_text.Tell(true, "a bone's place needs its number and six numbers");
        continue;
      }
      const int32_t node = NodeAt(id);
      if (node < 0) {
        m_text.Tell(false, "node " + std::to_string(id) + " is not there");
        continue;
      }
      if (m_source.FrameCount == 0) {
        m_text.Tell(true, "a bone's place stands ahead of the first frame");
        continue;
      }
      if (full) continue;
      poses[poses.size() - nodes + static_cast<size_t>(node)] = pose;
      m_source.NodePosed[static_cast<size_t>(node)] = 1;
    }
  }

  /// A number and six more, as most lines of the skeleton and of shapes are.
  bool Place(int32_t& number, Triple& place, Triple& other) {
    NumberLine line;
    if (m_text.TakeNumberLine(NumberLineKind::Place, line)) {
      number = line.Number;
    } else if (!m_text.Int(number) || !m_text.Floats(std::span(line.Values).first(6))) {
      return false;
    }
    const auto& v = line.Values;
    place = {v[0], v[1], v[2]};
    other = {v[3], v[4], v[5]};
    return true;
  }

  int32_t MaterialAt(std::string_view name) {
    if (!m_source.Materials.empty() && m_source.Materials[m_lastMaterial] == name) {
      return static_cast<int32_t>(m_lastMaterial);
    }
    const auto [found, added] = m_materials.try_emplace(std::string(name), m_source.Materials.size());
    if (added) m_source.Materials.emplace_back(name);
    m_lastMaterial = found->second;
    return static_cast<int32_t>(m_lastMaterial);
  }

  void Triangles() {
    MakeQuick();
    const size_t left = m_text.BytesLeft();
    m_source.Corners.reserve(m_source.Corners.size() + left / 80);
    m_source.Links.reserve(m_source.Links.size() + left / 80);
    while (m_text.NextLine()) {
      std::string_view material;
      if (!m_source.Materials.empty()) material = m_source.Materials[m_lastMaterial];
      bool atCorner = false;
      if (material.empty() || IsEnd(material) || !m_text.TakeRest(material)) {
        material = m_text.Rest();
        if (material.starts_with("//")) continue;
        if (material.empty()) {
          PassNameless();
          continue;
        }
        if (IsEnd(material)) {
          // Behind the end of a block no corner can stand: then it is a material of that name.
          atCorner = m_text.NextLineOfNumbers(CornerNumbers);
          if (!atCorner) return;
        }
      }
      const size_t corners = m_source.Corners.size(), links = m_source.Links.size();
      bool sound = true;
      for (int corner = 0; corner < 3 && sound; ++corner) {
        sound = (std::exchange(atCorner, false) || NextCornerLine()) && Corner();
      }
      if (!sound) {
        m_text.Tell(true, "a corner of a triangle needs a bone, a place, a normal and two texture coordinates");
        m_source.Corners.resize(corners);
        m_source.Links.resize(links);
        continue;
      }
      m_source.TriangleMaterials.push_back(MaterialAt(material));
    }
  }
  /// Behind an empty line: a triangle, if its corners follow at once, belongs to no mesh for want of a material.
  void PassNameless() {
    if (!m_text.NextLineOfNumbers(CornerNumbers)) return;
    m_text.Tell(false, "a triangle has no material and is left out");
    for (int corner = 1; corner < 3 && NextCornerLine(); ++corner) continue;
  }
  bool NextCornerLine() {
    while (m_text.NextLine()) {
      if (!m_text.AtEnd()) return true;
    }
    return false;
  }

  bool Corner() {
    SourceCorner corner;
    corner.FirstLink = static_cast<uint32_t>(m_source.Links.size());
    NumberLine line;
    const bool taken = m_text.TakeNumberLine(NumberLineKind::Corner, line);
    if (!taken && (!m_text.Int(line.Number) || !m_text.Floats(line.Values))) return false;
    const auto& v = line.Values;
    corner.Position = {v[0], v[1], v[2]};
    corner.Normal = {v[3], v[4], v[5]};
    corner.U = v[6];
    corner.V = v[7];
    corner.Bone = Bone(line.Number);
    float sum = 0;
    if (taken) {
      for (size_t i = 0; i < line.LinkCount; ++i) AddLink(line.Links[i], sum);
    } else {
      ReadLinks(sum);
    }
    corner.LinkCount = static_cast<uint32_t>(m_source.Links.size()) - corner.FirstLink;
    // What the links leave belongs to the corner's own bone.
    constexpr float Rounding = 0.001f;
    if (corner.LinkCount > 0 && sum > 0 && sum < 1 - Rounding) {
      m_source.Links.push_back({corner.Bone, 1 - sum});
      ++corner.LinkCount;
    }
    m_source.Corners.push_back(corner);
    return true;
  }
  void ReadLinks(float& sum) {
    int32_t links = 0;
    if (!m_text.Int(links)) return;
    for (int32_t i = 0; i < links; ++i) {
      Link link;
      if (!m_text.Int(link.Bone) || !m_text.Floats(std::span(&link.Weight, 1))) return;
      AddLink(link, sum);
    }
  }
  void AddLink(Link link, float& sum) {
    link.Bone = Bone(link.Bone);
    m_source.Links.push_back(link);
    sum += link.Weight;
  }
  int32_t Bone(int32_t id) {
    const int32_t node = NodeAt(id);
    return node >= 0 ? node : MissingBone(id);
  }
  [[gnu::noinline]] int32_t MissingBone(int32_t id) {
    if (m_source.Nodes.empty()) {
      if (!m_toldNodes) m_text.Tell(true, "there are triangles and no nodes");
      m_toldNodes = true;
    } else {
      m_text.Tell(false, "a corner follows bone " + std::to_string(id) + ", which is not there; it follows the first");
    }
    return 0;
  }

  void Shapes() {
    while (m_text.NextLine()) {
      if (m_text.AtEnd()) continue;
      if (!m_text.AtNumber()) {
        const std::string_view word = m_text.Word();
        if (core::EqualIgnoringCase(word, "end")) return;
        int32_t time = 0;
        if (!core::EqualIgnoringCase(word, "time") || !m_text.Int(time)) {
          m_text.Tell(true, "a line of the shapes is neither a shape nor a vertex");
          continue;
        }
        m_source.Shapes.push_back({time, {}});
        continue;
      }
      ShapeVertex vertex;
      if (!Place(vertex.Number, vertex.Position, vertex.Normal)) {
        m_text.Tell(true, "a vertex of a shape needs its number, a place and a normal");
        continue;
      }
      if (m_source.Shapes.empty()) {
        m_text.Tell(true, "a vertex stands ahead of the first shape");
        continue;
      }
      m_source.Shapes.back().Vertices.push_back(vertex);
    }
  }

  SourceText m_text;
  SmdSource& m_source;
  bool m_toldNodes = false;
  size_t m_lastMaterial = 0;
  std::vector<int32_t> m_parents;  // by number, as the file names them
  std::vector<int32_t> m_quick;
  std::unordered_map<int32_t, int32_t> m_nodes;
  std::unordered_map<std::string, size_t> m_materials;
};

}  // namespace

std::vector<SourceMessage> ReadSource(std::string_view text, std::string path, SmdSource& source,
                                      core::VectorLevel level) {
  constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(ByteOrderMark)) text.remove_prefix(ByteOrderMark.size());
  std::vector<SourceMessage> messages;
  source = {};
  source.Path = std::move(path);
  Reader(text, source, messages, level).Run();
  return messages;
}

}  // namespace tarnwick::smd
