#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

#include "core/file_store.h"
#include "core/trouble.h"
#include "qc/script.h"

namespace tarnwick::compiler {

/// How scripts are compiled.
struct CompileOptions {
  std::string GameDirectory;  // models come to lie below its folder `models`
  int32_t Version = 48;       // 44, 48 or 49
  /// Corners of one place whose normals are less than this many degrees apart become one vertex; 0: only equal ones.
  float NormalAngle = 2;
  /// Normals, weights and coordinates are kept as the sources have them: no unit length, no dropped weights.
  bool KeepValues = false;
  /// Has the script and its sources, and takes the model's files; nothing: the disk.
  core::FileStore* Files = nullptr;
  /// Reads files in place of `Files`.
  qc::FileReader Read;
  /// Bytes that all tables of a compile may take, so that no script can ask for endless memory.
  int64_t MemoryLimit = int64_t{1} << 30;
  /// Threads that a compile takes; 0: one a core, or a single one where `Read` is given. The files are the same.
  int32_t Threads = 0;
  /// Ends the compile soon, without files.
  std::stop_token Stop;
};

/// Where a compile has its files.
inline core::FileStore& FilesOf(const CompileOptions& options) {
  return options.Files != nullptr ? *options.Files : core::DiskStore();
}

/// What a compile made.
struct CompileReport {
  int32_t Bones = 0, Sequences = 0, Animations = 0;
  int64_t Vertices = 0, Triangles = 0;
  struct File {
    std::string Path;
    int64_t Size = 0;
  };
  std::vector<File> Files;
  std::vector<core::Trouble> Troubles;  // in the order in which they were told
  size_t Errors = 0, Warnings = 0;
  double Seconds = 0;
};

/// The files of a model in memory; one that is empty has none.
struct CompiledFiles {
  std::string Mdl, Vvd, Vtx, Phy, Ani;
};

}  // namespace tarnwick::compiler
