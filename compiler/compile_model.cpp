#include "compiler/compile_model.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>

#include "compiler/animation/build_motion.h"
#include "compiler/animation/pose_math.h"
#include "compiler/animation/sequence_boxes.h"
#include "compiler/animation/track_encoder.h"
#include "compiler/compile_context.h"
#include "compiler/face/build_face.h"
#include "compiler/files/model_files.h"
#include "compiler/files/model_parts.h"
#include "compiler/mesh/build_meshes.h"
#include "compiler/parallel.h"
#include "compiler/physics/build_physics.h"
#include "compiler/plan/plan_reader.h"
#include "compiler/skeleton/build_bones.h"
#include "compiler/skeleton/build_skeleton.h"
#include "compiler/skeleton/center_model.h"
#include "core/paths.h"
#include "model/phy_writer.h"
#include "smd/smd_reader.h"

namespace tarnwick::compiler {

namespace {

/// Whether a message of the script's reader ends the compile. One line that is not understood does not.
bool IsFatal(const qc::Script& script, const qc::Message& message) {
  if (message.Level != core::Severity::Error) return false;
  if (message.Kind == core::TroubleKind::Limit || message.Kind == core::TroubleKind::Unreadable) return true;
  if (message.Kind != core::TroubleKind::Missing) return false;
  const auto at = [&](const qc::Place& place) {
    return place.File == message.At.File && place.Line == message.At.Line && place.Column == message.At.Column;
  };
  const bool ofScript = message.At.File == 0 && message.At.Line == 1 && message.At.Column == 1;  // it names no model
  return ofScript || std::ranges::any_of(script.Sources, [&](const qc::Source& source) {
           return source.Path.empty() && at(source.At) && source.Kind != qc::SourceKind::ProceduralBones;
         });
}

void TellScript(CompileContext& context) {
  const qc::Script& script = context.Plan.Script;
  for (qc::Message message : script.Told.All()) {
    if (message.Level == core::Severity::Error && !IsFatal(script, message)) message.Level = core::Severity::Warning;
    context.Tell(qc::MessageTrouble(script.Files, message));
  }
}

/// A source with what its reading told.
struct ReadFile {
  size_t Number = 0;
  std::string Path, Error;
  smd::SmdSource Source;
  std::vector<smd::SourceMessage> Messages;
};

class SourceLoader {
 public:
  SourceLoader(CompileContext& context, bool byName) : m_context(context), m_byName(byName) {}

  /// Reads all meshes, animations and shapes, several at a time.
  void Load() {
    const auto& sources = m_context.Plan.Script.Sources;
    std::vector<ReadFile> files;
    for (size_t i = 0; i < sources.size(); ++i) {
      if (sources[i].Kind == qc::SourceKind::ProceduralBones || (sources[i].Path.empty() && !m_byName)) continue;
      files.emplace_back();
      files.back().Number = i;
    }
    std::atomic<int64_t> size = 0;
    ForEachInParallel(m_context.Options, files.size(), [&](size_t i) {
      // What is left out when they are too large is not missed: taking the others ends the compile.
      if (size > m_context.Options.MemoryLimit) return;
      Read(files[i]);
      size += SizeOf(files[i].Source);
    });
    if (m_context.Stopped()) return;
    for (ReadFile& file : files) Take(file);
  }

