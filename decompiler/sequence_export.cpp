#include "decompiler/sequence_export.h"

#include <algorithm>
#include <utility>

#include "core/paths.h"
#include "decompiler/animation_smd.h"
#include "decompiler/script_text.h"

namespace tarnwick::decompiler {

namespace {

constexpr std::string_view DeltaStem = "ravelback_delta";
constexpr std::string_view Extension = ".smd";
/// Stands for the delta reference among the numbers of animations.
constexpr int64_t DeltaNumber = -1;

/// What one place of a blend table costs a job (see JobContext::Spend) on top of the names in its log and script lines.
constexpr int64_t BlendCost = 128;
constexpr int64_t NamesInLines = 4;

/// The longest text of one animation, for a file of models of this many bytes: 256 MiB, which 60 bones fill in more
/// than 50,000 frames, and as much again for every megabyte of data. A frame count beyond it is no frame count.
constexpr int64_t MostTextBase = int64_t{256} << 20;
constexpr int64_t MostTextForEachByte = 256;

std::string_view StemOf(std::string_view name) {
  return name.substr(name.starts_with('@') ? 1 : 0);
}

/// The bytes that the animation's data lie in.
int64_t DataSize(const JobContext& job) {
  return job.Model.View().Size() + (job.Model.AnimBlocks ? job.Model.AnimBlocks->File.View().Size() : 0);
}

/// Exports one animation. Each step gives false when the stage is to end.
class AnimationExport {
 public:
  AnimationExport(JobContext& job, const core::Record<StudioAnimDesc>& animation, int64_t number)
      : m_job(job), m_files(job.Animations), m_animation(animation), m_number(number) {}

  bool Run() {
    if (const auto found = m_files.Exports.find(m_number); found != m_files.Exports.end()) return Again(found->second);
    const auto name = m_job.NameOf("animation name", m_animation, m_animation->NameOffset);
    if (!name) return Refuse({});
    m_name = *name;
    if (!SpendForLines()) return false;
    if (IsDelta() && !m_job.DeltaWritten && !WriteDeltaReference()) return false;
    if (m_animation->FrameCount == 0) {
      m_job.Advise("Animation " + std::string(m_name) +
                   " has no frames: there is no file for it, though sequences name it");
      return Refuse({});
    }
    if (m_animation->FrameCount < 0) {
      TellDamage("has a negative number of frames");
      return Refuse({});
    }
    if (m_job.Stopped() || !Model()) return false;
    const std::string file = m_job.ReadyToCompile() ? m_job.Names.Take(StemOf(m_name), Extension)
                                                    : std::string(StemOf(m_name)) + std::string(Extension);
    if (!WriteAnimation(file)) return false;
    WriteStatement(file);
    return true;
  }

 private:
  bool IsDelta() const { return (m_animation->Flags & AnimFlagDelta) != 0; }

  bool SpendForLines() { return m_job.Spend(BlendCost + NamesInLines * static_cast<int64_t>(m_name.size())); }

  /// An animation that an earlier place of a blend table has brought.
  bool Again(AnimationFiles::Export& earlier) {
    m_name = m_job.Model.NameOf(m_animation, m_animation->NameOffset).value_or("");
    if (!SpendForLines()) return false;
    if (m_job.ReadyToCompile() || earlier.File.empty()) return true;
    if (earlier.State == AnimationFiles::Outcome::Written) {
      if (m_files.LastWriters[FileKey(earlier.File)] != m_number) {
        if (!WriteAnimation(earlier.File)) return false;
      } else {
        DecompileLog(m_job, "Creating " + earlier.File + "\r\n");
      }
    } else if (earlier.State == AnimationFiles::Outcome::NotOpened) {
      DecompileLog(m_job, "Unable to open file " + earlier.File);
    }
    WriteStatement(earlier.File);
    return true;
  }

  /// Notes that the animation has no file and must not be tried again.
  bool Refuse(std::string file) {
    m_files.Exports[m_number] = {std::move(file), AnimationFiles::Outcome::NoFile};
    return true;
  }

  void TellDamage(std::string_view problem) {
    TellAnimationDamage(m_job, m_job.Model.Mdl.Path(), m_name, "record", m_animation.Offset(), problem);
  }

  const AnimationSmdModel* Model() {
    if (!std::exchange(m_files.ModelSought, true)) m_files.Model = MakeAnimationSmdModel(m_job);
    return m_files.Model.get();
  }

  bool WriteDeltaReference() {
    if (m_job.Stopped() || !Model()) return false;
    m_job.DeltaWritten = true;
    m_job.DeltaReference = m_job.ReadyToCompile() ? m_job.Names.Take(DeltaStem, Extension)
                                                  : std::string(DeltaStem) + std::string(Extension);
    if (!m_job.Spend(FileCost + AnimationSmdSize(*Model(), 2))) return false;
    if (auto file = Open(m_job.DeltaReference, DeltaNumber)) {
      m_job.WriteFile(std::move(*file), [model = m_files.Model](core::TextWriter& writer) {
        WriteBindPoseSmd(writer, *model);
        return true;
      });
    }
    m_job.Script().Format("$animation %s \"%s\" fps 30\n", m_job.DeltaReference, m_job.DeltaReference);
    return true;
  }

