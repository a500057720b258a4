#include "support/layout_checker.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

#include "core/image_view.h"
#include "core/paths.h"
#include "model/animation_records.h"
#include "model/face_records.h"
#include "model/script_records.h"
#include "model/studio_records.h"
#include "model/vtx_records.h"
#include "model/vvd_records.h"

namespace tarnwick::tests {

namespace {

using namespace model;

/// What a mesh of the .mdl file says, for the other files.
struct MeshFacts {
  int32_t First = 0;  // vertex, among all
  StudioMesh Record{};
  std::set<int32_t> Moved;  // by flexes
};
struct ModelFacts {
  std::vector<MeshFacts> Meshes;
};

class Checker {
 public:
  explicit Checker(const LayoutFiles& files)
      : m_files(files), m_mdl(Bytes(files.Mdl)), m_vvd(Bytes(files.Vvd)), m_vtx(Bytes(files.Vtx)) {}

  std::vector<std::string> Run() {
    if (!CheckHeader()) return m_problems;
    CheckBones();
    CheckTexts();
    CheckTables();
    CheckBodyParts();
    if (!m_parts.empty()) {
      CheckVvd();
      CheckVtx();
    }
    if (!m_files.Phy.empty()) CheckPhy();
    return m_problems;
  }

 private:
  static core::ImageView Bytes(const std::string& text) {
    return core::ImageView(std::as_bytes(std::span(text.data(), text.size())));
  }
  template <typename... Parts>
  bool Expect(bool holds, const Parts&... parts) {
    if (holds) return true;
    std::ostringstream line;
    (line << ... << parts);
    if (m_problems.size() < 50) m_problems.push_back(line.str());
    return false;
  }
  /// A table of the .mdl file; empty, told, if it is not inside.
  template <typename T>
  core::RecordArray<T> Table(const char* what, int64_t offset, int64_t count) {
    const auto table = m_mdl.Array<T>(offset, count);
    Expect(table.has_value(), what, ": ", count, " records at ", offset, " do not fit");
    Expect(offset % 4 == 0 || sizeof(T) == 1 || sizeof(T) == 2, what, " begins at ", offset, ", no multiple of 4");
    return table.value_or(core::RecordArray<T>());
  }
  std::string_view Text(const char* what, int64_t offset) {
    const auto text = m_mdl.Text(offset);
    Expect(text.has_value(), what, ": no text at ", offset);
    if (text) m_texts.insert(offset);
    return text.value_or("");
  }

  bool CheckHeader() {
    const auto header = m_mdl.At<StudioHeader>(0);
    if (!Expect(header.has_value(), "the .mdl file is shorter than its header")) return false;
    m_header = **header;
    Expect(std::memcmp(m_header.Id, "IDST", 4) == 0, "the .mdl file does not begin with IDST");
    Expect(m_header.Version == 44 || m_header.Version == 48 || m_header.Version == 49, "version ", m_header.Version);
    Expect(m_header.Length == m_mdl.Size(), "length field ", m_header.Length, " of ", m_mdl.Size(), " bytes");
    Expect(m_header.SkinReferenceCount == m_header.TextureCount, "skin references ", m_header.SkinReferenceCount,
           " for ", m_header.TextureCount, " textures");
    if (m_header.Version != 44) {
      Expect(m_header.SecondHeaderOffset == 0x198 && m_header.BoneOffset == 0x298, "second header at ",
             m_header.SecondHeaderOffset, ", bones at ", m_header.BoneOffset);
    }
    // Tables stand in this order; an empty one stands where it would begin.
    const std::array<std::pair<const char*, int32_t>, 20> order = {{{"bones", m_header.BoneOffset},
                                                                    {"bone controllers", m_header.BoneControllerOffset},
                                                                    {"attachments", m_header.AttachmentOffset},
                                                                    {"hitbox sets", m_header.HitboxSetOffset},
                                                                    {"bones by name", m_header.BoneNameTableOffset},
                                                                    {"animations", m_header.AnimOffset},
                                                                    {"sequences", m_header.SequenceOffset},
                                                                    {"node names", m_header.NodeNameOffset},
                                                                    {"nodes", m_header.NodeOffset},
                                                                    {"body parts", m_header.BodyPartOffset},
                                                                    {"flex descriptors", m_header.FlexDescOffset},
                                                                    {"flex controllers", m_header.FlexControllerOffset},
                                                                    {"flex rules", m_header.FlexRuleOffset},
                                                                    {"ik chains", m_header.IkChainOffset},
                                                                    {"ik locks", m_header.IkLockOffset},
                                                                    {"mouths", m_header.MouthOffset},
                                                                    {"pose parameters", m_header.PoseParameterOffset},
                                                                    {"included models", m_header.IncludeModelOffset},
                                                                    {"textures", m_header.TextureOffset},
                                                                    {"skins", m_header.SkinOffset}}};
    for (size_t i = 0; i + 1 < order.size(); ++i) {
      Expect(order[i].second <= order[i + 1].second, order[i].first, " at ", order[i].second, " stand behind ",
             order[i + 1].first, " at ", order[i + 1].second);
    }
    return true;
  }

