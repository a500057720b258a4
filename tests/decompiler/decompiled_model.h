#pragma once

#include <string>
#include <vector>

#include "decompiler/decompile_job.h"
#include "decompiler/writers/model_names.h"
#include "support/model_builder.h"
#include "support/recording_report.h"
#include "support/scratch_folder.h"

namespace tarnwick::tests {

/// A whole job over a built model: its files stand in the folder "in", what it writes in "out".
class DecompiledModel {
 public:
  explicit DecompiledModel(const ModelFiles& files, uint32_t options = 0) {
    m_job.ModelPath = files.Write(m_folder.Path("in"), "cube");
    Run(options);
  }
  explicit DecompiledModel(const ModelBuilder& model, uint32_t options = 0) : DecompiledModel(model.Build(), options) {}

  /// The script behind its first two lines.
  std::string Script() const {
    const std::string script = File("ravelback.qc");
    return script.substr(script.find('\n', script.find('\n') + 1) + 1);
  }
  /// The part of it from the first line that begins with `first` up to the first line that begins with `behind`, or to
  /// the end; "" if there is no such line.
  std::string Script(const std::string& first, const std::string& behind = "$surfaceprop") const {
    const std::string script = "\n" + Script();
    const size_t begin = script.find("\n" + first);
    if (begin == std::string::npos) return "";
    const size_t end = script.find("\n" + behind, begin + 1);
    return script.substr(begin + 1, end == std::string::npos ? end : end - begin);
  }
  /// The script from behind its `$modelname` line up to the first statement that is not about meshes.
  std::string MeshCommands() const {
    // In sources that are ready to compile the bones stand ahead of the meshes, and end in the one called "root".
    const std::string script = Script();
    const size_t bone = script.find("$definebone \"root\"");
    if (bone == std::string::npos) return script.substr(0, script.find("$cdmaterials "));
    const size_t begin = script.find('\n', bone) + 1;
    const size_t end = std::min(script.find("\n$sequence ", begin - 1), script.find("\n$hboxset ", begin - 1));
    return script.substr(begin, end == std::string::npos ? end : end + 1 - begin);
  }
  std::string File(const std::string& name) const { return ReadText(Out(name)); }
  /// The path of a file that is written, as the job tells it.
  std::string Out(const std::string& name) const { return m_job.OutputDirectory + core::PathSeparator + name; }
  /// The path of a file beside the model.
  std::string In(const std::string& name) const { return m_folder.Path("in/" + name); }
  /// The files that were written, sorted.
  std::vector<std::string> Files() const {
    std::vector<std::string> files;
    for (const std::string& file : m_folder.Files()) {
      if (file.starts_with("out/")) files.push_back(file.substr(4));
    }
    return files;
  }

  RecordingReport Report;
  decompiler::DecompileResult Result;

 private:
  void Run(uint32_t options) {
    m_job.OutputDirectory = m_folder.Path("out");
    m_job.Options = options;
    std::filesystem::create_directory(m_job.OutputDirectory);
    Result = decompiler::DecompileModel(m_job, Report);
  }

  ScratchFolder m_folder;
  decompiler::DecompileJob m_job;
};

}  // namespace tarnwick::tests
