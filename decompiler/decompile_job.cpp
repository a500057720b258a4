#include "decompiler/decompile_job.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>

#include "core/paths.h"
#include "decompiler/job/job_context.h"
#include "decompiler/plain/meshes.h"
#include "decompiler/plain/script.h"
#include "decompiler/sources/meshes.h"
#include "decompiler/sources/script.h"
#include "model/companion_files.h"
#include "model/vtx_records.h"

namespace tarnwick::decompiler {

namespace {

constexpr std::string_view ScriptName = "ravelback.qc";
constexpr std::string_view ModelId = "IDST";
/// Versions whose records are laid out as model/ has them.
constexpr int32_t LowestVersion = 44;
constexpr int32_t HighestVersion = 49;

bool IsKnownVersion(int32_t version) {
  return version >= LowestVersion && version <= HighestVersion;
}
bool IsNamedModel(const StudioHeader& header) {
  return std::string_view(header.Id, sizeof header.Id) == ModelId;
}

bool IsModel(const StudioHeader& header) {
  return IsKnownVersion(header.Version) || IsNamedModel(header);
}

/// Tells that the file is something else, as its head says.
void TellNoModel(JobContext& job, const std::string& path, const StudioHeader& header) {
  const int32_t version = header.Version;
  DecompileLog(job, "Loaded model " + path + "\r\n");
  job.Error(path + " is no compiled model: neither its first letters nor its version (" + std::to_string(version) +
                ") are those of one",
            "Error", core::TroubleKind::Unknown, path, "not a compiled model");
}

/// Loads the .mdl file. False, told, if there is none, it is shorter than its header, or it is something else, of which
/// no more than the head is read.
bool LoadModel(JobContext& job) {
  const std::string& path = job.Job().ModelPath;
  std::string reason;
  StudioHeader head{};
  bool isModel = true;
  const auto wants = [&](std::span<const std::byte> start) {
    std::memcpy(&head, start.data(), sizeof head);
    return isModel = IsModel(head);
  };
  auto model = job.Files().ReadIf(path, sizeof head, wants, &reason);
  if (!isModel) {
    TellNoModel(job, path, head);
    return false;
  }
  if (model && !model->View().At<StudioHeader>(0)) {
    const int64_t size = model->View().Size();
    reason = size == 0 ? "it is empty" : "its " + std::to_string(size) + " bytes are fewer than a model's header has";
    model.reset();
  }
  if (!model) {
    const std::string cause = path.empty() ? "No model is named" : path + ": " + reason;
    DecompileLog(job, (path.empty() ? cause : "Unable to read " + cause) + "\r\n");
    job.Error("Unable to load model", "Error", core::TroubleKind::Unreadable, path, {}, cause);
    return false;
  }
  job.Model.Mdl = std::move(*model);
  DecompileLog(job, "Loaded model " + job.Model.Mdl.Path() + "\r\n");
  const StudioHeader header = *job.Model.Header();
  const int32_t version = header.Version;
  if (!IsKnownVersion(version)) {
    job.Warn(path + " is of version " + std::to_string(version) + "; versions " + std::to_string(LowestVersion) +
                 " to " + std::to_string(HighestVersion) + " are known, and what is written may be wrong",
             core::TroubleKind::Unknown);
  }
  if (!IsNamedModel(header)) {
    job.Advise(path + " does not begin with " + std::string(ModelId) + " as compiled models do",
               core::TroubleKind::Unknown);
  }
  return true;
}

/// Finds and loads the .vtx file. False, told, if there is none.
bool LoadVertices(JobContext& job) {
  const std::string& modelPath = job.Model.Mdl.Path();
  std::string reason;
  std::optional<FoundFile> found;
  if (job.ReadyToCompile()) {
    found = ReadMatchingVtxFile(job, modelPath, reason);
  } else if (auto path = FindVtxFile(job, modelPath)) {
    auto file = LoadVtxFile(*path, &reason, job.Files());
    found = {std::move(*path), std::move(file)};
  }
  if (!found) {
    job.Error("Unable to load vertices file: " +
                  modelPath.substr(0, modelPath.size() - std::min<size_t>(4, modelPath.size())) + ".vtx",
              "Error", core::TroubleKind::Missing, modelPath, "Unable to load vertices file");
    return false;
  }
  const std::string& path = found->Path;
  if (!found->File) {
    DecompileLog(job, "Unable to read " + path + ": " + reason + "\r\n");
    job.Error("Unable to load vertices file: " + path, "Error", core::TroubleKind::Unreadable, path,
              "Unable to load vertices file");
    return false;
  }
  job.Model.Vtx = std::move(found->File);
  DecompileLog(job, "Loaded Vertices " + path + "\r\n");
  if (const auto header = job.Model.Vtx->View().At<VtxHeader>(0)) CheckChecksum(job, path, (*header)->Checksum);
  return true;
}

/// Runs the stages that write the script.
void WriteScript(JobContext& job, core::TextWriter& script) {
  job.SetScript(script);
  const auto header = job.Model.Header();
  if (job.ReadyToCompile()) return sources::WriteScript(job);
  script.Format("$cd \"%s\"\n", job.Job().OutputDirectory);
  script.Format("$modelname \"%s\"\n", core::FixedText(header->Name));
  if (header->BodyPartCount != 0) plain::WriteModelMeshes(job);
  // A model without sequences has materials and hit boxes all the same; the plain form leaves them out.
  if (header->SequenceCount != 0) plain::WriteQcStatements(job);
}

}  // namespace

DecompileResult DecompileModel(const DecompileJob& jobRecord, core::Report& report) {
  JobContext job(jobRecord, report);
  if (!LoadModel(job)) return std::move(job.Result());
  if (job.Model.Header()->BodyPartCount != 0 && !LoadVertices(job)) return std::move(job.Result());

  std::string reason = "no output directory is named";
  const std::string path = job.OutputPath(ScriptName);
  job.Names.Reserve(ScriptName);
  auto file = jobRecord.OutputDirectory.empty() ? std::nullopt : job.Create(ScriptName, &reason);
  if (!file) {
    DecompileLog(job, "Unable to create " + path + ": " + reason + "\r\n");
    job.Error("Unable to open qc file\"" + path + "\"", "File Error", core::TroubleKind::Unwritable, path,
              "Unable to open qc file");
    return std::move(job.Result());
  }
  DecompileLog(job, "Creating " + path + "\r\n");
  {
    core::TextWriter script(*file);
    WriteScript(job, script);
  }
  job.FinishFiles();
  if (job.Stopped()) return std::move(job.Result());
  job.FinishScript(*file);
  job.TellLost();
  DecompileLog(job, "\r\nCompleted Dumping Model!\r\n");
  job.Result().Completed = true;
  return std::move(job.Result());
}

}  // namespace tarnwick::decompiler
