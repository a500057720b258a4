#include "project/entry_editors.h"

#include <string_view>

#include "core/number_parse.h"
#include "core/number_text.h"
#include "project/project_keys.h"

namespace tarnwick::project {

namespace {

constexpr size_t LongestNumberField = 100;

Verdict Demand(const std::string& value, const char* text, const char* field) {
  if (!value.empty()) return std::nullopt;
  return Refusal{core::BoxIcon::Stop, text, "Error", field};
}

/// Checks every text of an entry for what a project file cannot hold.
template <typename Record, size_t Size>
Verdict CheckTexts(const Record& entry, const std::array<KeyedField<Record>, Size>& fields) {
  for (const KeyedField<Record>& field : fields) {
    const auto* member = std::get_if<std::string Record::*>(&field.Field);
    if (member == nullptr) continue;
    if (auto refused = CheckText(field.Label, entry.**member)) return refused;
  }
  return std::nullopt;
}

std::string_view NumberText(const std::string& field) {
  return std::string_view(field).substr(0, LongestNumberField);
}

}  // namespace

void FillAttachment(AttachmentEntry& entry) {
  if (entry.translation.empty()) entry.translation = "0 0 0";
  if (entry.rotation.empty()) entry.rotation = "0 0 0";
}

Verdict CheckAttachment(AttachmentEntry& entry) {
  FillAttachment(entry);
  if (auto refused = Demand(entry.name, "Must specify name for all attachments", "Attachment")) return refused;
  if (auto refused = Demand(entry.bone, "Must specify bone for all attachments", "Bone")) return refused;
  return CheckTexts(entry, AttachmentKeys);
}

Verdict CheckGib(const GibEntry& entry) {
  return CheckTexts(entry, GibKeys);
}

Verdict CheckLod(const LodEntry& entry) {
  if (auto refused = Demand(entry.smdFile, "Must specify LOD file name", "LOD SMD File")) return refused;
  if (auto refused = Demand(entry.distance, "Must specify LOD Distance", "Activation Distance")) return refused;
  return CheckTexts(entry, LodKeys);
}

Verdict CheckSkin(const SkinEntry& entry) {
  if (auto refused = Demand(entry.skin, "Must specify skin file name", "Skin")) return refused;
  return CheckTexts(entry, SkinKeys);
}

Verdict CheckQcCommand(const QcCommandEntry& entry) {
  return CheckCommand(entry.command, QcCommandQuote);
}

ModelOptionsForm ShowModelOptions(const ModelOptions& options) {
  return {core::FixedText(options.scale, 2), core::FixedText(options.mass, 2), options.surfaceProp,
          options.propPhysicsType};
}

Verdict TakeModelOptions(const ModelOptionsForm& form, ModelOptions& options) {
  if (auto refused = CheckNumber("Scale", NumberText(form.scale))) return refused;
  if (auto refused = CheckNumber("Mass (kg)", NumberText(form.mass))) return refused;
  if (auto refused = CheckText("SurfaceProp", form.surfaceProp)) return refused;
  if (auto refused = CheckText("prop_physics type", form.propPhysicsType)) return refused;
  options.scale = core::ParseReal(NumberText(form.scale));
  options.mass = core::ParseReal(NumberText(form.mass));
  options.surfaceProp = form.surfaceProp;
  options.propPhysicsType = form.propPhysicsType;
  return std::nullopt;
}

}  // namespace tarnwick::project
