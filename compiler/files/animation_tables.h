#pragma once

#include "compiler/animation/track_encoder.h"
#include "compiler/files/byte_writer.h"
#include "compiler/files/model_parts.h"
#include "model/studio_records.h"

namespace tarnwick::compiler {

/// Writes animations, sequences and the graph of nodes.
class AnimationTables {
 public:
  AnimationTables(CompileContext& context, const ModelParts& parts, ByteWriter& writer, TextPool& texts,
                  model::StudioHeader& header);

  /// False, told, if a track is too long for the format.
  bool Write();

 private:
  bool WriteAnimations();
  bool WriteData(const BuiltAnimation& animation, int64_t at, model::StudioAnimDesc& record);
  bool WriteSections(const BuiltAnimation& animation, int64_t at, model::StudioAnimDesc& record);
  void WriteIkRules(const BuiltAnimation& animation, int64_t at, model::StudioAnimDesc& record);
  void WriteSequences();
  void WriteSequenceTables(const BuiltSequence& sequence, int64_t at, model::StudioSeqDesc& record);
  void WriteNodes();

  CompileContext& m_context;
  const ModelParts& m_parts;
  ByteWriter& m_writer;
  TextPool& m_texts;
  model::StudioHeader& m_header;
  std::vector<BoneScales> m_scales;
  std::vector<std::pair<std::vector<float>, int64_t>> m_weightLists;
  bool m_new;
};

}  // namespace tarnwick::compiler
