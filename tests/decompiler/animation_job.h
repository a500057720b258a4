#pragma once

#include <optional>
#include <string>
#include <utility>

#include "core/paths.h"
#include "decompiler/plain/sequences.h"
#include "decompiler/sources/sequences.h"
#include "decompiler/stages/animation_file.h"
#include "model/animation_check.h"
#include "support/model_builder.h"
#include "support/recording_report.h"
#include "support/scratch_folder.h"

namespace tarnwick::tests {

/// A job over a built model, as the stages of animations meet it: the model is loaded, the script is open.
class AnimationJob {
 public:
  explicit AnimationJob(const ModelFiles& files, uint32_t options = 0, core::WorkQueue* helpers = nullptr) {
    m_record.ModelPath = files.Write(Folder.Path(), "in");
    m_record.OutputDirectory = Folder.Path();
    m_record.Options = options;
    m_record.Helpers = helpers;
    m_context.emplace(m_record, Report);
    Context().Model.Mdl = *decompiler::LoadModelFile(m_record.ModelPath);
    Context().SetScript(m_script);
  }
  explicit AnimationJob(const ModelBuilder& model, uint32_t options = 0) : AnimationJob(model.Build(), options) {}

  decompiler::JobContext& Context() { return *m_context; }

  core::Record<decompiler::StudioAnimDesc> Animation(int64_t index) {
    return Table<decompiler::StudioAnimDesc>(Context().Model.Header()->AnimOffset, index);
  }
  core::Record<decompiler::StudioSeqDesc> Sequence(int64_t index) {
    return Table<decompiler::StudioSeqDesc>(Context().Model.Header()->SequenceOffset, index);
  }

  /// Exports the animations of all sequences in order, waits for the files, and gives the script.
  std::string Export() {
    if (Context().ReadyToCompile()) {
      decompiler::sources::WriteSequences(Context());
    } else {
      for (int64_t i = 0; i < Context().Model.Header()->SequenceCount; ++i) {
        decompiler::plain::ExportSequenceAnimations(Context(), Sequence(i));
      }
    }
    Context().FinishFiles();
    m_script.Flush();
    return WithLineFeeds(Script);
  }

  /// The text of an animation's file; the reason why there is none for damaged data.
  std::string Text(int64_t index) {
    const auto checked = decompiler::CheckAnimation(Context(), Animation(index), "x");
    if (!checked) return Report.Boxes.empty() ? "not told" : Report.Boxes.back().Text;
    std::string text;
    core::TextWriter writer(text);
    decompiler::WriteAnimationSmd(writer, *decompiler::GetAnimationSmdModel(Context()), *checked,
                                  {.OnDefaultPose = !Context().DeltaReference.empty()});
    writer.Flush();
    NonFinite = writer.NonFiniteCount();
    return WithLineFeeds(text);
  }

  ScratchFolder Folder;
  RecordingReport Report;
  std::string Script;
  uint64_t NonFinite = 0;

 private:
  template <core::PackedRecord T>
  core::Record<T> Table(int64_t offset, int64_t index) {
    return *Context().Model.View().At<T>(offset + index * static_cast<int64_t>(sizeof(T)));
  }

  decompiler::DecompileJob m_record;
  std::optional<decompiler::JobContext> m_context;
  core::TextWriter m_script{Script};
};

}  // namespace tarnwick::tests
