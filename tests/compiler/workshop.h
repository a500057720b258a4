#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "compiler/compile_model.h"
#include "model/studio_records.h"
#include "support/scratch_folder.h"

namespace tarnwick::tests {

inline constexpr std::string_view ArmMesh =
    "version 1\n"
    "nodes\n0 \"root\" -1\n1 \"arm\" 0\n2 \"unused\" 0\nend\n"
    "skeleton\ntime 0\n0 0 0 0 0 0 0\n1 4 0 0 0 0 0\n2 0 9 0 0 0 0\nend\n"
    "triangles\n"
    "skin.tga\n0 0 0 0 0 0 1 0 0\n0 8 0 0 0 0 1 1 0\n1 0 8 4 0 0 1 0 1 1 1 1.0\n"
    "end\n";
inline constexpr std::string_view ArmSwing =
    "version 1\nnodes\n0 \"root\" -1\n1 \"arm\" 0\nend\nskeleton\n"
    "time 0\n0 0 0 0 0 0 0\n1 4 0 0 0 0 0\n"
    "time 1\n0 1 0 0 0 0 0\n1 4 0 0 0 0.1 0\n"
    "time 2\n0 2 0 0 0 0 0\n1 4 0 0 0 0.2 0\nend\n";

/// A folder with a mesh and an animation, in which scripts are compiled.
struct Workshop {
  ScratchFolder Folder;
  compiler::CompileReport Report;

  Workshop() {
    WriteText(Folder.Path("parts/arm.smd"), ArmMesh);
    WriteText(Folder.Path("parts/Swing.smd"), ArmSwing);
  }
  std::optional<compiler::CompiledFiles> Compile(const std::string& script, compiler::CompileOptions options = {}) {
    WriteText(Folder.Path("arm.qc"), script);
    Report = {};
    return CompileToMemory(Folder.Path("arm.qc"), options, Report);
  }
  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const core::Trouble& trouble : Report.Troubles) texts.push_back(trouble.Text);
    return texts;
  }
};

inline model::StudioHeader HeaderOf(const compiler::CompiledFiles& files) {
  model::StudioHeader header;
  std::memcpy(&header, files.Mdl.data(), sizeof header);
  return header;
}

template <typename Record>
Record RecordAt(const std::string& bytes, int64_t at) {
  Record record;
  std::memcpy(&record, bytes.data() + at, sizeof record);
  return record;
}

}  // namespace tarnwick::tests