  void CheckBones() {
    const auto bones = Table<StudioBone>("bones", m_header.BoneOffset, m_header.BoneCount);
    std::vector<std::string> names;
    std::set<std::string> lower;
    for (int64_t i = 0; i < bones.Count(); ++i) {
      const auto bone = bones[i];
      names.emplace_back(Text("bone name", bone.Offset() + bone->NameOffset));
      Expect(lower.insert(core::LowerAscii(names.back())).second, "two bones are named ", names.back());
      Expect(bone->Parent >= -1 && bone->Parent < i, "bone ", i, " has the parent ", bone->Parent);
      for (const int32_t controller : {bone->Controllers[0], bone->Controllers[5]}) {
        Expect(controller == -1, "bone ", i, " has a controller");
      }
      const bool isProcedural = (bone->Flags & BoneFlagProcedural) != 0;
      Expect(isProcedural == (bone->ProceduralType != 0), "bone ", i, ": procedure ", bone->ProceduralType, ", flags ",
             bone->Flags);
      Text("surface property of a bone", bone.Offset() + bone->SurfacePropOffset);
      if (bone->Parent < 0) continue;
      constexpr uint32_t Inherited = 0x3FF00;
      const uint32_t missing = bone->Flags & Inherited & ~bones[bone->Parent]->Flags;
      Expect(missing == 0, "bone ", i, " has the flags ", missing, " which its parent lacks");
    }
    CheckPoses(bones);
    const auto table = m_mdl.Array<BoneByte>(m_header.BoneNameTableOffset, bones.Count());
    if (!Expect(table.has_value(), "the list of bones by name does not fit")) return;
    for (int64_t i = 0; i + 1 < bones.Count(); ++i) {
      const size_t a = (*table)[i]->Value, b = (*table)[i + 1]->Value;
      if (!Expect(a < names.size() && b < names.size(), "the list of bones by name holds ", a, ", ", b)) return;
      Expect(core::LowerAscii(names[a]) < core::LowerAscii(names[b]), "bones by name: ", names[a], " before ",
             names[b]);
    }
  }

