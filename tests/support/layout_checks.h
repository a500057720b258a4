#pragma once

#include <cstdint>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "core/image_view.h"
#include "model/studio_records.h"
#include "model/vtx_records.h"
#include "model/vvd_records.h"
#include "support/layout_checker.h"

namespace tarnwick::tests {

/// The checks behind CheckLayout: those of the .mdl file in mdl_layout.cpp, of the vertices in vvd_layout.cpp, of the
/// triangles in vtx_layout.cpp, each of which looks at what the ones before it have found.
class LayoutChecks {
 public:
  explicit LayoutChecks(const LayoutFiles& files)
      : m_files(files), m_mdl(Bytes(files.Mdl)), m_vvd(Bytes(files.Vvd)), m_vtx(Bytes(files.Vtx)) {}

  std::vector<std::string> Run();

 private:
  /// What a mesh of the .mdl file says, for the other files.
  struct MeshFacts {
    int32_t First = 0;  // vertex, among all
    model::StudioMesh Record{};
    std::set<int32_t> Moved;  // by flexes
  };
  struct ModelFacts {
    std::vector<MeshFacts> Meshes;
  };

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

  bool CheckHeader();
  void CheckBones();
  /// The pose matrix is the inverse of the rest transforms from the root down.
  void CheckPoses(const core::RecordArray<model::StudioBone>& bones);
  /// Names stand in one pool at the end, each once, without gaps, an empty one first.
  void CheckTexts();
  void CheckTables();
  void CheckBodyParts();
  void CheckModel(const core::Record<model::StudioModel>& model, int32_t& vertex, int32_t& meshNumber,
                  ModelFacts& facts);
  void CheckFlexes(const core::Record<model::StudioMesh>& mesh, MeshFacts& facts);
  void CheckVvd();
  void ApplyFixups(const core::RecordArray<model::VvdFixup>& fixups);
  void CheckVertex(size_t i);

  // The .vtx file. Every record's bytes are counted: none may be used twice or not at all.
  template <typename T>
  core::RecordArray<T> VtxTable(const char* what, int64_t offset, int64_t count, int64_t stride = sizeof(T)) {
    const bool fits = m_vtx.Fits(offset, count, stride);
    Expect(fits, ".vtx ", what, ": ", count, " records at ", offset, " do not fit");
    if (fits) m_vtxBytes += count * stride;
    return fits ? m_vtx.Array<T>(offset, count).value_or(core::RecordArray<T>()) : core::RecordArray<T>();
  }

  void CheckVtx();
  void CheckVtxModel(const core::Record<model::VtxModel>& model, const ModelFacts& facts);
  void CheckGroup(const core::Record<model::VtxStripGroup>& group, const MeshFacts& mesh, int64_t lod);
  void CheckStrip(const core::Record<model::VtxStrip>& strip, const core::RecordArray<model::VtxVertex>& vertices,
                  int64_t first, const MeshFacts& mesh);
  void CheckPhy();

  const LayoutFiles& m_files;
  core::ImageView m_mdl, m_vvd, m_vtx;
  model::StudioHeader m_header{};
  std::set<int64_t> m_texts;
  std::vector<std::vector<ModelFacts>> m_parts;
  std::vector<model::VvdVertex> m_vertices;
  int32_t m_vertexCount = 0;
  int32_t m_lods = 1;
  int64_t m_vtxBytes = 0;
  bool m_usual = true;
  std::vector<std::string> m_problems;
};

}  // namespace tarnwick::tests
