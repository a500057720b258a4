#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <map>
#include <set>
#include <utility>

#include "core/paths.h"
#include "core/same_bytes.h"
#include "model/comparison/compared_tables.h"
#include "model/comparison/record_fields.h"
#include "model/mesh_pieces.h"
#include "model/vtx_tree.h"

namespace tarnwick::model {

namespace {

/// Weights are divided by their sum, which costs more than the six decimals.
constexpr double WeightGrain = 1e-5;
/// Normals are made of unit length again.
constexpr double NormalGrain = 1e-5;

constexpr RecordField VertexFields[] = {
    {"position", offsetof(VvdVertex, Position), 3, TextGrain},
    {"normal", offsetof(VvdVertex, Normal), 3, NormalGrain},
    {"texture coordinates", offsetof(VvdVertex, U), 2, TextGrain},
};

constexpr RecordField MeshFields[] = {
    {"texture of a mesh", offsetof(StudioMesh, Material)},
    {"flexes of a mesh", offsetof(StudioMesh, FlexCount)},
    {"kind of a mesh", offsetof(StudioMesh, Kind)},
    {"eyeball of a mesh", offsetof(StudioMesh, Eyeball)},
};

/// The levels of which a mesh counts its vertices.
constexpr size_t MostLevels = sizeof(StudioMesh::LodVertexCounts) / sizeof(int32_t);

using ModelRecord = core::Record<StudioModel>;

/// The vertices at the corners of a piece's triangles, in their order.
class Corners {
 public:
  explicit Corners(const MeshPiece& piece) : m_piece(piece) {}

  /// The next corner's vertex; null behind the last one.
  const VvdVertex* Next() {
    while (m_strip < m_piece.Strips.size() && m_corner >= m_piece.Strips[m_strip].IndexCount) {
      ++m_strip;
      m_corner = 0;
    }
    if (m_strip == m_piece.Strips.size()) return nullptr;
    const StripPiece& strip = m_piece.Strips[m_strip];
    const int64_t index = strip.Indices[m_corner++]->Vertex;
    m_number = strip.GroupVertices[index]->MeshVertex;
    return GetMeshVertex(m_piece.Vertices, static_cast<int64_t>(m_number));
  }
  /// The number of that vertex in the mesh.
  size_t Number() const { return m_number; }

  static int64_t Count(const MeshPiece& piece) {
    int64_t count = 0;
    for (const StripPiece& strip : piece.Strips) count += strip.IndexCount;
    return count;
  }

