#include "model_variations.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>

#include "model/script_records.h"
#include "model/studio_records.h"
#include "model/vtx_records.h"
#include "model/vvd_records.h"
#include "random_parts.h"

namespace tarnwick::tests {

namespace {

using namespace model;

template <typename T>
T Get(const std::string& bytes, int64_t offset) {
  T value;
  std::memcpy(&value, bytes.data() + offset, sizeof value);
  return value;
}
template <typename T>
void Put(std::string& bytes, int64_t offset, const T& value) {
  std::memcpy(bytes.data() + offset, &value, sizeof value);
}
/// Changes record `number` of a table.
template <typename T, typename Change>
void Edit(std::string& bytes, int64_t table, int64_t number, const Change& change) {
  const int64_t offset = table + number * static_cast<int64_t>(sizeof(T));
  T record = Get<T>(bytes, offset);
  change(record, offset);
  Put(bytes, offset, record);
}

class Variation {
 public:
  Variation(compiler::CompiledFiles& files, uint32_t seed)
      : m_files(files), m_dice(seed), m_header(Get<StudioHeader>(files.Mdl, 0)) {}

  /// Calls `edit` with each model, where it stands, and its place in the tree of the .vtx file.
  void ForModels(const std::function<void(StudioModel&, int64_t, int64_t part, int64_t number)>& edit) {
    for (int32_t p = 0; p < m_header.BodyPartCount; ++p) {
      const int64_t at = m_header.BodyPartOffset + p * static_cast<int64_t>(sizeof(StudioBodyPart));
      const auto part = Get<StudioBodyPart>(m_files.Mdl, at);
      for (int32_t m = 0; m < part.ModelCount; ++m) {
        Edit<StudioModel>(m_files.Mdl, at + part.ModelOffset, m,
                          [&](StudioModel& model, int64_t offset) { edit(model, offset, p, m); });
      }
    }
  }
  void ForMeshes(const std::function<void(const StudioModel&, const StudioMesh&)>& look) {
    ForModels([&](const StudioModel& model, int64_t offset, int64_t, int64_t) {
      for (int32_t k = 0; k < model.MeshCount; ++k) {
        look(model,
             Get<StudioMesh>(m_files.Mdl, offset + model.MeshOffset + k * static_cast<int64_t>(sizeof(StudioMesh))));
      }
    });
  }

  void RepeatVertices() {
    const auto vvd = Get<VvdHeader>(m_files.Vvd, 0);
    if (vvd.FixupCount > 0) return;
    ForMeshes([&](const StudioModel& model, const StudioMesh& mesh) {
      const int32_t last = mesh.LodVertexCounts[7];
      if (last < 2 || mesh.FlexCount > 0) return;
      const int64_t first = model.VertexByteOffset / int64_t{sizeof(VvdVertex)} + mesh.FirstVertex;
      const int64_t from = first + m_dice.Below(last), to = first + m_dice.Below(last);
      const auto place = [&](int64_t vertex) { return vvd.VertexOffset + vertex * int64_t{sizeof(VvdVertex)}; };
      const auto vertex = Get<VvdVertex>(m_files.Vvd, place(from));
      const auto other = Get<VvdVertex>(m_files.Vvd, place(to));
      // Bones stay in use as they are.
      if (std::memcmp(vertex.Bones, other.Bones, sizeof vertex.Bones) == 0) Put(m_files.Vvd, place(to), vertex);
    });
  }

