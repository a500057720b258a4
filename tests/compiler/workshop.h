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

/// What scripts begin with.
inline constexpr std::string_view Head = "$modelname a.mdl\n$cd parts\n";

/// A pyramid with a square foot of `size` and the materials a and b.
inline std::string Pyramid(int size) {
  const std::string s = std::to_string(size);
  const std::string x = "0 " + s + " 0 0 0 0 1 0 0\n", y = "0 0 " + s + " 0 0 0 1 0 1\n",
                    z = "0 0 0 " + s + " 0 0 1 1 1\n", o = "0 0 0 0 0 0 1 0 0\n";
  return "version 1\nnodes\n0 \"root\" -1\nend\nskeleton\ntime 0\n0 0 0 0 0 0 0\nend\ntriangles\na\n" + o + y + x +
         "a\n" + o + x + z + "b\n" + o + z + y + "b\n" + x + y + z + "end\n";
}

/// A swing of many frames, in which no two changes are alike.
inline std::string LongSwing(int frames) {
  std::string text = "version 1\nnodes\n0 \"root\" -1\n1 \"arm\" 0\nend\nskeleton\n";
  for (int frame = 0; frame < frames; ++frame) {
    const std::string by = std::to_string(frame * frame % 97 * 0.003);
    text += "time " + std::to_string(frame) + "\n0 0 0 0 0 0 0\n1 4 " + by + " 0 " + by + " " + by + " 0\n";
  }
  return text + "end\n";
}

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

inline std::vector<std::string> TextureNames(const compiler::CompiledFiles& files) {
  const model::StudioHeader header = HeaderOf(files);
  std::vector<std::string> names;
  for (int32_t i = 0; i < header.TextureCount; ++i) {
    const int64_t at = header.TextureOffset + int64_t{i} * static_cast<int64_t>(sizeof(model::StudioTexture));
    names.emplace_back(files.Mdl.c_str() + at + RecordAt<model::StudioTexture>(files.Mdl, at).NameOffset);
  }
  return names;
}

}  // namespace tarnwick::tests
