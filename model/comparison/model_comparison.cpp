#include "model/comparison/model_comparison.h"

#include "model/companion_files.h"
#include "model/comparison/compared_tables.h"
#include "model/vtx_layout.h"

namespace tarnwick::model {

namespace {

/// Loads what GetSkeleton and the other readers do not load by themselves. False, told, if the .mdl file or the .vtx
/// file that it needs cannot be read.
bool Load(ModelReader& reader, const std::string& path) {
  const auto fail = [&](const std::string& file, const std::string& reason) {
    reader.Tell({.Kind = core::TroubleKind::Unreadable,
                 .File = file,
                 .Text = "Unable to read " + file + ": " + reason,
                 .Alike = "a file cannot be read"});
    return false;
  };
  std::string reason;
  auto mdl = LoadModelFile(path, &reason, reader.Files());
  if (!mdl) return fail(path, reason);
  if (!mdl->View().At<StudioHeader>(0)) return fail(path, "it is shorter than a model's header");
  reader.Model.Mdl = std::move(*mdl);
  if (reader.Model.Header()->BodyPartCount == 0) return true;
  const auto vtx = FindVtxFile(reader, reader.Model.Mdl.Path());
  if (!vtx) return fail(path, "it has no .vtx file");
  reader.Model.Vtx = LoadVtxFile(*vtx, &reason, reader.Files());
  if (!reader.Model.Vtx) return fail(*vtx, reason);
  reader.Model.Layout = FindVtxLayout(reader);
  return true;
}

}  // namespace

std::optional<std::vector<ModelDifference>> CompareModels(const std::string& firstMdl, const std::string& secondMdl,
                                                          core::TroubleSink& troubles,
                                                          const std::function<bool()>& stopped,
                                                          const core::FileSource& firstFiles,
                                                          const core::FileSource& secondFiles) {
  ModelReader first(troubles, firstFiles);
  ModelReader second(troubles, secondFiles);
  if (!Load(first, firstMdl) || !Load(second, secondMdl)) return std::nullopt;
  DifferenceList differences;
  const ComparedModels models{first, second, differences, stopped, FindPhyFile(firstFiles, firstMdl).has_value()};
  constexpr void (*Steps[])(const ComparedModels&) = {CompareHeaders, CompareBones,      CompareScriptTables,
                                                      CompareMeshes,  CompareAnimations, CompareSequences,
                                                      CompareFaces,   ComparePhysics};
  for (const auto step : Steps) {
    if (models.IsStopped()) break;
    step(models);
  }
  return differences.Take();
}

}  // namespace tarnwick::model
