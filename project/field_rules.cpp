#include "project/field_rules.h"

#include <cmath>

#include "core/number_parse.h"
#include "core/number_text.h"
#include "project/project_values.h"

namespace tarnwick::project {

namespace {

constexpr char LineBreak = '\n';

Refusal Error(std::string text, std::string_view field) {
  return {core::BoxIcon::Stop, std::move(text), "Error", std::string(field)};
}

std::string FieldNamed(std::string_view label) {
  return "The field \"" + std::string(label) + "\" ";
}

Verdict CheckValue(const ProjectValue& value) {
  if (value.NeedsText && value.Text.empty()) {
    return Error(FieldNamed(value.Label) + "is empty, and the list would end there when the project is loaded",
                 value.Label);
  }
  if (value.QuoteStandIn != 0) return CheckCommand(value.Text, value.QuoteStandIn);
  return CheckText(value.Label, value.Text);
}

}  // namespace

Verdict CheckText(std::string_view label, std::string_view text) {
  if (text.find('"') != std::string_view::npos) {
    return Error(FieldNamed(label) + "holds a double quote, which a project file cannot hold", label);
  }
  if (text.find(LineBreak) != std::string_view::npos) {
    return Error(FieldNamed(label) + "holds a line break, which a project file cannot hold", label);
  }
  return std::nullopt;
}

Verdict CheckCommand(std::string_view text, char standIn) {
  if (text.find(standIn) != std::string_view::npos) {
    return Error(std::string("The command holds the character ") + standIn +
                     ", which a project file keeps for the double quote: it would come back as one",
                 "Command");
  }
  if (text.find(LineBreak) != std::string_view::npos) {
    return Error("The command holds a line break, which a project file cannot hold", "Command");
  }
  return std::nullopt;
}

bool RoundsToNothing(double value) {
  return value != 0 && core::ParseReal(core::FixedText(value, 2)) == 0;
}

Verdict CheckNumber(std::string_view label, std::string_view text) {
  const double number = core::ParseReal(text);
  if (!std::isfinite(number)) return Error(FieldNamed(label) + "holds no number: " + std::string(text), label);
  if (!RoundsToNothing(number)) return std::nullopt;
  return Error(
      FieldNamed(label) + "holds " + std::string(text) + ", which is too small: with its two decimals it would be 0.00",
      label);
}

Verdict CheckProjectForFile(const ModelProject& project) {
  Verdict first;
  ForEachProjectValue(project, [&](const ProjectValue& value) {
    if (first) return;
    first = CheckValue(value);
    if (first) first->Text = value.Key + ": " + first->Text;
  });
  return first;
}

Refusal NothingSelected() {
  return {core::BoxIcon::Exclamation, "No items were selected!", "Warning", {}};
}

SequenceControls SequenceControlsFor(int32_t propType, bool useReferenceAsSequence) {
  const bool isStatic = propType == PropStatic;
  const bool checked = isStatic || useReferenceAsSequence;
  return {checked, !isStatic, !checked};
}

}  // namespace tarnwick::project
