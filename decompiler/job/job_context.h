#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "core/output_file.h"
#include "core/report.h"
#include "core/text_writer.h"
#include "decompiler/job/animation_files.h"
#include "decompiler/job/decompile_values.h"
#include "decompiler/job/file_batch.h"
#include "decompiler/job/output_names.h"
#include "decompiler/writers/model_names.h"
#include "decompiler/writers/script_word.h"
#include "model/model_reader.h"

namespace tarnwick::decompiler {

class MeshLines;

/// Everything that a running job knows, handed down through its stages. Stages call it from the job's own thread
/// only; what they give to `WriteFile` runs on any thread and touches nothing but its own values and the model.
class JobContext : private core::TroubleSink, public ModelReader {
 public:
  JobContext(const DecompileJob& job, core::Report& report);

  const DecompileJob& Job() const { return m_job; }
  bool Unweighted() const { return (m_job.Options & DecompileOptionUnweightedSmd) != 0; }
  bool KeepRotations() const { return (m_job.Options & DecompileOptionKeepRotations) != 0; }
  bool ReadyToCompile() const { return (m_job.Options & DecompileOptionReadyToCompile) != 0; }
  bool WithoutAnimations() const { return (m_job.Options & DecompileOptionNoAnimations) != 0; }
  bool WithoutPhysics() const { return (m_job.Options & DecompileOptionNoPhysics) != 0; }

  /// The open QC script.
  core::TextWriter& Script() { return *m_script; }
  void SetScript(core::TextWriter& script) { m_script = &script; }
  /// Whether the script has a length that a sound model can have; loops over a model's tables ask at each turn, since
  /// tables of a damaged model can overlap. The first no is told.
  bool ScriptWithinBounds();

  class PartialScript;

  /// The names that files of this job have (used with DecompileOptionReadyToCompile).
  OutputNames Names;

  /// `name` as a word of the script; in the plain form as it stands.
  std::string Word(std::string_view name) const { return ReadyToCompile() ? ScriptWord(name) : std::string(name); }

  /// The lines of the model's vertices in source files; null before the first mesh.
  std::shared_ptr<MeshLines> Lines;

  /// The first mesh that the script names, as it types it; empty before it has one.
  std::string FirstMesh;

  /// Names in the sources of textures that could not have their own there, by their numbers.
  std::map<int64_t, std::string> MaterialNames;
  /// The name that the texture has in the sources; nothing if the model has no such texture.
  std::optional<std::string_view> MaterialName(int64_t texture) const {
    const auto other = MaterialNames.find(texture);
    return other == MaterialNames.end() ? model::TextureName(Model, texture) : std::string_view(other->second);
  }

  /// Which delta reference file the job has; empty until the first delta animation.
  std::string DeltaReference;
  bool DeltaWritten = false;
  /// The animations that are exported so far.
  AnimationFiles Animations;

  /// Appends to the job's log. Lines carry their own \r\n.
  void Log(std::string_view text) { m_report.Log(text); }
  /// A line "Warning: ...\r\n" in the log, and a trouble without a box.
  void Warn(std::string text, core::TroubleKind kind = core::TroubleKind::Lost);
  /// A warning of what is odd but no failure; the plain form passes over it in silence.
  void Advise(std::string text, core::TroubleKind kind = core::TroubleKind::Lost) {
    if (ReadyToCompile()) Warn(std::move(text), kind);
  }
  /// A line "Error: ...\r\n" in the log, and a trouble without a box: something is missing that the user should know
  /// of, but nothing stops the work.
  void LogError(std::string text, core::TroubleKind kind, std::string alike);
  /// An error without a box, for something that the log has told in words of its own.
  void RecordError(std::string text, core::TroubleKind kind, std::string alike);
  /// Counts `count` things of `kind` (in the plural) that the model holds and the sources will not say. Told once a
  /// kind, at the end of the job. The plain form, which leaves out much by its nature, passes over it in silence.
  void Lose(std::string_view kind, int64_t count = 1);
  /// Tells, once a job, that things of `kind` (in the plural) were changed so that the sources compile, and how.
  void CleanOnce(std::string_view kind, std::string_view how);
  /// A box with the stop icon; `alike` and `details` as a trouble has them.
  void Error(std::string_view text, std::string_view caption, core::TroubleKind kind, std::string file = {},
             std::string alike = {}, std::string details = {});
  /// Whether the caller wants the job to end; told in the log the first time.
  bool Stopped();

  /// The path under which a file of this job is opened: the output directory, a separator, `name`.
  std::string OutputPath(std::string_view name) const;

  /// Begins the file `name` (with its extension) in the output directory. Nothing, with `reason`, if it cannot be
  /// created or if its name leads out of the output directory. In the plain form two files can have one name: then the
  /// earlier one is finished first, so that the later one stays.
  std::optional<core::OutputFile> Create(std::string_view name, std::string* reason = nullptr);

  /// Fills the file with `write` and gives it its name, now or on another thread before the stage ends. Failures of
  /// the write calls, and numbers that are not finite, are told when the stage ends, in the order of the calls.
  void WriteFile(core::OutputFile file, FileBatch::WriteFunction write);

  /// Waits for all files and tells what happened to them, in order. Called at the end of each stage.
  void FinishFiles();

  /// Gives the script, complete and flushed, its name; it stands first among the job's files.
  void FinishScript(core::OutputFile& script);

  /// Tells in the log what was lost, a line a kind.
  void TellLost();

  DecompileResult& Result() { return m_result; }

 private:
  /// Takes a trouble: a note becomes a line of the log, a warning or an error without a box a line too, and both reach
  /// the report and the result.
  void Tell(const core::Trouble& trouble) override;
  void Keep(core::Trouble trouble);
  /// Puts a file that is finished into the result; what stood under its path before is no more.
  void Record(FileOutcome& outcome);

  const DecompileJob& m_job;
  core::Report& m_report;
  core::TextWriter* m_script = nullptr;
  FileBatch m_files;
  std::set<std::string> m_begunNames;      // of the files, as FileKey has them
  std::set<std::string> m_rewrittenPaths;  // of files that were begun more than once
  DecompileResult m_result;
  DecompileProgress m_progress;
  int64_t m_scriptCharged = 0;
  bool m_stopTold = false;
  std::set<std::string, std::less<>> m_cleaned;  // kinds that CleanOnce has told
};

/// A part of the script that is kept apart while it lives, so that a statement is written whole or not at all.
class JobContext::PartialScript {
 public:
  explicit PartialScript(JobContext& job)
      : m_job(job), m_outer(*job.m_script), m_outerCharged(std::exchange(job.m_scriptCharged, 0)) {
    job.m_script = &m_writer;
  }
  ~PartialScript() {
    m_job.m_script = &m_outer;
    m_job.m_scriptCharged = m_outerCharged;
  }
  PartialScript(const PartialScript&) = delete;
  PartialScript& operator=(const PartialScript&) = delete;

  /// Adds the part to the script.
  void Keep() {
    m_writer.Flush();
    m_outer.Raw(m_text);
    m_outer.CountNonFinite(m_writer.NonFiniteCount());
    m_outerCharged += m_job.m_scriptCharged;
  }

 private:
  JobContext& m_job;
  core::TextWriter& m_outer;
  int64_t m_outerCharged;
  std::string m_text;
  core::TextWriter m_writer{m_text};
};

/// What each file costs a job (see Spend) on top of its bytes.
inline constexpr int64_t FileCost = int64_t{64} << 10;

/// Appends `text` to the job's log.
inline void DecompileLog(JobContext& job, std::string_view text) {
  job.Log(text);
}

}  // namespace tarnwick::decompiler
