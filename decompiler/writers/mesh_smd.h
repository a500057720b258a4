#pragma once

#include "core/text_writer.h"
#include "decompiler/writers/model_names.h"
#include "model/mesh_pieces.h"
#include "smd/smd_values.h"

namespace tarnwick::decompiler {

/// A model's vertex as a corner of a source file: v is turned to 0 - v.
[[nodiscard]] smd::Vertex ToSmdVertex(const VvdVertex& vertex);

/// Writes the triangles: a material line ("name.tga") and three vertex lines each, with weights unless `unweighted`.
void WriteTriangles(core::TextWriter& writer, const MeshPieces& pieces, bool unweighted);

/// The bone with the highest of the vertex's weights in use: the first of equal ones, bone 0 if none is above 0.
[[nodiscard]] int MainBone(const VvdVertex& vertex);

}  // namespace tarnwick::decompiler
