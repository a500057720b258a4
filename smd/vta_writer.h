#pragma once

#include <cstdint>
#include <string_view>

#include "core/text_writer.h"
#include "smd/skeleton_text.h"

namespace tarnwick::smd {

/// Writes a VTA file from its beginning to its end:
///
///     VtaWriter vta(writer, skeleton, 1);
///     vta.BeginBase();
///     for (...) vta.Vertex(number, position, normal);  // all vertices at rest
///     vta.BeginFrame(1, "smile");
///     for (...) vta.Vertex(number, position, normal);  // those that move
///     vta.End();
class VtaWriter {
 public:
  /// Writes the nodes and the skeleton at rest for the base and `frameCount` frames behind it, and opens the vertices.
  VtaWriter(core::TextWriter& writer, const SkeletonText& skeleton, int32_t frameCount);

  void BeginBase();
  /// Begins frame `number`, from 1 on, of the flex `name`.
  void BeginFrame(int32_t number, std::string_view name);
  void Vertex(int64_t number, const Triple& position, const Triple& normal);
  void End();

 private:
  core::TextWriter& m_writer;
};

}  // namespace tarnwick::smd