  void HideVertices() {
    const auto header = Get<VtxHeader>(m_files.Vtx, 0);
    ForModels([&](const StudioModel& model, int64_t, int64_t part, int64_t number) {
      const int64_t partAt = header.BodyPartOffset + part * int64_t{sizeof(VtxBodyPart)};
      const int64_t modelAt =
          partAt + Get<VtxBodyPart>(m_files.Vtx, partAt).ModelOffset + number * static_cast<int64_t>(sizeof(VtxModel));
      const int64_t lodAt = modelAt + Get<VtxModel>(m_files.Vtx, modelAt).LodOffset;
      for (int32_t k = 0; k < model.MeshCount; ++k) {
        const int64_t meshAt =
            lodAt + Get<VtxModelLod>(m_files.Vtx, lodAt).MeshOffset + k * static_cast<int64_t>(sizeof(VtxMesh));
        const auto mesh = Get<VtxMesh>(m_files.Vtx, meshAt);
        if (mesh.StripGroupCount != 1 || model.EyeballCount > 0) continue;
        const int64_t groupAt = meshAt + mesh.StripGroupOffset;
        auto group = Get<VtxStripGroup>(m_files.Vtx, groupAt);
        if (group.StripCount != 1 || group.IndexCount < 12) continue;
        const int64_t stripAt = groupAt + group.StripOffset;
        auto strip = Get<VtxStrip>(m_files.Vtx, stripAt);
        strip.IndexCount = group.IndexCount -= 6;
        Put(m_files.Vtx, groupAt, group);
        Put(m_files.Vtx, stripAt, strip);
      }
    });
  }

  void LengthenNames() {
    ForModels([&](StudioModel& model, int64_t, int64_t part, int64_t number) {
      if (model.MeshCount == 0) return;
      const std::string name = "a_long_name_that_goes_beyond_what_a_record_has_room_for_" + std::to_string(part) +
                               std::to_string(number) + m_dice.Any({"xxxxxxxx", ".smdxxxx", "x.smd", "xx.smd"});
      std::fill(std::begin(model.Name), std::end(model.Name), '\0');
      name.copy(model.Name, sizeof model.Name);
    });
  }

  void LoseHitboxNames() {
    for (int32_t s = 0; s < m_header.HitboxSetCount; ++s) {
      const int64_t at = m_header.HitboxSetOffset + s * static_cast<int64_t>(sizeof(StudioHitboxSet));
      const auto set = Get<StudioHitboxSet>(m_files.Mdl, at);
      for (int32_t i = 0; i < set.HitboxCount; ++i) {
        Edit<StudioHitbox>(m_files.Mdl, at + set.HitboxOffset, i,
                           [](StudioHitbox& box, int64_t) { box.NameOffset = 0x7000000; });
      }
    }
  }

  void ShuffleWeights() {
    const auto vvd = Get<VvdHeader>(m_files.Vvd, 0);
    for (int32_t i = 0; i < vvd.LodVertexCount[0]; ++i) {
      Edit<VvdVertex>(m_files.Vvd, vvd.VertexOffset, i, [&](VvdVertex& vertex, int64_t) {
        if (vertex.WeightCount < 2) return;
        if (!m_dice.Chance(50)) return;
        const float weight = vertex.Weights[0];
        const auto bone = vertex.Bones[0];
        vertex.Weights[0] = vertex.Weights[1];
        vertex.Bones[0] = vertex.Bones[1];
        vertex.Weights[1] = weight;
        vertex.Bones[1] = bone;
      });
    }
  }

  void ChangeSigns() {
    m_header.EyePosition = {-0.0f, 0, 0};
    Put(m_files.Mdl, 0, m_header);
  }

 private:
  compiler::CompiledFiles& m_files;
  Dice m_dice;
  StudioHeader m_header;
};

}  // namespace

void VaryModel(compiler::CompiledFiles& files, uint32_t seed, uint32_t variations) {
  Variation variation(files, seed);
  if ((variations & VaryRepeatedVertices) != 0) variation.RepeatVertices();
  if ((variations & VaryHiddenVertices) != 0) variation.HideVertices();
  if ((variations & VaryLongNames) != 0) variation.LengthenNames();
  if ((variations & VaryHitboxNames) != 0) variation.LoseHitboxNames();
  if ((variations & VaryWeights) != 0) variation.ShuffleWeights();
  if ((variations & VarySigns) != 0) variation.ChangeSigns();
}

}  // namespace tarnwick::tests
