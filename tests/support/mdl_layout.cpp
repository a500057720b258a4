#include "support/layout_checks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "core/paths.h"
#include "model/animation_records.h"
#include "model/face_records.h"
#include "model/script_records.h"

namespace tarnwick::tests {

using namespace model;

namespace {

#pragma pack(push, 1)
struct BoneByte {
  uint8_t Value;
};
#pragma pack(pop)

}  // namespace

bool LayoutChecks::CheckHeader() {
  const auto header = m_mdl.At<StudioHeader>(0);
  if (!Expect(header.has_value(), "the .mdl file is shorter than its header")) return false;
  m_header = **header;
  Expect(std::memcmp(m_header.Id, "IDST", 4) == 0, "the .mdl file does not begin with IDST");
  Expect(m_header.Version == 44 || m_header.Version == 48 || m_header.Version == 49, "version ", m_header.Version);
  Expect(m_header.Length == m_mdl.Size(), "length field ", m_header.Length, " of ", m_mdl.Size(), " bytes");
  Expect(m_header.SkinReferenceCount == m_header.TextureCount, "skin references ", m_header.SkinReferenceCount, " for ",
         m_header.TextureCount, " textures");
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

void LayoutChecks::CheckBones() {
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
    Expect(core::LowerAscii(names[a]) < core::LowerAscii(names[b]), "bones by name: ", names[a], " before ", names[b]);
  }
}

void LayoutChecks::CheckPoses(const core::RecordArray<StudioBone>& bones) {
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

void LayoutChecks::CheckTexts() {
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

void LayoutChecks::CheckTables() {
  const auto skins =
      Table<StudioShort>("skins", m_header.SkinOffset, int64_t{m_header.SkinReferenceCount} * m_header.SkinFamilyCount);
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

void LayoutChecks::CheckBodyParts() {
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

void LayoutChecks::CheckModel(const core::Record<StudioModel>& model, int32_t& vertex, int32_t& meshNumber,
                              ModelFacts& facts) {
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

void LayoutChecks::CheckFlexes(const core::Record<StudioMesh>& mesh, MeshFacts& facts) {
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

}  // namespace tarnwick::tests
