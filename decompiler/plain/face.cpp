#include "decompiler/plain/face.h"

#include "decompiler/stages/vta_file.h"

namespace tarnwick::decompiler::plain {

namespace {

constexpr std::string_view VtaStem = "ravelback_expressions";

bool IsEyelid(int32_t descriptor, size_t number) {
  return descriptor >= 0 && static_cast<size_t>(descriptor) == number;
}

/// Gives the lids of the model's eyes their frames where they drive descriptor `d`. Each takes a frame of its own; the
/// last one stays with the descriptor.
void CountEyelids(const core::RecordArray<StudioEyeball>& eyes, size_t d, FlexTables& tables, int32_t& frameCount) {
  for (const auto eye : eyes) {
    for (const int32_t lid : {int32_t{eye->LowerLidFlexDesc}, int32_t{eye->UpperLidFlexDesc}}) {
      if (!IsEyelid(lid, d)) continue;
      tables.Frame[d] = ++frameCount;
      tables.Used[d] = true;
    }
  }
}

/// Writes the line of the flex that gives descriptor `d` its frame.
void WriteFlexLine(JobContext& job, const core::Record<StudioFlex>& flex, size_t d, FlexTables& tables,
                   int32_t& frameCount) {
  tables.Frame[d] = ++frameCount;
  tables.Used[d] = true;
  const std::string_view name = tables.Names[d];
  const int32_t partner = flex->Partner;
  if (partner == 0) {
    job.Script().Format("          flex \"%s\" frame %d\n", name, frameCount);
    return;
  }
  if (partner > 0 && static_cast<size_t>(partner) < tables.Used.size())
    tables.Used[static_cast<size_t>(partner)] = true;
  // A pair has one name for both sides; the last letter of each flex's own name tells the side.
  job.Script().Format("          flexpair \"%s\" 1.0 frame %d\n", name.substr(0, name.empty() ? 0 : name.size() - 1),
                      frameCount);
}

/// A frame for each descriptor that has one.
std::vector<VtaFrame> FramesOf(const FlexTables& tables, const ModelFlexes& flexes) {
  std::vector<VtaFrame> frames;
  for (size_t d = 0; d < tables.Frame.size(); ++d) {
    if (tables.Frame[d] != 0) frames.push_back({tables.Frame[d], tables.Names[d], flexes.ByDescriptor[d]});
  }
  return frames;
}

}  // namespace

int32_t WriteFlexFile(JobContext& job, const core::Record<StudioModel>& model, FlexTables& tables) {
  tables.VtaName = std::string(VtaStem) + ".vta";
  job.Script().Format("     flexfile \"%s\" {\n", tables.VtaName);
  const auto eyes =
      job.Table<StudioEyeball>("eyeball table", model.Offset() + model->EyeballOffset, model->EyeballCount);
  const auto flexes = GatherFlexes(job, model, tables.Names.size());
  if (!eyes || !flexes) {
    job.Script().Text("     }\n");
    return 0;
  }
  int32_t frameCount = 0;
  for (size_t d = 0; d < tables.Names.size() && job.ScriptWithinBounds(); ++d) {
    if (!job.Spend(eyes->Count())) break;
    CountEyelids(*eyes, d, tables, frameCount);
    // The first mesh is always asked; a descriptor that has its frame is not sought in the others.
    const auto& entries = flexes->ByDescriptor[d];
    if (!entries.empty() && (tables.Frame[d] == 0 || entries.front().Mesh == 0)) {
      WriteFlexLine(job, entries.front().Flex, d, tables, frameCount);
    }
  }
  job.Script().Text("     }\n");
  return WriteVtaFile(job, model, *flexes, tables.VtaName, FramesOf(tables, *flexes), frameCount) ? frameCount : 0;
}

void WriteFace(JobContext& job, const core::Record<StudioModel>& model) {
  auto tables = MakeFlexTables(job);
  if (!tables) return;
  const int32_t frames = WriteFlexFile(job, model, *tables);
  WriteEyesAndMouths(job, model, *tables);
  if (frames != 0) WriteFlexControllers(job, *tables);
}

}  // namespace tarnwick::decompiler::plain