  /// The pose matrix is the inverse of the rest transforms from the root down.
  void CheckPoses(const core::RecordArray<StudioBone>& bones) {
    std::vector<std::array<double, 12>> places;
    for (int64_t i = 0; i < bones.Count(); ++i) {
      const StudioBone bone = *bones[i];
      const double cx = std::cos(double{bone.Angles.x}), sx = std::sin(double{bone.Angles.x});
      const double cy = std::cos(double{bone.Angles.y}), sy = std::sin(double{bone.Angles.y});
      const double cz = std::cos(double{bone.Angles.z}), sz = std::sin(double{bone.Angles.z});
      const std::array<double, 12> own = {cy * cz,
                                          sx * sy * cz - cx * sz,
                                          cx * sy * cz + sx * sz,
                                          double{bone.Position.x},
                                          cy * sz,
                                          sx * sy * sz + cx * cz,
                                          cx * sy * sz - sx * cz,
                                          double{bone.Position.y},
                                          -sy,
                                          sx * cy,
                                          cx * cy,
                                          double{bone.Position.z}};
      std::array<double, 12> place = own;
      if (bone.Parent >= 0 && bone.Parent < i) {
        const auto& parent = places[static_cast<size_t>(bone.Parent)];
        for (size_t r = 0; r < 3; ++r) {
          for (size_t c = 0; c < 4; ++c) {
            double sum = c == 3 ? parent[4 * r + 3] : 0;
            for (size_t k = 0; k < 3; ++k) sum += parent[4 * r + k] * own[4 * k + c];
            place[4 * r + c] = sum;
          }
        }
      }
      places.push_back(place);
      double size = 1, miss = 0;
      for (size_t r = 0; r < 3; ++r) size = std::max(size, std::abs(place[4 * r + 3]));
      for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 4; ++c) {
          double sum = c == 3 ? double{bone.PoseToBone(r, 3)} : 0;
          for (int k = 0; k < 3; ++k) {
            sum += double{bone.PoseToBone(r, k)} * place[4 * static_cast<size_t>(k) + static_cast<size_t>(c)];
          }
          miss = std::max(miss, std::abs(sum - (r == c ? 1 : 0)));
        }
      }
      Expect(miss < 1e-4 * size, "the pose matrix of bone ", i, " is off by ", miss);
    }
  }

  /// Names stand in one pool at the end, each once, without gaps, an empty one first.
  void CheckTexts() {
    Text("surface property", m_header.SurfacePropOffset);
    for (const auto texture : Table<StudioTexture>("textures", m_header.TextureOffset, m_header.TextureCount)) {
      const std::string_view name = Text("texture name", texture.Offset() + texture->NameOffset);
      Expect(name.find_last_of("\\") == std::string_view::npos, "the texture ", name, " has a folder");
    }
    for (const auto folder :
         Table<StudioOffset>("material folders", m_header.MaterialDirectoryOffset, m_header.MaterialDirectoryCount)) {
      Text("material folder", folder->Offset);
    }
    if (m_texts.empty()) return;
    const auto bytes = m_files.Mdl;
    size_t start = static_cast<size_t>(*m_texts.begin());
    // Back to the pool's start: an empty text at a multiple of 4, behind other tables.
    std::set<std::string> met;
    for (size_t at = start; at < bytes.size();) {
      const size_t end = std::min(bytes.find('\0', at), bytes.size() - 1);
      if (end > at)
        Expect(met.insert(bytes.substr(at, end - at)).second, "the text ", bytes.substr(at, end - at), " stands twice");
      at = end + 1;
    }
    Expect(bytes.back() == '\0', "the .mdl file does not end in a zero byte");
    Expect(bytes.size() % 4 == 0, "the .mdl file's ", bytes.size(), " bytes are no multiple of 4");
  }

  void CheckTables() {
    const auto skins = Table<StudioShort>("skins", m_header.SkinOffset,
                                          int64_t{m_header.SkinReferenceCount} * m_header.SkinFamilyCount);
    Expect(m_header.SkinFamilyCount >= 1, "no skin family");
    for (int64_t i = 0; i < skins.Count(); ++i) {
      const int16_t value = skins[i]->Value;
      Expect(value >= 0 && value < m_header.TextureCount, "the skin table names texture ", value);
      if (i < m_header.SkinReferenceCount) Expect(value == i, "the first skin has texture ", value, " at ", i);
    }
    for (const auto animation : Table<StudioAnimDesc>("animations", m_header.AnimOffset, m_header.AnimCount)) {
      Expect(animation->FrameCount >= 1, "an animation has ", int32_t{animation->FrameCount}, " frames");
      Expect(m_mdl.Value<int32_t>(animation.Offset()).value_or(0) == -animation.Offset(),
             "an animation does not lead back to the header");
    }
    for (const auto sequence : Table<StudioSeqDesc>("sequences", m_header.SequenceOffset, m_header.SequenceCount)) {
      Expect(m_mdl.Value<int32_t>(sequence.Offset()).value_or(0) == -sequence.Offset(),
             "a sequence does not lead back to the header");
    }
  }

