#include "decompiler/writers/lod_blocks.h"

#include "model/truncate.h"

namespace tarnwick::decompiler {

void WriteLodOpening(core::TextWriter& script, float switchDistance) {
  if (switchDistance == -1.0f) {
    script.Text("$shadowlod\n{\n");
  } else {
    script.Format("$lod %d\n {\n", model::TruncateToInt(switchDistance));
  }
}

std::string& LodBlocks::LinesOf(int lod, float switchDistance) {
  return m_blocks.try_emplace(lod, Block{switchDistance, {}}).first->second.Lines;
}

void LodBlocks::Replace(int lod, float switchDistance, const std::string& stem, const std::string& lodName) {
  LinesOf(lod, switchDistance) += "  replacemodel \"" + stem + "\" \"" + lodName + "\"\n";
}

void LodBlocks::Remove(int lod, float switchDistance, const std::string& stem) {
  LinesOf(lod, switchDistance) += "  removemodel \"" + stem + "\"\n";
}

void LodBlocks::Add(int lod, const std::string& line) {
  const auto block = m_blocks.find(lod);
  if (block != m_blocks.end()) block->second.Lines += "  " + line + "\n";
}

void LodBlocks::Write(core::TextWriter& script) const {
  for (const auto& [lod, block] : m_blocks) {
    if (block.SwitchDistance == -1.0f) {
      script.Text("$shadowlod {\n");
    } else {
      script.Text("$lod " + core::ShortestDecimal(block.SwitchDistance) + " {\n");
    }
    script.Text(block.Lines);
    script.Text("}\n");
  }
}

}  // namespace tarnwick::decompiler
