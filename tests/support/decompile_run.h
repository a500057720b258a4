#pragma once

#include <cstdint>
#include <string>

#include "decompiler/decompile_job.h"
#include "support/model_builder.h"
#include "support/recording_report.h"
#include "support/scratch_folder.h"

namespace tarnwick::tests {

/// A whole job on a built model: what it wrote and what it told.
class DecompileRun {
 public:
  explicit DecompileRun(const ModelBuilder& model, uint32_t options = 0) : DecompileRun(model.Build(), options) {}
  explicit DecompileRun(const ModelFiles& files, uint32_t options = 0) {
    decompiler::DecompileJob job;
    job.ModelPath = files.Write(m_input.Path(), "cube");
    job.OutputDirectory = Output.Path();
    job.Options = options;
    Result = decompiler::DecompileModel(job, Report);
  }

  /// The script behind its first two lines.
  std::string Script() const {
    const std::string text = ReadText(Output.Path("ravelback.qc"));
    return text.substr(text.find('\n', text.find('\n') + 1) + 1);
  }
  /// The part of the script from the first line that begins with `first` on, up to the first line that begins with
  /// `behind`; "" if there is no such line.
  std::string Script(const std::string& first, const std::string& behind = "$surfaceprop") const {
    const std::string text = "\n" + Script();
    const size_t begin = text.find("\n" + first);
    if (begin == std::string::npos) return "";
    const size_t end = text.find("\n" + behind, begin + 1);
    return text.substr(begin + 1, end == std::string::npos ? end : end - begin);
  }
  std::string File(const std::string& name) const { return ReadText(Output.Path(name)); }

  ScratchFolder Output;
  RecordingReport Report;
  decompiler::DecompileResult Result;

 private:
  ScratchFolder m_input;
};

}  // namespace tarnwick::tests
