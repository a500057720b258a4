#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "compiler/animation/track_encoder.h"
#include "compiler/files/block_file.h"
#include "compiler/files/byte_writer.h"
#include "compiler/files/model_parts.h"
#include "model/studio_records.h"

namespace tarnwick::compiler {

/// Writes animations, sequences and the graph of nodes.
class AnimationTables {
 public:
  /// `scales` are those of the bones, as MeasureScales gives them.
  AnimationTables(CompileContext& context, const ModelParts& parts, const std::vector<BoneScales>& scales,
                  ByteWriter& writer, TextPool& texts, model::StudioHeader& header, BlockFile& blocks);

  /// False, told, if a track is too long for the format.
  bool Write();

 private:
  /// A run of frames whose chain is encoded ahead of the writing, as all are, in parallel.
  struct Stretch {
    size_t Animation = 0;
    int32_t First = 0, Count = 0;
    std::optional<std::string> Chain;
  };
  int32_t SectionLength(const model::StudioAnimDesc& record) const;
  static std::vector<Stretch> SectionsOf(size_t animation, int32_t frames, int32_t length);
  void Encode(std::vector<Stretch>& stretches) const;
  bool WriteAnimations();
  bool WriteData(size_t number, std::vector<Stretch>& stretches, int64_t at, model::StudioAnimDesc& record);
  bool WriteSections(size_t number, const std::vector<Stretch>& sections, int64_t at, model::StudioAnimDesc& record);
  bool GoesToBlocks(size_t number) const;
  BlockFile::Place AddToBlocks(size_t number, const std::string& chain, model::StudioAnimDesc& record);
  static std::string IkRuleBytes(const BuiltAnimation& animation);
  void WriteSequences();
  void WriteSequenceTables(const BuiltSequence& sequence, int64_t at, model::StudioSeqDesc& record);
  void WriteNodes();

  CompileContext& m_context;
  const ModelParts& m_parts;
  ByteWriter& m_writer;
  TextPool& m_texts;
  model::StudioHeader& m_header;
  BlockFile& m_blocks;
  const std::vector<BoneScales>& m_scales;
  std::vector<std::pair<std::vector<float>, int64_t>> m_weightLists;
  bool m_new;
};

}  // namespace tarnwick::compiler
