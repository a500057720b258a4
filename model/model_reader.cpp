#include "model/model_reader.h"

#include <algorithm>
#include <utility>

namespace tarnwick::model {

namespace {

constexpr int64_t MebiByte = int64_t{1} << 20;
constexpr int64_t SpendBase = 256 * MebiByte;
constexpr int64_t SpendForEachByteRead = 1024;

/// Damaged animations that are told with a caption each.
constexpr int MostAnimationBoxes = 3;

constexpr std::string_view DamageCaption = "Damaged File";

core::Trouble Damage(const std::string& path, std::string_view what, int64_t offset, const std::string& rest) {
  const std::string subject = "the " + std::string(what);
  return {.Kind = core::TroubleKind::Damaged,
          .File = path,
          .Offset = offset,
          .Text = path + ": " + subject + " at byte " + std::to_string(offset) + rest,
          .Caption = std::string(DamageCaption),
          .Alike = subject + " is damaged"};
}

int64_t SizeOf(const LoadedModel& model) {
  return model.View().Size() + (model.Vtx ? model.Vtx->View().Size() : 0) +
         (model.Vertices ? model.Vertices->File.View().Size() : 0) +
         (model.AnimBlocks ? model.AnimBlocks->File.View().Size() : 0);
}

}  // namespace

void ModelReader::Damaged(const std::string& path, std::string_view what, int64_t offset, std::string_view problem) {
  Tell(Damage(path, what, offset, " " + std::string(problem)));
}

void ModelReader::DamagedTable(const std::string& path, std::string_view what, int64_t offset, int64_t count,
                               int64_t size) {
  const std::string records = " (" + std::to_string(count) + (count == 1 ? " record)" : " records)");
  const std::string_view problem = offset < 0  ? " begins before the start of the file"
                                   : count < 0 ? " has a negative count"
                                               : " runs past the end of the file";
  Tell(Damage(path, what, offset, records + std::string(problem) + " (" + std::to_string(size) + " bytes)"));
}

void ModelReader::DamagedName(std::string_view what, int64_t offset) {
  Damaged(Model.Mdl.Path(), what, offset,
          "is no text of at most " + std::to_string(LongestName) + " bytes that ends inside the file");
}

void ModelReader::DamagedAnimation(const std::string& path, std::string_view what, int64_t offset,
                                   std::string_view problem) {
  core::Trouble trouble = Damage(path, what, offset, " " + std::string(problem));
  trouble.Alike = "an animation is damaged";
  if (m_animationsTold++ >= MostAnimationBoxes) trouble.Caption.clear();
  Tell(trouble);
}

bool ModelReader::Spend(int64_t bytes) {
  const int64_t limit = m_limit > 0 ? m_limit : SpendBase + SpendForEachByteRead * SizeOf(Model);
  m_spent = std::min(m_spent, limit) + std::clamp<int64_t>(bytes, 0, limit + 1);
  if (m_spent <= limit) return true;
  if (!std::exchange(m_limitTold, true)) {
    Tell({.Kind = core::TroubleKind::Limit,
          .File = Model.Mdl.Path(),
          .Text = Model.Mdl.Path() + ": the model asks for more than " + std::to_string(limit / MebiByte) +
                  " MiB of output, which no sound model of its size does; the rest is left out",
          .Caption = std::string(DamageCaption),
          .Alike = "the model asks for too much output"});
  }
  return false;
}

void ModelReader::Note(const std::string& path, std::string text) {
  Tell({core::Severity::Note, core::TroubleKind::Damaged, path, std::nullopt, std::move(text), {}});
}

const Skeleton* GetSkeleton(ModelReader& reader) {
  LoadedModel& model = reader.Model;
  if (!model.BonesSought) {
    model.BonesSought = true;
    const auto header = model.Header();
    const auto bones = reader.Table<StudioBone>("bone table", header->BoneOffset, header->BoneCount);
    if (!bones) return nullptr;
    Skeleton skeleton{*bones, {}};
    skeleton.Names.reserve(static_cast<size_t>(bones->Count()));
    for (const auto bone : *bones) {
      const auto name = reader.NameOf("bone name", bone, bone->NameOffset);
      if (!name) return nullptr;
      skeleton.Names.push_back(*name);
    }
    model.Bones = std::move(skeleton);
  }
  return model.Bones ? &*model.Bones : nullptr;
}

}  // namespace tarnwick::model