  void CheckBodyParts() {
    int64_t base = 1;
    int32_t vertex = 0, meshNumber = 0;
    for (const auto part : Table<StudioBodyPart>("body parts", m_header.BodyPartOffset, m_header.BodyPartCount)) {
      Text("body part name", part.Offset() + part->NameOffset);
      Expect(part->Base == base, "a body part's base is ", int32_t{part->Base}, ", not ", base);
      base *= part->ModelCount;
      auto& models = m_parts.emplace_back();
      for (const auto model : Table<StudioModel>("models", part.Offset() + part->ModelOffset, part->ModelCount)) {
        CheckModel(model, vertex, meshNumber, models.emplace_back());
      }
    }
    m_vertexCount = vertex;
  }

  void CheckModel(const core::Record<StudioModel>& model, int32_t& vertex, int32_t& meshNumber, ModelFacts& facts) {
    Expect(model->VertexByteOffset == 48 * int64_t{vertex} && model->TangentByteOffset == 16 * int64_t{vertex},
           "a model's vertices begin at ", int32_t{model->VertexByteOffset}, ", tangents at ",
           int32_t{model->TangentByteOffset}, ", behind ", vertex, " vertices");
    int32_t own = 0, lastTexture = -1;
    for (const auto mesh : Table<StudioMesh>("meshes", model.Offset() + model->MeshOffset, model->MeshCount)) {
      Expect(mesh->Material > lastTexture && mesh->Material < m_header.TextureCount, "a mesh wears texture ",
             int32_t{mesh->Material}, " behind ", lastTexture);
      lastTexture = mesh->Material;
      Expect(mesh.Offset() + mesh->ModelOffset == model.Offset(), "a mesh does not lead back to its model");
      Expect(mesh->FirstVertex == own, "a mesh begins at vertex ", int32_t{mesh->FirstVertex}, ", not ", own);
      Expect(mesh->Number == meshNumber++, "a mesh has the number ", int32_t{mesh->Number});
      Expect(mesh->LodVertexCounts[0] == mesh->VertexCount, "a mesh has ", int32_t{mesh->VertexCount},
             " vertices and counts ", int32_t{mesh->LodVertexCounts[0]});
      MeshFacts& made = facts.Meshes.emplace_back(MeshFacts{vertex + own, *mesh, {}});
      CheckFlexes(mesh, made);
      own += mesh->VertexCount;
    }
    Expect(model->VertexCount == own, "a model has ", int32_t{model->VertexCount}, " vertices, its meshes ", own);
    Table<StudioEyeball>("eyeballs", model.Offset() + model->EyeballOffset, model->EyeballCount);
    vertex += own;
  }

  void CheckFlexes(const core::Record<StudioMesh>& mesh, MeshFacts& facts) {
    for (const auto flex : Table<StudioFlex>("flexes", mesh.Offset() + mesh->FlexOffset, mesh->FlexCount)) {
      Expect(flex->FlexDesc >= 0 && flex->FlexDesc < m_header.FlexDescCount, "a flex moves descriptor ",
             int32_t{flex->FlexDesc});
      if (flex->VertAnimKind != VertAnimOrdinary) continue;
      for (const auto change :
           Table<StudioVertAnim>("vertex animations", flex.Offset() + flex->VertAnimOffset, flex->VertAnimCount)) {
        const int32_t number = static_cast<uint16_t>(change->Vertex);
        Expect(number < mesh->VertexCount, "a flex moves vertex ", number, " of ", int32_t{mesh->VertexCount});
        facts.Moved.insert(number);
      }
    }
  }

