#pragma once

#include <string>

#include "project/field_rules.h"
#include "project/model_options.h"
#include "project/project_entries.h"

namespace tarnwick::project {

// The editors of the model options: each fills an entry from its fields, asks here on OK, and stays open with the box
// if the entry is refused.

/// Gives an empty translation or rotation its "0 0 0": on opening the editor and, through `CheckAttachment`, on OK.
void FillAttachment(AttachmentEntry& entry);
/// Fills the entry as above, then asks for name and bone.
Verdict CheckAttachment(AttachmentEntry& entry);
/// All three texts may be empty.
Verdict CheckGib(const GibEntry& entry);
/// Asks for file and distance.
Verdict CheckLod(const LodEntry& entry);
/// Asks for the name.
Verdict CheckSkin(const SkinEntry& entry);
/// The text may be empty.
Verdict CheckQcCommand(const QcCommandEntry& entry);

/// The four fields of the model options dialog.
struct ModelOptionsForm {
  std::string scale;
  std::string mass;
  std::string surfaceProp;
  std::string propPhysicsType;
};

ModelOptionsForm ShowModelOptions(const ModelOptions& options);

/// The dialog's OK: takes all four fields, or none if one is refused. Texts that are no numbers read as 0; of a number
/// the first 100 characters count.
Verdict TakeModelOptions(const ModelOptionsForm& form, ModelOptions& options);

}  // namespace tarnwick::project