 private:
  const MeshPiece& m_piece;
  size_t m_strip = 0;
  int64_t m_corner = 0;
  size_t m_number = 0;
};

/// A vertex's weights by bone: their order shows in nothing.
std::array<std::pair<int, float>, 3> WeightsByBone(const VvdVertex& vertex) {
  std::array<std::pair<int, float>, 3> weights;
  weights.fill({std::numeric_limits<int>::max(), 0.0f});
  const size_t count = std::min(weights.size(), size_t{vertex.WeightCount});
  for (size_t i = 0; i < count; ++i) weights[i] = {vertex.Bones[i], vertex.Weights[i]};
  std::sort(weights.begin(), weights.end());
  return weights;
}

template <typename Where>
void CompareWeights(DifferenceList& differences, const VvdVertex& a, const VvdVertex& b, const Where& where) {
  if (std::memcmp(&a, &b, offsetof(VvdVertex, Position)) == 0) return;  // all of the weights
  differences.Whole(ModelTable::Vertices, "number of weights", where, a.WeightCount, b.WeightCount);
  const auto one = WeightsByBone(a);
  const auto other = WeightsByBone(b);
  std::array<float, 3> first{};
  std::array<float, 3> second{};
  for (size_t i = 0; i < std::min({one.size(), size_t{a.WeightCount}, size_t{b.WeightCount}}); ++i) {
    differences.Whole(ModelTable::Vertices, "bone of a weight", where, one[i].first, other[i].first);
    first[i] = one[i].second;
    second[i] = other[i].second;
  }
  differences.Numbers(ModelTable::Vertices, "weights", where, first, second, WeightGrain);
}

/// Two vertices that stand at the same corners of two pieces.
struct CornerPair {
  const VvdVertex* First = nullptr;
  const VvdVertex* Second = nullptr;
  int64_t Corner = 0;  // the first of them
  size_t Count = 1;
};

/// The vertices that differ, by the corners where they do so first. Most stand at several corners beside the same one.
std::vector<CornerPair> DifferentCorners(const MeshPiece& first, const MeshPiece& second) {
  constexpr uint32_t Unmet = 0, Same = 1, FirstPair = 2;
  std::vector<CornerPair> pairs;
  std::vector<std::pair<const VvdVertex*, uint32_t>> met;  // by the first's number: the second beside it, its pair
  Corners firstCorners(first);
  Corners secondCorners(second);
  for (int64_t k = 0;; ++k) {
    const VvdVertex* a = firstCorners.Next();
    const VvdVertex* b = secondCorners.Next();
    if (a == nullptr || b == nullptr) return pairs;
    if (firstCorners.Number() >= met.size()) met.resize(std::max(firstCorners.Number() + 1, 2 * met.size()));
    auto& [beside, pair] = met[firstCorners.Number()];
    if (pair == Unmet || beside != b) {
      beside = b;
      pair = Same;
      if (core::HasSameBytes(*a, *b)) continue;
      pair = FirstPair + static_cast<uint32_t>(pairs.size());
      pairs.push_back({a, b, k, 1});
    } else if (pair != Same) {
      ++pairs[pair - FirstPair].Count;
    }
  }
}

/// Compares triangle by triangle: what stands at each corner is all that a triangle shows, whatever numbers its
/// vertices have.
void ComparePieces(const ComparedModels& models, const MeshPiece& first, const MeshPiece& second,
                   const std::string& place) {
  const auto whole = [&] { return place; };
  models.Differences.Whole(ModelTable::Triangles, "number of triangles", whole, Corners::Count(first) / 3,
                           Corners::Count(second) / 3);
  for (const CornerPair& pair : DifferentCorners(first, second)) {
    const auto where = [&] {
      return place + ", triangle " + std::to_string(pair.Corner / 3) + ", corner " + std::to_string(pair.Corner % 3);
    };
    models.Differences.SetPlaces(pair.Count);
    CompareFields(models.Differences, ModelTable::Vertices, VertexFields, *pair.First, *pair.Second, where);
    CompareWeights(models.Differences, *pair.First, *pair.Second, where);
  }
  models.Differences.SetPlaces(1);
}

/// How many vertices the triangles of each mesh show at any level: those of equal content are one, and one that no
/// triangle shows is none.
std::map<int64_t, size_t> CountShownVertices(ModelReader& reader, const ModelRecord& model, int64_t part,
                                             int64_t number, int64_t levels) {
  std::map<int64_t, std::set<std::string_view>> shown;
  const core::ImageView vtx = reader.Model.Vtx->View();
  const auto tree = VtxModelAt(vtx, part, number);
  for (int64_t level = 0; tree && level < levels; ++level) {
    const auto lod = VtxLodAt(vtx, *tree, level);
    if (!lod || !reader.Spend(RecordCost)) break;
    const MeshPieces pieces = GatherMeshPieces(reader, model, *lod);
    for (const MeshPiece& piece : pieces.Meshes) {
      if (!reader.Spend(Corners::Count(piece))) break;
      std::set<std::string_view>& vertices = shown[piece.Number];
      Corners corners(piece);
      while (const VvdVertex* vertex = corners.Next()) {
        vertices.emplace(reinterpret_cast<const char*>(vertex), sizeof *vertex);
      }
    }
  }
  std::map<int64_t, size_t> counts;
  for (const auto& [mesh, vertices] : shown) counts[mesh] = vertices.size();
  return counts;
}

/// Compares how many vertices a model and its meshes have. Sources hold what triangles show: a vertex that stands there
/// twice, or that none shows, does not come back.
class VertexCounts {
 public:
  VertexCounts(const ComparedModels& models, const ModelRecord& first, const ModelRecord& second, int64_t part,
               int64_t number, int64_t levels)
      : m_models(models) {
    if (first->VertexCount <= second->VertexCount || !models.First.Model.Vtx || !models.Second.Model.Vtx) return;
    m_showAlike = CountShownVertices(models.First, first, part, number, levels) ==
                  CountShownVertices(models.Second, second, part, number, levels);
  }

  template <typename Where>
  void Compare(ModelTable table, std::string_view what, const Where& where, int32_t first, int32_t second) const {
    if (first == second) return;
    m_models.Differences.Add(
        table, what, where(), std::to_string(first), std::to_string(second), 0, false,
        m_showAlike && first > second ? "vertices that stand there twice or that nothing shows" : "");
  }

