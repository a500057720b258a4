#pragma once

#include <mutex>
#include <optional>

#include "core/text_writer.h"
#include "decompiler/writers/model_names.h"
#include "model/mesh_pieces.h"
#include "smd/vertex_lines.h"

namespace tarnwick::decompiler {

/// How a model's vertices stand in a source file.
struct MeshSmdForm {
  bool Unweighted = false;  // without weight lists
  bool VFromOne = false;    // v is 1 - v, as a compile stores it; else 0 - v
  bool TurnedBack =
      false;  // the quarter turn about Z, which a compile gives the meshes of a static model, is taken off
};

/// The lines of all vertices of a model in one form, which its meshes and LODs have in common. They are formed when
/// they are first asked for, by the thread that asks.
class MeshLines {
 public:
  /// Of the first `count` of `vertices`; others may be asked for, and are written anew each time.
  MeshLines(core::RecordArray<VvdVertex> vertices, int64_t count, const MeshSmdForm& form)
      : m_vertices(vertices), m_count(count), m_form(form) {}

  const MeshSmdForm& Form() const { return m_form; }
  /// Nothing for a model of so many vertices that their lines would take much memory.
  const smd::LineList* Get();

 private:
  const core::RecordArray<VvdVertex> m_vertices;
  const int64_t m_count;
  const MeshSmdForm m_form;
  std::once_flag m_sought;
  std::optional<smd::LineList> m_lines;
};

/// Writes the triangles: a material line ("name.tga") and three vertex lines each.
/// `lines` are those of the image that the pieces' vertices are in.
void WriteTriangles(core::TextWriter& writer, const MeshPieces& pieces, MeshLines& lines);

/// The bone with the highest of the vertex's weights in use: the first of equal ones, bone 0 if none is above 0.
[[nodiscard]] int MainBone(const VvdVertex& vertex);

}  // namespace tarnwick::decompiler