  void CheckVvd() {
    const auto header = m_vvd.At<VvdHeader>(0);
    if (!Expect(header.has_value(), "the .vvd file is shorter than its header")) return;
    const VvdHeader vvd = **header;
    Expect(vvd.Id == VvdId && vvd.Version == 4, ".vvd id ", vvd.Id, ", version ", vvd.Version);
    Expect(vvd.Checksum == m_header.Checksum, "the .vvd file's checksum differs");
    m_lods = vvd.LodCount;
    if (!Expect(m_lods >= 1 && m_lods <= 8, m_lods, " levels of detail")) return;
    for (int k = 0; k < 8; ++k) {
      int64_t sum = 0;
      for (const auto& part : m_parts) {
        for (const ModelFacts& model : part) {
          for (const MeshFacts& mesh : model.Meshes) sum += mesh.Record.LodVertexCounts[k];
        }
      }
      Expect(vvd.LodVertexCount[k] == sum, "level ", k, " has ", vvd.LodVertexCount[k], " vertices, its meshes ", sum);
    }
    Expect(vvd.FixupOffset == 64, "fix-ups at ", vvd.FixupOffset);
    const int64_t vertices = (64 + 12 * int64_t{vvd.FixupCount} + 15) / 16 * 16;
    Expect(vvd.VertexOffset == vertices, "vertices at ", vvd.VertexOffset, ", not ", vertices);
    Expect(vvd.TangentOffset == vertices + 48 * int64_t{m_vertexCount}, "tangents at ", vvd.TangentOffset);
    Expect(m_vvd.Size() == vertices + 64 * int64_t{m_vertexCount}, "the .vvd file has ", m_vvd.Size(), " bytes for ",
           m_vertexCount, " vertices");
    const auto records = m_vvd.Array<VvdVertex>(vvd.VertexOffset, m_vertexCount);
    const auto fixups = m_vvd.Array<VvdFixup>(vvd.FixupOffset, vvd.FixupCount);
    if (!records || !fixups) return;
    for (const auto vertex : *records) m_vertices.push_back(*vertex);
    if (fixups->Count() > 0) ApplyFixups(*fixups);
    for (size_t i = 0; i < m_vertices.size(); ++i) CheckVertex(i);
  }

  void ApplyFixups(const core::RecordArray<VvdFixup>& fixups) {
    std::vector<VvdVertex> ordered;
    std::set<int64_t> covered;
    for (const auto fixup : fixups) {
      for (int64_t k = 0; k < fixup->VertexCount; ++k) {
        const int64_t at = int64_t{fixup->SourceVertex} + k;
        if (!Expect(at >= 0 && at < static_cast<int64_t>(m_vertices.size()), "a fix-up names vertex ", at)) return;
        Expect(covered.insert(at).second, "two fix-ups hold vertex ", at);
        ordered.push_back(m_vertices[static_cast<size_t>(at)]);
      }
    }
    Expect(ordered.size() == m_vertices.size(), "fix-ups hold ", ordered.size(), " of ", m_vertices.size(),
           " vertices");
    if (ordered.size() == m_vertices.size()) m_vertices = std::move(ordered);
  }

  void CheckVertex(size_t i) {
    const VvdVertex& vertex = m_vertices[i];
    if (!Expect(vertex.WeightCount >= 1 && vertex.WeightCount <= 3, "vertex ", i, " has ", int{vertex.WeightCount},
                " weights")) {
      return;
    }
    double sum = 0;
    for (int k = 0; k < 3; ++k) {
      sum += double{vertex.Weights[k]};
      if (k >= vertex.WeightCount) {
        Expect(vertex.Weights[k] == 0 && vertex.Bones[k] == 0, "vertex ", i, " fills an unused weight");
      } else {
        Expect(vertex.Bones[k] < m_header.BoneCount, "vertex ", i, " follows bone ", int{vertex.Bones[k]});
      }
    }
    Expect(std::abs(sum - 1) < 2e-6, "the weights of vertex ", i, " sum to ", sum);
  }

