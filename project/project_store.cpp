#include "project/project_store.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

#include "core/number_parse.h"
#include "core/settings_table.h"
#include "project/project_keys.h"
#include "project/project_values.h"

namespace tarnwick::project {

namespace {

template <typename Record, size_t Size>
using Fields = std::array<KeyedField<Record>, Size>;

std::string Joined(std::string_view group, std::string_view key) {
  return group.empty() ? std::string(key) : std::string(group) + '/' + std::string(key);
}

std::string Replaced(std::string text, char from, char to) {
  std::replace(text.begin(), text.end(), from, to);
  return text;
}

void FromText(std::string text, std::string& value) {
  value = std::move(text);
}
void FromText(const std::string& text, int32_t& value) {
  value = core::ParseWhole(text);
}
void FromText(const std::string& text, bool& value) {
  value = core::ParseWhole(text) != 0;
}
void FromText(const std::string& text, double& value) {
  value = core::ParseReal(text);
}

template <typename Record, size_t Size>
void LoadFields(const ProfileStore& store, std::string_view group, const Fields<Record, Size>& fields, Record& record) {
  for (const KeyedField<Record>& field : fields) {
    std::visit(
        [&](auto member) {
          FromText(store.GetString(ProjectSection, Joined(group, field.Key), field.Default), record.*member);
        },
        field.Field);
  }
}

/// Whether the store holds the key.
bool Holds(const ProfileStore& store, std::string_view group, std::string_view key) {
  return store.Entries().contains(Joined(ProjectSection, Joined(group, key)));
}

/// Whether the store holds an entry under `group`: its first key is there and, if `needsName`, has a value. Entries
/// whose editor asks for a name end the list without one; the others may well have an empty first field.
template <typename Record, size_t Size>
bool HoldsEntry(const ProfileStore& store, const std::string& group, const Fields<Record, Size>& fields,
                bool needsName) {
  const std::string_view key = fields.front().Key;
  return Holds(store, group, key) && !(needsName && store.GetString(ProjectSection, group, key, "").empty());
}

void NoteSurplus(std::vector<std::string>* notes, const SequenceEntry& sequence, std::string_view what, int32_t found,
                 int32_t limit) {
  if (notes == nullptr || found <= limit) return;
  notes->push_back("The sequence \"" + sequence.name + "\" has " + std::to_string(found) + " " + std::string(what) +
                   "; a sequence can hold " + std::to_string(limit) + ", and only the first " + std::to_string(limit) +
                   " were loaded.");
}

SequenceEntry LoadSequence(const ProfileStore& store, const std::string& group, std::vector<std::string>* notes) {
  SequenceEntry sequence;
  LoadFields(store, group, SequenceKeys, sequence);
  int32_t number = 0;
  for (;; ++number) {
    std::string command = store.GetString(ProjectSection, group, Numbered(CommandKey, number), "");
    if (command.empty()) break;
    sequence.AddCommand(Replaced(std::move(command), SequenceCommandQuote, '"'));  // a surplus one is counted only
  }
  NoteSurplus(notes, sequence, "commands", number, MaximumCommands);
  for (number = 0;; ++number) {
    const std::string eventGroup = Joined(group, Numbered(EventGroup, number));
    if (!HoldsEntry(store, eventGroup, EventKeys, false)) break;
    EventEntry event;
    LoadFields(store, eventGroup, EventKeys, event);
    sequence.AddEvent(std::move(event));
  }
  NoteSurplus(notes, sequence, "events", number, MaximumEvents);
  return sequence;
}

template <typename List, typename Record, size_t Size>
void LoadList(const ProfileStore& store, std::string_view group, const Fields<Record, Size>& fields, bool needsName,
              List& list) {
  list.Clear();
  for (int32_t i = 0; HoldsEntry(store, Numbered(group, i), fields, needsName); ++i) {
    Record entry;
    LoadFields(store, Numbered(group, i), fields, entry);
    list.Add(std::move(entry));
  }
}

}  // namespace

void SaveProjectToStore(const ModelProject& project, ProfileStore& store) {
  store.Clear();
  ForEachProjectValue(project, [&](const ProjectValue& value) {
    store.SetString(ProjectSection, value.Key,
                    value.QuoteStandIn == 0 ? value.Text : Replaced(value.Text, '"', value.QuoteStandIn));
  });
}

void SaveProjectToStore(const ModelProject& project, ProfileStore& store, core::AppSettings& settings) {
  SaveProjectToStore(project, store);
  const ModelOptions& options = project.options;
  core::setting::ConfigFile.Write(settings, project.configFile);
  core::setting::ModelFile.Write(settings, project.modelFile);
  core::setting::ReferenceSmd.Write(settings, project.referenceSmd);
  core::setting::CollisionSmd.Write(settings, project.collisionFile);
  core::setting::AnimSmdCheck.Write(settings, project.useReferenceAsSequence);
  core::setting::PhySmdCheck.Write(settings, project.useReferenceAsCollision);
  core::setting::PropType.Write(settings, project.propType);
  core::setting::SurfaceProp.Write(settings, options.surfaceProp);
  core::setting::PropPhysicsType.Write(settings, options.propPhysicsType);
  core::setting::AdditionalQc.Write(settings, options.additionalQc);
  core::setting::StudioMdlOptions.Write(settings, options.studioMdlOptions);
}

void LoadProjectFromStore(const ProfileStore& store, ModelProject& project, std::vector<std::string>* notes) {
  LoadFields(store, "", FormKeys, project);
  LoadFields(store, OptionsGroup, FormOptionKeys, project);
  LoadFields(store, OptionsGroup, OptionKeys, project.options);
  project.Sequences.Clear();
  for (int32_t i = 0; HoldsEntry(store, Numbered(SequenceGroup, i), SequenceKeys, true); ++i) {
    project.Sequences.Add(LoadSequence(store, Numbered(SequenceGroup, i), notes));
  }
  LoadList(store, AttachmentGroup, AttachmentKeys, true, project.Attachments);
  LoadList(store, GibGroup, GibKeys, false, project.Gibs);
  LoadList(store, QcCommandGroup, QcCommandKeys, false, project.QcCommands);
  for (QcCommandEntry& entry : project.QcCommands) {
    entry.command = Replaced(std::move(entry.command), QcCommandQuote, '"');
  }
  LoadList(store, LodGroup, LodKeys, true, project.Lods);
  LoadList(store, SkinGroup, SkinKeys, true, project.Skins);
}

void LoadFormFromSettings(const core::AppSettings& settings, ModelProject& project) {
  project.modelFile = core::setting::ModelFile.Read(settings);
  project.referenceSmd = core::setting::ReferenceSmd.Read(settings);
  project.collisionFile = core::setting::CollisionSmd.Read(settings);
  project.useReferenceAsSequence = core::setting::AnimSmdCheck.Read(settings) != 0;
  project.useReferenceAsCollision = core::setting::PhySmdCheck.Read(settings) != 0;
  project.propType = core::setting::PropType.Read(settings);
  project.configFile = core::setting::ConfigFile.Read(settings);
}

void LoadOptionsFromSettings(const core::AppSettings& settings, ModelOptions& options) {
  options.modelPath = core::setting::ModelPath.Read(settings) != 0;
  options.scale = core::ParseReal(core::setting::Scale.Read(settings));
  options.mass = core::ParseReal(core::setting::Mass.Read(settings));
  options.surfaceProp = core::setting::SurfaceProp.Read(settings);
  options.propPhysicsType = core::setting::PropPhysicsType.Read(settings);
  options.additionalQc = core::setting::AdditionalQc.Read(settings);
  options.studioMdlOptions = core::setting::StudioMdlOptions.Read(settings);
}

}  // namespace tarnwick::project
