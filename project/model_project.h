#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "project/entry_list.h"
#include "project/model_options.h"
#include "project/project_entries.h"

namespace tarnwick::project {

/// The model types in the order of `ModelProject::propType`, which is what a project keeps.
inline constexpr std::array<std::string_view, 5> ModelTypes = {"prop_static", "prop_dynamic", "prop_physics", "weapon",
                                                               "character"};
/// The two types that make a difference to the script.
inline constexpr int32_t PropStatic = 0;
inline constexpr int32_t PropPhysics = 2;

/// The sequences of a project. Besides by row, an entry is found and removed by its name, the first of that name first.
class SequenceList : public EntryList<SequenceEntry, &SequenceEntry::name> {
 public:
  /// The first entry of exactly that name, or null.
  SequenceEntry* Find(std::string_view name) {
    const int32_t index = EntryList::Find(name);
    return index < 0 ? nullptr : &At(index);
  }
  const SequenceEntry* Find(std::string_view name) const {
    const int32_t index = EntryList::Find(name);
    return index < 0 ? nullptr : &At(index);
  }
  /// Removes the first entry of exactly that name, if there is one, and closes the gap.
  void RemoveByName(std::string_view name) {
    const int32_t index = EntryList::Find(name);
    if (index >= 0) RemoveAt(index);
  }
};

using AttachmentList = EntryList<AttachmentEntry, &AttachmentEntry::name>;
using GibList = EntryList<GibEntry, &GibEntry::model>;
using QcCommandList = EntryList<QcCommandEntry, &QcCommandEntry::command>;
using LodList = EntryList<LodEntry, &LodEntry::smdFile>;
using SkinList = EntryList<SkinEntry, &SkinEntry::skin>;

/// Everything that is known about one model to be compiled: the form's fields and the six lists. The model options are
/// shared with the other pages and live elsewhere; a project refers to them.
///
/// Texts that mean numbers stay texts and go into the script unchanged. Paths are as typed or chosen.
struct ModelProject {
  explicit ModelProject(ModelOptions& modelOptions) : options(modelOptions) {}

  std::string modelFile;                // compiled model, relative to <gamedir>/models
  std::string referenceSmd;             // the script is written beside it
  std::string collisionFile;            // a collision SMD, or a QC or QCI file with jointed collision commands
  std::string materialDirectory;        // relative to <gamedir>/materials/models; follows the material page, in no file
  bool useReferenceAsSequence = false;  // the reference SMD is the only sequence; Sequences is passed over
  bool useReferenceAsCollision = false;  // the reference SMD is the collision model; collisionFile is passed over
  int32_t propType = 0;                  // index into ModelTypes
  std::string configFile;                // last project file: the starting name of the file choosers
  ModelOptions& options;

  SequenceList Sequences;
  AttachmentList Attachments;
  GibList Gibs;
  QcCommandList QcCommands;
  LodList Lods;
  SkinList Skins;
};

}  // namespace tarnwick::project