  // The .vtx file. Every record's bytes are counted: none may be used twice or not at all.
  template <typename T>
  core::RecordArray<T> VtxTable(const char* what, int64_t offset, int64_t count, int64_t stride = sizeof(T)) {
    const bool fits = m_vtx.Fits(offset, count, stride);
    Expect(fits, ".vtx ", what, ": ", count, " records at ", offset, " do not fit");
    if (fits) m_vtxBytes += count * stride;
    return fits ? m_vtx.Array<T>(offset, count).value_or(core::RecordArray<T>()) : core::RecordArray<T>();
  }

  void CheckVtx() {
    const auto header = VtxTable<VtxHeader>("header", 0, 1);
    if (header.Count() == 0) return;
    Expect(header[0]->Version == 7, ".vtx version ", int32_t{header[0]->Version});
    Expect(header[0]->Checksum == m_header.Checksum, "the .vtx file's checksum differs");
    Expect(header[0]->LodCount == m_lods, "the .vtx file has ", int32_t{header[0]->LodCount}, " levels, the .vvd file ",
           m_lods);
    Expect(m_vtx.Value<int32_t>(4) == 24 && m_vtx.Value<uint16_t>(8) == 53 && m_vtx.Value<uint16_t>(10) == 9 &&
               m_vtx.Value<int32_t>(12) == 3,
           "the .vtx header's limits are not 24, 53, 9, 3");
    Expect(header[0]->BodyPartOffset == 36 && header[0]->BodyPartCount == static_cast<int32_t>(m_parts.size()),
           "the .vtx file has ", int32_t{header[0]->BodyPartCount}, " body parts");
    const auto parts = VtxTable<VtxBodyPart>("body parts", header[0]->BodyPartOffset, header[0]->BodyPartCount);
    for (int64_t p = 0; p < parts.Count() && p < static_cast<int64_t>(m_parts.size()); ++p) {
      const auto& models = m_parts[static_cast<size_t>(p)];
      Expect(parts[p]->ModelCount == static_cast<int32_t>(models.size()), ".vtx body part ", p, " has ",
             int32_t{parts[p]->ModelCount}, " models");
      const auto records =
          VtxTable<VtxModel>("models", parts[p].Offset() + parts[p]->ModelOffset, parts[p]->ModelCount);
      for (int64_t m = 0; m < records.Count() && m < static_cast<int64_t>(models.size()); ++m) {
        CheckVtxModel(records[m], models[static_cast<size_t>(m)]);
      }
    }
    const auto lists = VtxTable<MaterialList>("material lists", m_vtx.Value<int32_t>(0x18).value_or(0), m_lods);
    for (int64_t k = 0; k < lists.Count(); ++k) {
      Expect(lists[k]->Count == 0, "level ", k, " replaces materials");
    }
    if (m_usual) {
      Expect(m_vtxBytes == m_vtx.Size(), "the .vtx file's tables take ", m_vtxBytes, " of ", m_vtx.Size(), " bytes");
    }
  }

  void CheckVtxModel(const core::Record<VtxModel>& model, const ModelFacts& facts) {
    Expect(model->LodCount == m_lods, "a .vtx model has ", int32_t{model->LodCount}, " levels");
    const auto lods = VtxTable<VtxModelLod>("levels", model.Offset() + model->LodOffset, model->LodCount);
    float last = 0;
    for (int64_t k = 0; k < lods.Count(); ++k) {
      const float distance = lods[k]->SwitchDistance;
      const bool isShadow = distance == -1.0f;
      Expect(k == 0 ? distance == 0 : isShadow || distance > last, "level ", k, " begins at ", distance);
      if (isShadow) Expect((m_header.Flags & ModelFlagShadowLod) != 0 && k + 1 == m_lods, "a shadow level at ", k);
      last = distance;
      Expect(lods[k]->MeshCount == static_cast<int32_t>(facts.Meshes.size()), "level ", k, " has ",
             int32_t{lods[k]->MeshCount}, " meshes");
      const auto meshes = VtxTable<VtxMesh>("meshes", lods[k].Offset() + lods[k]->MeshOffset, lods[k]->MeshCount);
      for (int64_t i = 0; i < meshes.Count() && i < static_cast<int64_t>(facts.Meshes.size()); ++i) {
        const MeshFacts& mesh = facts.Meshes[static_cast<size_t>(i)];
        Expect(meshes[i]->Flags == (mesh.Record.Kind == MeshKindEyeball ? 2 : 0), "a .vtx mesh has the flags ",
               int{meshes[i]->Flags});
        const auto groups = VtxTable<VtxStripGroup>("strip groups", meshes[i].Offset() + meshes[i]->StripGroupOffset,
                                                    meshes[i]->StripGroupCount);
        for (const auto group : groups) CheckGroup(group, mesh, k);
      }
    }
  }

