#pragma once

#include "compiler/face/built_face.h"
#include "compiler/files/byte_writer.h"
#include "model/studio_records.h"

namespace tarnwick::compiler {

/// Writes the tables of faces, each where its turn comes.
class FaceTables {
 public:
  FaceTables(const BuiltFace& face, ByteWriter& writer, TextPool& texts, model::StudioHeader& header)
      : m_face(face), m_writer(writer), m_texts(texts), m_header(header) {}

  /// Descriptors, controllers, rules and, in newer versions, controls.
  void WriteShared(bool withControls);
  void WriteMouths();
  /// The eyeballs of a model; gives their number.
  int32_t WriteEyeballs(size_t model);
  /// The flexes of a model's mesh with their vertex animations; gives their number.
  int32_t WriteFlexes(size_t model, size_t mesh);

 private:
  const BuiltFace& m_face;
  ByteWriter& m_writer;
  TextPool& m_texts;
  model::StudioHeader& m_header;
};

}  // namespace tarnwick::compiler