 private:
  std::optional<core::FileImage> Open(const std::string& path, std::string& reason) const {
    return m_context.Options.Read ? m_context.Options.Read(path, reason)
                                  : FilesOf(m_context.Options).Read(path, &reason);
  }
  void Read(ReadFile& file) const {
    const qc::Source& source = m_context.Plan.Script.Sources[file.Number];
    file.Path = m_byName ? std::string(source.Name) : source.Path;
    auto image = Open(file.Path, file.Error);
    if (!image && m_byName) {
      file.Path += source.Kind == qc::SourceKind::Shapes ? ".vta" : ".smd";
      image = Open(file.Path, file.Error);
    }
    if (!image) return;
    file.Error.clear();
    const auto bytes = image->Bytes();
    file.Messages =
        smd::ReadSource({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, file.Path, file.Source);
  }
  static int64_t SizeOf(const smd::SmdSource& read) {
    return static_cast<int64_t>(read.Poses.size() * sizeof(smd::SourcePose) +
                                read.Corners.size() * sizeof(smd::SourceCorner));
  }
  void Take(ReadFile& file) {
    const qc::Source& source = m_context.Plan.Script.Sources[file.Number];
    if (!file.Error.empty()) {
      return m_context.Error(source.At, qc::Shown(source.Name) + " cannot be read: " + file.Error,
                             core::TroubleKind::Unreadable);
    }
    for (const smd::SourceMessage& message : file.Messages) {
      const std::string place = file.Path + ":" + std::to_string(message.Line) + ": ";
      m_context.Tell({.Level = message.IsError ? core::Severity::Error : core::Severity::Warning,
                      .Kind = core::TroubleKind::Damaged,
                      .File = file.Path,
                      .Text = place + (message.IsError ? "error: " : "warning: ") + message.Text,
                      .Alike = message.Text});
    }
    if (m_context.Spend(SizeOf(file.Source), source.At)) {
      m_context.SetSource(static_cast<int32_t>(file.Number), std::move(file.Source));
    }
  }

  CompileContext& m_context;
  bool m_byName;
};

std::optional<model::RigidTransform> FirstRoot(const ModelParts& parts) {
  for (const BuiltSequence& sequence : parts.Motion.Sequences) {
    if (sequence.Animations.empty() || parts.Bones.Static) continue;
    return TransformOf(parts.Motion.Animations[static_cast<size_t>(sequence.Animations[0])].Poses[0]);
  }
  return std::nullopt;
}

/// Runs the stages one after another. Each goes on as far as it can, so that all errors are told.
bool RunStages(CompileContext& context, ModelParts& parts) {
  if (!BuildBones(context, parts.Bones)) return false;
  if (!BuildMeshes(context, parts.Bones, parts.Meshes) || context.Stopped()) return false;
  if (!BuildFace(context, parts.Bones, parts.Meshes, parts.Face)) return false;
  BuildSkeleton(context, parts.Bones, parts.Meshes, parts.Skeleton);
  if (!BuildMotion(context, parts.Bones, parts.Motion) || context.Stopped()) return false;
  std::vector<BuiltAnimation>& animations = parts.Motion.Animations;
  ForEachInParallel(context.Options, animations.size(), [&](size_t i) { ChooseAngles(parts.Bones, animations[i]); });
  std::optional<std::array<model::Vec3, 2>> collision;
  if (context.Plan.Collision) {
    parts.Physics.emplace();
    if (!BuildPhysics(context, parts.Bones, *parts.Physics, FirstRoot(parts))) parts.Physics.reset();
    if (parts.Physics) collision = parts.Physics->Box;
  }
  parts.MiddleOfFirstBox =
      MeasureSequences(context, parts.Bones, parts.Meshes, parts.Skeleton, collision, parts.Motion);
  return !context.Stopped() && context.ErrorCount() == 0;
}

/// A hash of the content: models of equal content share it.
uint32_t ChecksumOf(std::initializer_list<std::string_view> files) {
  constexpr uint32_t Prime = 16777619;
  uint32_t hash = 2166136261;
  for (const std::string_view bytes : files) {
    for (const char c : bytes) hash = (hash ^ static_cast<uint8_t>(c)) * Prime;
  }
  return hash;
}
void SetChecksum(std::string& file, size_t at, uint32_t checksum) {
  if (file.size() >= at + sizeof checksum) std::memcpy(file.data() + at, &checksum, sizeof checksum);
}

bool MakeFiles(CompileContext& context, const ModelParts& parts, CompiledFiles& files) {
  auto mdl = WriteMdl(context, parts);
  if (!mdl || context.Stopped()) return false;
  files.Mdl = std::move(mdl->Mdl);
  files.Ani = std::move(mdl->Ani);
  if (!parts.Meshes.BodyParts.empty()) {
    files.Vvd = WriteVvd(parts.Meshes);
    files.Vtx = WriteVtx(parts.Meshes);
  }
  uint32_t checksum = ChecksumOf({files.Mdl, files.Vvd, files.Vtx, files.Ani});
  if (parts.Physics) {
    for (const std::string& solid : parts.Physics->Solids) checksum ^= ChecksumOf({solid});
    checksum ^= ChecksumOf({parts.Physics->Text});
    files.Phy = model::WritePhyFile(checksum, parts.Physics->Solids, parts.Physics->Text);
  }
  SetChecksum(files.Mdl, 8, checksum);
  SetChecksum(files.Vvd, 8, checksum);
  SetChecksum(files.Ani, 8, checksum);
  SetChecksum(files.Vtx, 16, checksum);
  return context.ErrorCount() == 0;
}

qc::ReadOptions ReadOptionsOf(const CompileOptions& options, bool findSources) {
  qc::ReadOptions read;
  read.FindSources = findSources;
  read.Files = options.Files;
  read.Read = options.Read;
  return read;
}

struct Outcome {
  std::optional<CompiledFiles> Files;
  std::string ModelName;
};

Outcome Compile(qc::Script script, bool byName, const CompileOptions& options, CompileReport& report) {
  const auto start = std::chrono::steady_clock::now();
  const auto plan = ReadPlan(std::move(script));
  CompileContext context(options, *plan);
  TellScript(context);
  Outcome outcome;
  outcome.ModelName = plan->ModelName;
  if (context.ErrorCount() == 0) {
    SourceLoader(context, byName).Load();
    ModelParts parts;
    CompiledFiles files;
    // Sources that are damaged have told so; no stage need be ready for them.
    if (context.ErrorCount() == 0 && plan->AutoCenter) CenterModel(context, *plan);
    if (context.ErrorCount() == 0 && RunStages(context, parts) && MakeFiles(context, parts, files)) {
      report.Bones = static_cast<int32_t>(parts.Bones.Bones.size());
      report.Sequences = static_cast<int32_t>(parts.Motion.Sequences.size());
      report.Animations = static_cast<int32_t>(parts.Motion.Animations.size());
      report.Vertices = static_cast<int64_t>(parts.Meshes.Vertices.size());
      report.Triangles = parts.Meshes.TriangleCount;
      outcome.Files = std::move(files);
    }
  }
  report.Troubles = context.TakeTroubles();
  for (const core::Trouble& trouble : report.Troubles) {
    report.Errors += trouble.Level == core::Severity::Error ? 1 : 0;
    report.Warnings += trouble.Level == core::Severity::Warning ? 1 : 0;
  }
  report.Seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return outcome;
}

}  // namespace

std::optional<CompiledFiles> CompileToMemory(const std::string& path, const CompileOptions& options,
                                             CompileReport& report) {
  return Compile(qc::ReadScript(path, ReadOptionsOf(options, true)), false, options, report).Files;
}

std::optional<CompiledFiles> CompileTextToMemory(std::string_view text, const std::string& path,
                                                 const CompileOptions& options, CompileReport& report) {
  return Compile(qc::ReadScriptText(text, path, ReadOptionsOf(options, false)), true, options, report).Files;
}

bool CompileModel(const std::string& path, const CompileOptions& options, CompileReport& report) {
  const Outcome outcome = Compile(qc::ReadScript(path, ReadOptionsOf(options, true)), false, options, report);
  return outcome.Files &&
         WriteModelFiles(*outcome.Files, outcome.ModelName, options.GameDirectory, FilesOf(options), report);
}

}  // namespace tarnwick::compiler
