#pragma once

#include "core/text_writer.h"
#include "decompiler/writers/model_names.h"
#include "model/mesh_pieces.h"

namespace tarnwick::decompiler {

/// How a model's vertices stand in a source file.
struct MeshSmdForm {
  bool Unweighted = false;  // without weight lists
  bool VFromOne = false;    // v is 1 - v, as a compile stores it; else 0 - v
  bool TurnedBack =
      false;  // the quarter turn about Z, which a compile gives the meshes of a static model, is taken off
};

/// Writes the triangles: a material line ("name.tga") and three vertex lines each.
void WriteTriangles(core::TextWriter& writer, const MeshPieces& pieces, const MeshSmdForm& form);

/// The bone with the highest of the vertex's weights in use: the first of equal ones, bone 0 if none is above 0.
[[nodiscard]] int MainBone(const VvdVertex& vertex);

}  // namespace tarnwick::decompiler
