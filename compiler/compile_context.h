#pragma once

#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "compiler/compile_options.h"
#include "compiler/plan/compile_plan.h"
#include "core/file_image.h"
#include "qc/vrd_file.h"
#include "smd/smd_source.h"

namespace tarnwick::compiler {

/// A file of bones that other bones drive, and the statement that names it.
struct VrdSource {
  qc::Place At;
  qc::VrdFile File;
};

/// What the stages of one compile share: options, the plan, sources as read, and where troubles are told. Stages run
/// one after another; a stage that meets an error tells it and goes on as far as it can, so that all are told.
class CompileContext {
 public:
  CompileContext(const CompileOptions& options, const CompilePlan& plan) : Options(options), Plan(plan) {}

  const CompileOptions& Options;
  const CompilePlan& Plan;

  /// The source at its place in Script::Sources; nothing if it could not be read, which has been told.
  const smd::SmdSource* Source(int32_t number) const;

  /// The files of $proceduralbones; read, and what is wrong with them told, at the first call.
  const std::deque<VrdSource>& VrdSources();

  /// A file, through the options' reader; nothing, told at `at`, if it cannot be read.
  std::optional<core::FileImage> Read(const std::string& path, const qc::Place& at = {0, 1, 1, 0});

  /// Tells a trouble at a place of the script, as a compiler does: `walker.qc:12:8: error: ...`.
  void Error(const qc::Place& at, std::string text, core::TroubleKind kind = core::TroubleKind::Refused);
  void Warning(const qc::Place& at, std::string text, core::TroubleKind kind = core::TroubleKind::Refused);
  /// The same of a name that nothing has, unless the script's reader has told that in this line.
  void WarnOfUnknown(std::string_view name, const qc::Place& at, std::string text);
  size_t ErrorCount() const { return m_errors; }
  /// Whether the compile is to end; told once.
  bool Stopped();

  /// Pays for memory or work of about `bytes`. False, told once at `at`, when the compile may not take more.
  bool Spend(int64_t bytes, const qc::Place& at);

  /// Takes a source over; `number` is its place in Script::Sources.
  void SetSource(int32_t number, smd::SmdSource source);
  std::vector<core::Trouble> TakeTroubles();
  void Tell(core::Trouble trouble);

 private:
  std::vector<smd::SmdSource> m_sources;
  std::vector<bool> m_haveSource;
  std::optional<std::deque<VrdSource>> m_vrdSources;
  std::vector<core::Trouble> m_troubles;
  size_t m_errors = 0;
  int64_t m_spent = 0;
  bool m_overspent = false;
  bool m_stopped = false;
};

}  // namespace tarnwick::compiler