  void CheckGroup(const core::Record<VtxStripGroup>& group, const MeshFacts& mesh, int64_t lod) {
    const auto vertices = VtxTable<VtxVertex>("vertices", group.Offset() + group->VertexOffset, group->VertexCount);
    const auto indices = VtxTable<VtxIndex>("indices", group.Offset() + group->IndexOffset, group->IndexCount);
    const auto strips = VtxTable<VtxStrip>("strips", group.Offset() + group->StripOffset, group->StripCount);
    int64_t next = 0;
    for (const auto index : indices) {
      Expect(index->Vertex <= next && index->Vertex < vertices.Count(), "an index ", int{index->Vertex},
             " stands before ", next);
      next = std::max<int64_t>(next, int64_t{index->Vertex} + 1);
    }
    Expect(next == vertices.Count(), "a group has ", vertices.Count(), " vertices and uses ", next);
    bool any = false, all = true;
    for (int64_t i = 0; i + 2 < indices.Count(); i += 3) {
      bool moved = false;
      for (int64_t k = 0; k < 3; ++k) {
        const int64_t number = indices[i + k]->Vertex;
        if (number < vertices.Count()) moved |= mesh.Moved.count(vertices[number]->MeshVertex) != 0;
      }
      any |= moved;
      all &= moved;
    }
    if (lod == 0) {
      Expect(!any || all, "some triangles of a group are moved by flexes, others are not");
      Expect(group->Flags == (any ? 7 : 2) || (any && group->Flags == 6), "a group has the flags ", int{group->Flags});
    }
    for (const auto vertex : vertices) {
      Expect(vertex->MeshVertex < mesh.Record.LodVertexCounts[lod], "level ", lod, " uses vertex ",
             int{vertex->MeshVertex}, " of ", int32_t{mesh.Record.LodVertexCounts[lod]});
    }
    int64_t firstIndex = 0, firstVertex = 0;
    for (const auto strip : strips) {
      Expect(strip->FirstIndex == firstIndex && strip->FirstVertex == firstVertex && strip->Flags == 1 &&
                 strip->IndexCount % 3 == 0,
             "a strip begins at index ", int32_t{strip->FirstIndex}, ", vertex ", int32_t{strip->FirstVertex});
      firstIndex += strip->IndexCount;
      CheckStrip(strip, vertices, firstVertex, mesh);
      firstVertex += strip->VertexCount;
    }
    Expect(firstIndex == indices.Count() && firstVertex == vertices.Count(), "strips hold ", firstIndex, " of ",
           indices.Count(), " indices");
  }

