#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "project/model_project.h"

namespace tarnwick::project {

/// The section of the store under which a project lies. Every key below is told without it: "Model File",
/// "Animation0/Name", "Animation0/Event2/frame".
inline constexpr std::string_view ProjectSection = "Model Compiler";

/// What the value of a key is.
enum class ValueKind { Text, Whole, Real, Check };

/// A field of a record under its key in the project file.
template <typename Record>
struct KeyedField {
  std::string_view Key;
  std::string_view Label;  // as the form or the editor calls the field
  std::variant<std::string Record::*, int32_t Record::*, double Record::*, bool Record::*> Field;
  std::string_view Default = {};                 // what a file without the key means, as text
  std::span<const std::string_view> Names = {};  // of the values of a whole number that is an index
};

template <typename Record>
ValueKind KindOf(const KeyedField<Record>& field) {
  constexpr std::array Kinds = {ValueKind::Text, ValueKind::Whole, ValueKind::Real, ValueKind::Check};
  return Kinds[field.Field.index()];
}

/// Fields of the form, straight in the section.
inline constexpr std::array<KeyedField<ModelProject>, 5> FormKeys = {{
    {"Model File", "Compiled Model File", &ModelProject::modelFile},
    {"Reference SMD", "Reference SMD", &ModelProject::referenceSmd},
    {"Collision SMD", "Collision SMD/QCI", &ModelProject::collisionFile},
    {"Anim SMD Check", "Use Reference SMD as sequence", &ModelProject::useReferenceAsSequence},
    {"Phy SMD Check", "Use Reference SMD as collision", &ModelProject::useReferenceAsCollision},
}};

/// The group of the model's options, and its fields, one of which belongs to the form.
inline constexpr std::string_view OptionsGroup = "Model Options";
inline constexpr std::array<KeyedField<ModelProject>, 1> FormOptionKeys = {{
    {"Prop Type", "Model Type", &ModelProject::propType, {}, ModelTypes},
}};
inline constexpr std::array<KeyedField<ModelOptions>, 6> OptionKeys = {{
    {"Scale", "Scale", &ModelOptions::scale, "1.0"},
    {"Mass", "Mass (kg)", &ModelOptions::mass, "100.0"},
    {"SurfaceProp", "SurfaceProp", &ModelOptions::surfaceProp, "metal"},
    {"PropPhysics Type", "prop_physics type", &ModelOptions::propPhysicsType, "metal.small"},
    {"Additional QC", "Additional QC", &ModelOptions::additionalQc},
    {"StudioMDLOptions", "StudioMdl Options", &ModelOptions::studioMdlOptions},
}};

/// The groups of the lists: each entry's is the name and the entry's number from 0.
inline constexpr std::string_view SequenceGroup = "Animation";
inline constexpr std::string_view AttachmentGroup = "Attachment";
inline constexpr std::string_view GibGroup = "Gib";
inline constexpr std::string_view QcCommandGroup = "QC Command";
inline constexpr std::string_view LodGroup = "LOD";
inline constexpr std::string_view SkinGroup = "Skin";
/// Below a sequence: a key and its number for each command, a sub-group and its number for each event.
inline constexpr std::string_view CommandKey = "Command";
inline constexpr std::string_view EventGroup = "Event";

/// The fields of the lists' entries. The first one is what tells whether there is an entry of a number.
inline constexpr std::array<KeyedField<SequenceEntry>, 8> SequenceKeys = {{
    {"Name", "Animation Name", &SequenceEntry::name},
    {"SMD Name", "Animation SMD", &SequenceEntry::smdFile},
    {"FPS", "FPS", &SequenceEntry::fps, "30.0"},
    {"Loop", "Loop Animation", &SequenceEntry::loop},
    {"Activity", "Activity Name", &SequenceEntry::activity},
    {"Activity Strength", "Strength", &SequenceEntry::activityStrength},
    {"Rotation", "Direction", &SequenceEntry::rotateDirection, {}, RotateDirections},
    {"Rotation Amount", "Amount", &SequenceEntry::rotateAmount, "0"},
}};
inline constexpr std::array<KeyedField<EventEntry>, 3> EventKeys = {{
    {"name", "Event Name/Number", &EventEntry::name},
    {"frame", "Animation Frame", &EventEntry::frame},
    {"option", "Option", &EventEntry::option},
}};
inline constexpr std::array<KeyedField<AttachmentEntry>, 4> AttachmentKeys = {{
    {"Name", "Attachment", &AttachmentEntry::name},
    {"Bone Name", "Bone", &AttachmentEntry::bone},
    {"Translation", "Translation", &AttachmentEntry::translation},
    {"Rotation", "Rotation", &AttachmentEntry::rotation},
}};
inline constexpr std::array<KeyedField<GibEntry>, 3> GibKeys = {{
    {"Model Name", "Gib Model Name", &GibEntry::model},
    {"Fade In Time", "Health", &GibEntry::health},  // the file's name for the health
    {"Fade Out Time", "Fade Time", &GibEntry::fadeTime},
}};
inline constexpr std::array<KeyedField<QcCommandEntry>, 1> QcCommandKeys = {{
    {"Command", "Command", &QcCommandEntry::command},
}};
inline constexpr std::array<KeyedField<LodEntry>, 2> LodKeys = {{
    {"SMD Name", "LOD SMD File", &LodEntry::smdFile},
    {"Distance", "Activation Distance", &LodEntry::distance},
}};
inline constexpr std::array<KeyedField<SkinEntry>, 1> SkinKeys = {{
    {"Skin Name", "Skin", &SkinEntry::skin},
}};

/// What stands in the file for each double quote of a sequence command and of a QC command. Such a character of the
/// text itself comes back as a double quote.
inline constexpr char SequenceCommandQuote = '@';
inline constexpr char QcCommandQuote = '~';

/// `group` with the number of an entry, as in "Animation0".
std::string Numbered(std::string_view group, int32_t number);

/// A key of a project file, understood.
struct ProjectKey {
  ValueKind Kind = ValueKind::Text;
  std::span<const std::string_view> Names;  // of the values of an index
  char QuoteStandIn = 0;                    // what stands for a double quote in the file; 0 if the value can hold none
  std::string_view List;                    // the group of its list, or empty
  int32_t Entry = -1;                       // the number of the list's entry
  std::string_view Sub;                     // CommandKey or EventGroup below a sequence, or empty
  int32_t SubEntry = -1;                    // the number of the command or event
};

/// `key` without the section, if it stands in front as it does in the file.
std::string_view WithoutSection(std::string_view key);

/// Understands a key told without its section; nothing if a project has no such key.
std::optional<ProjectKey> ReadProjectKey(std::string_view key);

/// A key that a project may have, for the user: "Animation<i>/FPS".
struct KeyDescription {
  std::string Key;
  std::string_view Label;
  ValueKind Kind;
  std::string_view Default;
  std::span<const std::string_view> Names;
};

/// All keys that there are, from the form's top to its lists.
std::vector<KeyDescription> DescribeProjectKeys();

}  // namespace tarnwick::project
