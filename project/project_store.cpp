#include "project/project_store.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

#include "core/number_parse.h"
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
  settings.WriteString(core::MainSection, "Config File", project.configFile);
  settings.WriteString(core::MainSection, "Model File", project.modelFile);
  settings.WriteString(core::MainSection, "Reference SMD", project.referenceSmd);
  settings.WriteString(core::MainSection, "Collision SMD", project.collisionFile);
  settings.WriteInt(core::MainSection, "Anim SMD Check", project.useReferenceAsSequence);
  settings.WriteInt(core::MainSection, "Phy SMD Check", project.useReferenceAsCollision);
  settings.WriteInt(core::MainSection, "Prop Type", project.propType);
  settings.WriteString(core::MainSection, "SurfaceProp", options.surfaceProp);
  settings.WriteString(core::MainSection, "PropPhysics Type", options.propPhysicsType);
  settings.WriteString(core::MainSection, "Additional QC", options.additionalQc);
  settings.WriteInt(core::MainSection, "StudioMDLOptions", options.studioMdlOptions);
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
  project.modelFile = settings.GetString(core::MainSection, "Model File");
  project.referenceSmd = settings.GetString(core::MainSection, "Reference SMD");
  project.collisionFile = settings.GetString(core::MainSection, "Collision SMD");
  project.useReferenceAsSequence = settings.GetInt(core::MainSection, "Anim SMD Check", 0) != 0;
  project.useReferenceAsCollision = settings.GetInt(core::MainSection, "Phy SMD Check", 0) != 0;
  project.propType = settings.GetInt(core::MainSection, "Prop Type", 0);
  project.configFile = settings.GetString(core::MainSection, "Config File");
}

void LoadOptionsFromSettings(const core::AppSettings& settings, ModelOptions& options) {
  options.modelPath = settings.GetInt(core::MainSection, "Model Path", 1) != 0;
  options.scale = core::ParseReal(settings.GetString(core::MainSection, "Scale", "1.0"));
  options.mass = core::ParseReal(settings.GetString(core::MainSection, "Mass", "100.0"));
  options.surfaceProp = settings.GetString(core::MainSection, "SurfaceProp", "metal");
  options.propPhysicsType = settings.GetString(core::MainSection, "PropPhysics Type", "metal.small");
  options.additionalQc = settings.GetString(core::MainSection, "Additional QC");
  options.studioMdlOptions = settings.GetInt(core::MainSection, "StudioMDLOptions", 0);
}

}  // namespace tarnwick::project
