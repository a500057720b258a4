#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/trouble.h"
#include "project/model_project.h"

namespace tarnwick::project {

/// Why something that the user entered is not taken: the box to show, and the field, as the form or the editor labels
/// it, to which a page may move the cursor (empty if it is about no single field).
struct Refusal {
  core::BoxIcon Icon;
  std::string Text;
  std::string Caption;
  std::string Field;

  /// Refused, as a trouble whose box shows it.
  core::Trouble Told() const {
    return {.Kind = core::TroubleKind::Refused, .Text = Text, .Caption = Caption, .Icon = Icon};
  }
};

/// The answer of every check: nothing if the value is good.
using Verdict = std::optional<Refusal>;

/// Whether a project file can hold `text` in the field of that label: no double quote, no line break.
Verdict CheckText(std::string_view label, std::string_view text);

/// Whether a project file can hold `text` as a command whose double quotes are kept as `standIn`: no such character of
/// its own, which would come back as a double quote, and no line break.
Verdict CheckCommand(std::string_view text, char standIn);

/// Whether `value` is not 0 and would be kept as 0.00, since a project keeps two decimals.
bool RoundsToNothing(double value);

/// Whether a project can keep the number that `text` begins with, in the field of that label: it is finite, and not so
/// small that its two decimals are 0.00. Text without a number is a 0.
Verdict CheckNumber(std::string_view label, std::string_view text);

/// The first value of the project that its file could not hold, or that would end a list when the file is read. The
/// box names the place by its key in the file, the field by its label.
Verdict CheckProjectForFile(const ModelProject& project);

/// What "Edit" and "Remove" answer when no row is selected.
Refusal NothingSelected();

/// The state of the form's sequence controls.
struct SequenceControls {
  bool UseReferenceChecked;  // the check box "Use Reference SMD", which a static prop forces on
  bool UseReferenceEnabled;  // whether the user may change it
  bool ListEnabled;          // the list of sequences and its three buttons
};

/// The rule for the sequence controls, applied when the form opens, after a load, and when the model type or the check
/// box changes.
SequenceControls SequenceControlsFor(int32_t propType, bool useReferenceAsSequence);

}  // namespace tarnwick::project