  bool WriteAnimation(const std::string& name) {
    const int64_t size = AnimationSmdSize(*Model(), int64_t{m_animation->FrameCount} + 1);
    if (size > MostTextBase + MostTextForEachByte * DataSize(m_job)) {
      TellDamage("has " + std::to_string(m_animation->FrameCount) + " frames, more than its data can hold");
      return Refuse(name);
    }
    if (!m_job.Spend(FileCost + size)) return false;
    auto checked = CheckAnimation(m_job, m_animation, m_name);
    if (!checked) return Refuse(name);
    auto file = Open(name, m_number);
    m_files.Exports[m_number] = {name, file ? AnimationFiles::Outcome::Written : AnimationFiles::Outcome::NotOpened};
    if (!file) return true;
    m_job.WriteFile(std::move(*file), [model = m_files.Model, animation = std::move(*checked),
                                       onDefaultPose = !m_job.DeltaReference.empty()](core::TextWriter& writer) {
      WriteAnimationSmd(writer, *model, animation, onDefaultPose);
      return true;
    });
    return true;
  }

  /// Begins a file and tells so in the log. Nothing if it cannot be opened.
  std::optional<core::OutputFile> Open(const std::string& name, int64_t number) {
    std::string reason;
    auto file = m_job.Create(name, &reason);
    if (file) {
      m_files.LastWriters[FileKey(name)] = number;
      DecompileLog(m_job, "Creating " + name + "\r\n");
    } else {
      m_job.LogError(m_job.OutputPath(name) + ": " + reason, core::TroubleKind::Unwritable, reason);
      DecompileLog(m_job, "Unable to open file " + name);
    }
    return file;
  }

  void WriteStatement(const std::string& file) {
    if (m_name.starts_with('@')) return;
    core::TextWriter& script = m_job.Script();
    const std::string_view source =
        m_job.ReadyToCompile() ? std::string_view(file).substr(0, file.size() - Extension.size()) : m_name;
    script.Format("$animation %s \"%s\"", ScriptWord(m_job, m_name), source);
    if ((m_animation->Flags & AnimFlagLooping) != 0) script.Text(" loop");
    script.Format(" fps %f", float{m_animation->Fps});
    if (IsDelta()) script.Format(" subtract %s 0\n", m_job.DeltaReference);
    script.Text("\n");
  }

  JobContext& m_job;
  AnimationFiles& m_files;
  core::Record<StudioAnimDesc> m_animation;
  int64_t m_number;
  std::string_view m_name;
};

/// The animation that number `number` of a blend table means: the first one for a number that is none.
int64_t ClampNumber(int64_t number, int64_t count) {
  return number >= 0 && number < count ? number : 0;
}

}  // namespace

std::string ExportSequenceAnimations(JobContext& job, const core::Record<StudioSeqDesc>& sequence) {
  const auto header = job.Model.Header();
  const auto animations = job.Table<StudioAnimDesc>("animation table", header->AnimOffset, header->AnimCount);
  const int64_t columns = sequence->BlendSize[0], rows = sequence->BlendSize[1];
  if (!animations) return job.DeltaReference;
  if (columns < 0 || rows < 0) {
    job.Damaged(job.Model.Mdl.Path(), "sequence", sequence.Offset(), "has a blend table of negative size");
    return job.DeltaReference;
  }
  const auto blends = job.Table<StudioShort>("blend table", sequence.Offset() + sequence->BlendOffset, columns * rows);
  if (!blends) return job.DeltaReference;
  if (animations->Count() == 0) {
    if (blends->Count() > 0 && !std::exchange(job.Animations.NoAnimationsTold, true)) {
      job.Damaged(job.Model.Mdl.Path(), "sequence", sequence.Offset(), "blends animations, of which there are none");
    }
    return job.DeltaReference;
  }
  for (int64_t x = 0; x < columns; ++x) {
    for (int64_t y = 0; y < rows; ++y) {
      const int64_t number = ClampNumber((*blends)[y * columns + x]->Value, animations->Count());
      if (!AnimationExport(job, (*animations)[number], number).Run()) return job.DeltaReference;
    }
  }
  return job.DeltaReference;
}

std::string AnimationScriptName(const JobContext& job, int64_t animation) {
  const auto header = job.Model.Header();
  const auto animations = job.Model.View().Array<StudioAnimDesc>(header->AnimOffset, header->AnimCount);
  if (!animations || !animations->Holds(animation)) return {};
  const auto record = (*animations)[animation];
  const auto name = job.Model.NameOf(record, record->NameOffset);
  if (!name) return {};
  if (!name->starts_with('@')) return std::string(*name);
  const auto found = job.Animations.Exports.find(animation);
  if (job.ReadyToCompile() && found != job.Animations.Exports.end() && !found->second.File.empty()) {
    return found->second.File.substr(0, found->second.File.size() - Extension.size());
  }
  return std::string(StemOf(*name));
}

}  // namespace tarnwick::decompiler