 private:
  const ComparedModels& m_models;
  bool m_showAlike = false;
};

void CompareLevel(const ComparedModels& models, const ModelRecord& first, const ModelRecord& second,
                  const core::Record<VtxModelLod>& firstLod, const core::Record<VtxModelLod>& secondLod,
                  const std::string& place) {
  const auto where = [&] { return place; };
  const std::array<float, 1> a{firstLod->SwitchDistance};
  const std::array<float, 1> b{secondLod->SwitchDistance};
  models.Differences.Numbers(ModelTable::Levels, "switch distance", where, a, b, TextGrain);
  const MeshPieces firstPieces = GatherMeshPieces(models.First, first, firstLod);
  const MeshPieces secondPieces = GatherMeshPieces(models.Second, second, secondLod);
  models.Differences.Whole(ModelTable::Triangles, "number of meshes", where,
                           static_cast<int64_t>(firstPieces.Meshes.size()),
                           static_cast<int64_t>(secondPieces.Meshes.size()));
  const size_t count = std::min(firstPieces.Meshes.size(), secondPieces.Meshes.size());
  for (size_t i = 0; i < count && !models.IsStopped(); ++i) {
    const std::string mesh = place + ", mesh " + std::string(firstPieces.Meshes[i].Material);
    models.Differences.Text(
        ModelTable::Triangles, "material", [&] { return std::string(mesh); }, firstPieces.Meshes[i].Material,
        secondPieces.Meshes[i].Material);
    ComparePieces(models, firstPieces.Meshes[i], secondPieces.Meshes[i], mesh);
  }
}

/// A model is named after its source; of that name the last part counts, without its ending and its letters' case.
std::string SourceName(std::string_view name) {
  constexpr std::string_view Ending = ".smd";
  std::string text = core::LowerAscii(core::LastComponent(name));
  if (text.ends_with(Ending)) text.resize(text.size() - Ending.size());
  return text;
}

/// Whether `second` is `first` with a number behind it, as a file is called whose name another one has: sources of one
/// name from two folders lie in one.
bool IsNumbered(std::string_view first, std::string_view second) {
  if (!second.starts_with(first) || second.size() < first.size() + 2 || second[first.size()] != '_') return false;
  return second.find_first_not_of("0123456789", first.size() + 1) == std::string_view::npos;
}

void CompareModel(const ComparedModels& models, const ModelRecord& first, const ModelRecord& second, int64_t part,
                  int64_t number, int64_t levels, const std::string& place) {
  const auto where = [&] { return place; };
  const std::string name = SourceName(core::FixedText(first->Name));
  const std::string otherName = SourceName(core::FixedText(second->Name));
  if (IsNumbered(name, otherName)) {
    models.Differences.Add(ModelTable::Bodies, "name of a model", place, name, otherName, 0, false,
                           "two files of one name");
  } else {
    models.Differences.Text(ModelTable::Bodies, "name of a model", where, name, otherName);
  }
  const VertexCounts counts(models, first, second, part, number, levels);
  counts.Compare(ModelTable::Vertices, "number of vertices", where, first->VertexCount, second->VertexCount);
  CompareTables<StudioMesh>(
      models, ModelTable::Bodies, "meshes", where, {first.Offset() + first->MeshOffset, first->MeshCount},
      {second.Offset() + second->MeshOffset, second->MeshCount}, [&](const auto& a, const auto& b, int64_t i) {
        const auto mesh = [&] { return place + ", mesh " + std::to_string(i); };
        CompareFields(models.Differences, ModelTable::Bodies, MeshFields, *a, *b, mesh);
        counts.Compare(ModelTable::Bodies, "vertices of a mesh", mesh, a->VertexCount, b->VertexCount);
        for (size_t level = 0; level < MostLevels; ++level) {
          counts.Compare(ModelTable::Bodies, "vertices of a mesh's levels", mesh, a->LodVertexCounts[level],
                         b->LodVertexCounts[level]);
        }
      });
  if (!models.First.Model.Vtx || !models.Second.Model.Vtx) return;
  const core::ImageView a = models.First.Model.Vtx->View();
  const core::ImageView b = models.Second.Model.Vtx->View();
  const auto firstModel = VtxModelAt(a, part, number);
  const auto secondModel = VtxModelAt(b, part, number);
  if (!firstModel || !secondModel) return;
  for (int64_t level = 0; level < levels; ++level) {
    const auto firstLod = VtxLodAt(a, *firstModel, level);
    const auto secondLod = VtxLodAt(b, *secondModel, level);
    if (!firstLod || !secondLod || !models.First.Spend(RecordCost)) return;
    CompareLevel(models, first, second, *firstLod, *secondLod, place + ", level " + std::to_string(level));
  }
}

int64_t LevelCount(const ModelReader& reader) {
  if (!reader.Model.Vtx) return 0;
  const auto header = reader.Model.Vtx->View().At<VtxHeader>(0);
  return header ? (*header)->LodCount : 0;
}

}  // namespace

void CompareMeshes(const ComparedModels& models) {
  const auto a = models.First.Model.Header();
  const auto b = models.Second.Model.Header();
  const int64_t levels = std::min(LevelCount(models.First), LevelCount(models.Second));
  models.Differences.Whole(
      ModelTable::Levels, "number of levels", [] { return std::string(); }, LevelCount(models.First),
      LevelCount(models.Second));
  CompareTables<StudioBodyPart>(
      models, ModelTable::Bodies, "body parts", {a->BodyPartOffset, a->BodyPartCount},
      {b->BodyPartOffset, b->BodyPartCount}, [&](const auto& first, const auto& second, int64_t part) {
        const std::string name = Place("body part", TextOf(models.First, first, first->NameOffset), part);
        const auto where = [&] { return std::string(name); };
        models.Differences.Text(ModelTable::Bodies, "name", where, TextOf(models.First, first, first->NameOffset),
                                TextOf(models.Second, second, second->NameOffset));
        models.Differences.Whole(ModelTable::Bodies, "base", where, first->Base, second->Base);
        CompareTables<StudioModel>(
            models, ModelTable::Bodies, "models", where, {first.Offset() + first->ModelOffset, first->ModelCount},
            {second.Offset() + second->ModelOffset, second->ModelCount},
            [&](const auto& one, const auto& other, int64_t number) {
              if (models.IsStopped()) return;
              CompareModel(models, one, other, part, number, levels, name + ", model " + std::to_string(number));
            });
      });
}

}  // namespace tarnwick::model
