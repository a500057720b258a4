#pragma once

#include <cstdint>

#include "core/text_writer.h"
#include "decompiler/mesh_pieces.h"
#include "decompiler/reference_skeleton.h"

namespace tarnwick::decompiler {

/// Writes what every reference and LOD file begins with: nodes, the skeleton at rest, and the line that begins the
/// triangles.
void WriteReferenceHead(core::TextWriter& writer, const ReferenceSkeleton& skeleton);

/// Writes the triangles: a material line and three vertex lines each, with weights unless `unweighted`.
void WriteTriangles(core::TextWriter& writer, const MeshPieces& pieces, bool unweighted);

/// The bone with the highest of the vertex's weights in use: the first of equal ones, bone 0 if none is above 0.
int MainBone(const VvdVertex& vertex);

/// Writes one vertex line: main bone, position, normal, texture coordinates with v turned to 0 - v, and the weights
/// unless `unweighted`. Returns the end of the text, at most LongestVertexLine bytes; no NUL is written.
char* WriteVertexLine(char* out, const VvdVertex& vertex, bool unweighted);

/// 8 numbers, 3 weights, and 7 whole numbers with their blanks.
inline constexpr size_t LongestVertexLine = 18 * core::LongestNumberText;

}  // namespace tarnwick::decompiler
