#include "decompiler/sources/header_statements.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

#include "decompiler/sources/script_values.h"
#include "decompiler/sources/sequence_box.h"
#include "model/animation_records.h"
#include "model/script_records.h"

namespace tarnwick::decompiler::sources {

namespace {

constexpr uint32_t FlagsThatAreTold =
    ModelFlagGeneratedHitboxes | ModelFlagOpaque | ModelFlagMostlyOpaque | ModelFlagStatic | ModelFlagShadowLod;
constexpr int32_t ContentsDefault = 1;
/// Cosine of 90 degrees, as older compilers leave it where no turn of the eyes is given.
constexpr float NoEyeDeflection = 1e-6f;

bool SameBox(const Vec3& a, const Vec3& b) {
  return a.x == b.x && a.y == b.y && a.z == b.z;
}

/// Boxes differ by less than this where animations are rounded before the box is made of them.
constexpr float BoxHair = 0.1f;
bool IsNear(const Vec3& a, const Vec3& b) {
  return std::abs(a.x - b.x) < BoxHair && std::abs(a.y - b.y) < BoxHair && std::abs(a.z - b.z) < BoxHair;
}

/// Whether `box` lies between `least` and `most`.
bool Holds(const Vec3& least, const Vec3& most, const BoxOfPoints& box) {
  return box.Least.x > least.x - BoxHair && box.Least.y > least.y - BoxHair && box.Least.z > least.z - BoxHair &&
         box.Most.x < most.x + BoxHair && box.Most.y < most.y + BoxHair && box.Most.z < most.z + BoxHair;
}

/// The degrees with the fewest decimals whose cosine is `cosine` as a float.
float DegreesOfCosine(float cosine) {
  const double degrees = std::acos(double{cosine}) * (180 / std::numbers::pi);
  double step = 1;
  for (int decimals = 0; decimals <= 6; ++decimals, step *= 10) {
    const auto rounded = static_cast<float>(std::round(degrees * step) / step);
    if (static_cast<float>(std::cos(double{rounded} * (std::numbers::pi / 180))) == cosine) return rounded;
  }
  return static_cast<float>(degrees);
}

/// A place that a compile turns by a quarter about Z, (x, y, z) to (-y, x, z), turned back.
Vec3 TurnedBack(const Vec3& stored) {
  return {stored.y, stored.x == 0 ? 0.0f : -stored.x, stored.z};
}

std::optional<core::Record<StudioSecondHeader>> SecondHeader(const JobContext& job) {
  const int64_t offset = job.Model.Header()->SecondHeaderOffset;
  return offset > 0 ? job.Model.View().At<StudioSecondHeader>(offset) : std::nullopt;
}

/// The model's name, in full where the header cuts it.
std::string_view ModelName(const JobContext& job) {
  const auto header = job.Model.Header();
  const std::string_view shortName = core::FixedText(header->Name);
  const auto second = SecondHeader(job);
  if (!second || (*second)->NameOffset <= 0) return shortName;
  const auto name = job.Model.Name(second->Offset() + (*second)->NameOffset);
  return name && name->starts_with(shortName) ? *name : shortName;
}

void WriteFlags(JobContext& job) {
  const uint32_t flags = job.Model.Header()->Flags;
  core::TextWriter& script = job.Script();
  if ((flags & ModelFlagStatic) != 0) script.Text("$staticprop\n");
  if ((flags & ModelFlagOpaque) != 0) script.Text("$opaque\n");
  if ((flags & ModelFlagMostlyOpaque) != 0) script.Text("$mostlyopaque\n");
  job.Lose("header flags without a statement", std::popcount(flags & ~FlagsThatAreTold));
}

void WriteContents(JobContext& job) {
  const int32_t contents = job.Model.Header()->Contents;
  if (contents == ContentsDefault) return;
  if (const auto words = ContentsWords(contents)) {
    job.Script().Text("$contents " + *words + "\n");
  } else {
    job.Lose("contents of the model");
  }
}

void WriteEyes(JobContext& job) {
  const auto second = SecondHeader(job);
  if (!second) return;
  const float cosine = (*second)->MaxEyeDeflection;
  if (std::abs(cosine) > NoEyeDeflection && std::abs(cosine) <= 1) {
    job.Script().Text("$maxeyedeflection " + Number(job, DegreesOfCosine(cosine)) + "\n");
  }
  if ((*second)->IllumAttachment != 0) job.Lose("attachments of the illumination position");
  job.Lose("source bones", (*second)->SourceBoneCount);
}

}  // namespace

void WriteHeaderStatements(JobContext& job) {
  const auto header = job.Model.Header();
  core::TextWriter& script = job.Script();
  std::string name(ModelName(job));
  std::replace(name.begin(), name.end(), '\\', '/');
  script.Text("$modelname " + Quoted(job, name) + "\n");
  WriteFlags(job);
  if (const auto surface = job.Model.Name(header->SurfacePropOffset)) {
    script.Text("$surfaceprop " + Quoted(job, *surface) + "\n");
  } else {
    job.DamagedName("surface property name", header->SurfacePropOffset);
  }
  WriteContents(job);
  const Vec3 eye = header->EyePosition;
  if (!IsZero(eye)) script.Text("$eyeposition " + Numbers(job, TurnedBack(eye)) + "\n");
  script.Text("$illumposition " + Numbers(job, TurnedBack(header->IllumPosition)) + "\n");
  WriteEyes(job);
  if (header->ConstantLight != 0) job.Lose("constant directional light");
  if (header->AllowedRootLods == 1) job.Script().Text("$allowrootlods 1\n");
  if (header->RootLod != 0 || header->AllowedRootLods > 1) job.Lose("limits of the levels of detail");
  job.Lose("bone controllers", header->BoneControllerCount);
}

void WriteMaterialFolders(JobContext& job) {
  const auto header = job.Model.Header();
  const auto table = job.Table<StudioOffset>("material directory table", header->MaterialDirectoryOffset,
                                             header->MaterialDirectoryCount);
  if (!table) return;
  for (const auto entry : *table) {
    const auto name = job.Model.Name(entry->Offset);
    if (!name) return job.DamagedName("material directory", entry->Offset);
    if (!job.ScriptWithinBounds()) return;
    std::string folder(*name);
    std::replace(folder.begin(), folder.end(), '\\', '/');
    if (!folder.empty() && folder.back() != '/') {  // which a compile ends all folders with
      folder += '/';
      job.Lose("material folders without a slash at their end");
    }
    job.Script().Text("$cdmaterials " + Quoted(job, folder) + "\n");
  }
}

void WriteBoxes(JobContext& job, bool hasCollision) {
  const auto header = job.Model.Header();
  const auto sequences = job.Model.View().Array<StudioSeqDesc>(header->SequenceOffset, header->SequenceCount);
  const Vec3 least = header->HullMinimum, most = header->HullMaximum;
  bool computed = sequences && sequences->Count() > 0
                      ? SameBox(least, (*sequences)[0]->Minimum) && SameBox(most, (*sequences)[0]->Maximum)
                      : IsZero(least) && IsZero(most);
  if (computed) {
    // A collision model widens the box; one that is not there any more has done so.
    const auto box = BoxOfFirstSequence(job);
    computed =
        !box || (IsNear(box->Least, least) && IsNear(box->Most, most)) || (hasCollision && Holds(least, most, *box));
  }
  if (!computed) job.Script().Text("$bbox " + Numbers(job, least) + " " + Numbers(job, most) + "\n");
  const Vec3 viewLeast = header->ViewMinimum, viewMost = header->ViewMaximum;
  if (!IsZero(viewLeast) || !IsZero(viewMost)) {
    job.Script().Text("$cbox " + Numbers(job, viewLeast) + " " + Numbers(job, viewMost) + "\n");
  }
}

void WriteIncludedModels(JobContext& job) {
  // The statement puts this folder before the name again.
  constexpr std::string_view Folder = "models/";
  const auto header = job.Model.Header();
  const auto table =
      job.Table<StudioIncludeModel>("included model table", header->IncludeModelOffset, header->IncludeModelCount);
  if (!table) return;
  for (const auto model : *table) {
    const auto name = job.NameOf("included model name", model, model->NameOffset);
    if (!name || !job.ScriptWithinBounds()) return;
    std::string path(*name);
    std::replace(path.begin(), path.end(), '\\', '/');
    if (path.starts_with(Folder)) {
      path.erase(0, Folder.size());
    } else {
      job.Lose("included models outside the folder of models");
    }
    job.Script().Text("$includemodel " + Quoted(job, path) + "\n");
  }
}

}  // namespace tarnwick::decompiler::sources
