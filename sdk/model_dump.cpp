#include "sdk/model_dump.h"

#include <array>
#include <cstdio>
#include <utility>

#include "model/bone_math.h"
#include "model/model_reader.h"
#include "model/script_records.h"

namespace tarnwick::sdk {

using namespace model;

namespace {

/// Keeps the first thing that is wrong with a model.
class FirstWord : public core::TroubleSink {
 public:
  void Tell(const core::Trouble& trouble) override {
    if (Text.empty() && trouble.Level == core::Severity::Error) Text = trouble.Text;
  }
  std::string Text;
};

std::string Numbers(std::initializer_list<double> numbers) {
  std::string text;
  for (const double number : numbers) {
    std::array<char, 32> one{};
    std::snprintf(one.data(), one.size(), " %f", number);
    text += one.data();
  }
  return text;
}

std::string Quoted(std::string_view name) {
  return "\"" + std::string(name) + "\"";
}

void PrintBones(const Skeleton& skeleton, std::ostream& out) {
  for (int64_t i = 0; i < skeleton.Count(); ++i) {
    const auto bone = skeleton.Bones[i];
    out << "bone " << i << ": " << Quoted(skeleton.Names[static_cast<size_t>(i)]) << " parent " << bone->Parent << " at"
        << Numbers({bone->Position.x, bone->Position.y, bone->Position.z}) << "\n";
  }
}

void PrintDefinedBones(const Skeleton& skeleton, std::ostream& out) {
  for (int64_t i = 0; i < skeleton.Count(); ++i) {
    const auto bone = skeleton.Bones[i];
    const bool hasParent = skeleton.Bones.Holds(bone->Parent);
    out << "$definebone " << Quoted(skeleton.Names[static_cast<size_t>(i)]) << " "
        << Quoted(hasParent ? skeleton.Names[static_cast<size_t>(bone->Parent)] : std::string_view())
        << Numbers({bone->Position.x, bone->Position.y, bone->Position.z}) << " "
        << Numbers({bone->Angles.y * RadiansToDegrees, bone->Angles.z * RadiansToDegrees,
                    bone->Angles.x * RadiansToDegrees})
        << " " << Numbers({0, 0, 0, 0, 0, 0}) << "\n";
  }
}

bool PrintHitboxes(ModelReader& reader, const Skeleton& skeleton, std::ostream& out) {
  const auto header = reader.Model.Header();
  const auto sets = reader.Table<StudioHitboxSet>("hit box set table", header->HitboxSetOffset, header->HitboxSetCount);
  if (!sets) return false;
  for (const auto set : *sets) {
    out << "$hboxset " << Quoted(reader.Model.NameOf(set, set->NameOffset).value_or("")) << "\n";
    const auto boxes = reader.Table<StudioHitbox>("hit box table", set.Offset() + set->HitboxOffset, set->HitboxCount);
    if (!boxes || !reader.Spend(boxes->Count() * RecordCost)) return false;
    for (const auto box : *boxes) {
      if (!skeleton.Bones.Holds(box->Bone)) continue;
      out << "$hbox " << box->Group << " " << Quoted(skeleton.Names[static_cast<size_t>(box->Bone)])
          << Numbers({box->Minimum.x, box->Minimum.y, box->Minimum.z})
          << Numbers({box->Maximum.x, box->Maximum.y, box->Maximum.z}) << "\n";
    }
  }
  return true;
}

}  // namespace

bool DumpModel(const std::string& path, const ModelDump& dump, std::ostream& out, std::string& reason) {
  FirstWord told;
  ModelReader reader(told);
  auto mdl = LoadModelFile(path, &reason);
  if (!mdl) return false;
  reader.Model.Mdl = std::move(*mdl);
  const bool hasHeader = reader.Model.View().At<StudioHeader>(0).has_value();
  const Skeleton* skeleton = hasHeader ? GetSkeleton(reader) : nullptr;
  if (skeleton != nullptr) {
    if (dump.Bones) PrintBones(*skeleton, out);
    if (dump.DefinedBones) PrintDefinedBones(*skeleton, out);
    if (!dump.Hitboxes || PrintHitboxes(reader, *skeleton, out)) return true;
  }
  reason = told.Text.empty() ? "it is no compiled model" : told.Text;
  return false;
}

}  // namespace tarnwick::sdk