  void CheckStrip(const core::Record<VtxStrip>& strip, const core::RecordArray<VtxVertex>& vertices, int64_t first,
                  const MeshFacts& mesh) {
    const bool isStatic = (m_header.Flags & ModelFlagStatic) != 0;
    const int64_t entries = strip->BoneStateCount;
    // For an empty table 8 bytes are kept.
    const auto table =
        VtxTable<BoneState>("bone tables", strip.Offset() + strip->BoneStateOffset, std::max<int64_t>(entries, 1));
    if (isStatic) {
      Expect(entries == 0 && strip->BoneCount == 0, "a strip of a static model has bones");
    } else {
      Expect(entries >= 1 && entries <= 53, "a strip has ", entries, " bones");
    }
    int most = 0;
    std::set<int32_t> used;
    for (int64_t i = first; i < first + strip->VertexCount && i < vertices.Count(); ++i) {
      const VtxVertex vertex = *vertices[i];
      most = std::max<int>(most, vertex.BoneCount);
      const size_t number = static_cast<size_t>(mesh.First) + vertex.MeshVertex;
      if (isStatic) {
        Expect(vertex.BoneCount == 0, "a vertex of a static model has ", int{vertex.BoneCount}, " weights");
        continue;
      }
      if (number >= m_vertices.size()) continue;
      Expect(vertex.BoneCount == m_vertices[number].WeightCount, "a .vtx vertex has ", int{vertex.BoneCount},
             " weights, the .vvd vertex ", int{m_vertices[number].WeightCount});
      for (int k = 0; k < vertex.BoneCount && k < 3; ++k) {
        if (!Expect(vertex.Bones[k] < table.Count(), "a vertex names slot ", int{vertex.Bones[k]})) continue;
        used.insert(vertex.Bones[k]);
        const int32_t bone = table[vertex.Bones[k]]->Bone;
        Expect(bone == m_vertices[number].Bones[k], "slot ", int{vertex.Bones[k]}, " is bone ", bone,
               ", the .vvd vertex follows ", int{m_vertices[number].Bones[k]});
      }
    }
    Expect(most == strip->BoneCount, "a strip says ", int{strip->BoneCount}, " weights and has ", most);
    Expect(isStatic || static_cast<int64_t>(used.size()) == entries, "a strip has ", entries, " bones and uses ",
           used.size());
  }

  void CheckPhy() {
    uint32_t words[4] = {};
    if (!Expect(m_files.Phy.size() >= sizeof words, "the .phy file is shorter than its header")) return;
    std::memcpy(words, m_files.Phy.data(), sizeof words);
    Expect(words[0] == 16 && words[1] == 0, "the .phy header is ", words[0], " bytes");
    Expect(words[3] == static_cast<uint32_t>(m_header.Checksum), "the .phy file's checksum differs");
    Expect(m_files.Phy.back() == '\0', "the .phy file does not end in a zero byte");
    const auto bones = Table<StudioBone>("bones", m_header.BoneOffset, m_header.BoneCount);
    int32_t highest = 0;
    for (const auto bone : bones) highest = std::max<int32_t>(highest, bone->PhysicsSolid);
    Expect(highest == static_cast<int32_t>(words[2]) - 1, "the bones name solid ", highest, " of ", words[2]);
  }

#pragma pack(push, 1)
  struct BoneByte {
    uint8_t Value;
  };
  struct BoneState {
    int32_t Slot, Bone;
  };
  struct MaterialList {
    int32_t Count, Offset;
  };
#pragma pack(pop)

  const LayoutFiles& m_files;
  core::ImageView m_mdl, m_vvd, m_vtx;
  StudioHeader m_header{};
  std::set<int64_t> m_texts;
  std::vector<std::vector<ModelFacts>> m_parts;
  std::vector<VvdVertex> m_vertices;
  int32_t m_vertexCount = 0;
  int32_t m_lods = 1;
  int64_t m_vtxBytes = 0;
  bool m_usual = true;
  std::vector<std::string> m_problems;
};

std::string ReadWhole(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

std::vector<std::string> CheckLayout(const LayoutFiles& files) {
  return Checker(files).Run();
}

LayoutFiles ReadLayoutFiles(const std::string& path) {
  const std::string stem = path.substr(0, path.size() - 4);
  return {ReadWhole(path), ReadWhole(stem + ".vvd"), ReadWhole(stem + ".dx90.vtx"), ReadWhole(stem + ".phy")};
}

}  // namespace tarnwick::tests
