#include "project/project_edit.h"

#include <algorithm>
#include <vector>

#include "core/paths.h"
#include "project/entry_editors.h"
#include "project/profile_store.h"
#include "project/project_keys.h"
#include "project/project_store.h"
#include "project/project_values.h"
#include "project/value_rules.h"

namespace tarnwick::project {

namespace {

using Problem = std::optional<std::string>;

std::string Quoted(std::string_view text) {
  std::string quoted(1, '"');
  return quoted.append(text).append(1, '"');
}

/// The number of a value that has a name; other text as it is.
std::string NumberOf(const ProjectKey& key, const std::string& value) {
  const auto named =
      std::ranges::find_if(key.Names, [&](std::string_view name) { return core::EqualIgnoringCase(name, value); });
  return named == key.Names.end() ? value : std::to_string(named - key.Names.begin());
}

/// Why a value did not become part of the project although it is good in itself.
std::string WhyLost(std::string_view name) {
  const ProjectKey key = ReadProjectKey(name).value_or(ProjectKey());
  if (key.Sub == CommandKey && key.SubEntry >= MaximumCommands) {
    return "A sequence can hold " + std::to_string(MaximumCommands) + " commands";
  }
  if (key.Sub == EventGroup && key.SubEntry >= MaximumEvents) {
    return "A sequence can hold " + std::to_string(MaximumEvents) + " events";
  }
  return std::string(name) +
         " cannot be set so: entries are numbered from 0 without a gap, and the first field of each (a name, in most "
         "lists) must have a value";
}

/// The key of a change that would not come back from the file, or of one that makes other values not come back.
std::optional<std::string> FirstLost(const ProfileStore& wanted, const ProfileStore& kept,
                                     std::span<const ProjectChange> changes) {
  const auto isKept = [&kept](const std::string& key) { return kept.Entries().contains(key); };
  for (const ProjectChange& change : changes) {
    const std::string key(WithoutSection(change.Key));
    if (!isKept(std::string(ProjectSection) + '/' + key)) return key;
  }
  const auto lost = std::ranges::find_if(wanted.Entries(), [&](const auto& entry) { return !isKept(entry.first); });
  if (lost == wanted.Entries().end()) return std::nullopt;
  return std::string(WithoutSection(lost->first));
}

/// What the attachment's editor does on OK.
void FillChangedAttachments(ModelProject& project, std::span<const ProjectChange> changes) {
  for (const ProjectChange& change : changes) {
    const auto key = ReadProjectKey(WithoutSection(change.Key));
    if (key && key->List == AttachmentGroup) FillAttachment(project.Attachments.At(key->Entry));
  }
}

/// The entries of one list as `RemoveAt` sees them.
template <typename List>
Problem RemoveFrom(List& list, int32_t index, std::string_view name) {
  if (index < 0 || index >= list.Count()) return "The project has no " + std::string(name);
  list.RemoveAt(index);
  return std::nullopt;
}

template <typename Entry>
std::vector<Entry> Without(std::span<const Entry> entries, int32_t index) {
  std::vector<Entry> rest(entries.begin(), entries.end());
  rest.erase(rest.begin() + index);
  return rest;
}

Problem RemoveFromSequence(SequenceList& sequences, const ProjectKey& key, std::string_view name) {
  const std::string missing = "The project has no " + std::string(name);
  if (key.Entry >= sequences.Count()) return missing;
  SequenceEntry& sequence = sequences.At(key.Entry);
  if (key.Sub == CommandKey) {
    if (key.SubEntry >= sequence.commandCount) return missing;
    sequence.SetCommands(Without(sequence.Commands(), key.SubEntry));
  } else {
    if (key.SubEntry >= sequence.eventCount) return missing;
    sequence.SetEvents(Without(sequence.Events(), key.SubEntry));
  }
  return std::nullopt;
}

/// Understands the name of an entry by the first of its fields.
std::optional<ProjectKey> ReadEntryName(std::string_view name) {
  if (const auto key = ReadProjectKey(name); key && key->Sub == CommandKey) return key;
  for (const std::string_view field : {EventKeys.front().Key, SequenceKeys.front().Key, GibKeys.front().Key,
                                       QcCommandKeys.front().Key, LodKeys.front().Key, SkinKeys.front().Key}) {
    const auto key = ReadProjectKey(std::string(name) + '/' + std::string(field));
    if (key && !key->List.empty()) return key;
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> GetProjectValue(const ModelProject& project, std::string_view key) {
  std::optional<std::string> text;
  ForEachProjectValue(project, [&](const ProjectValue& value) {
    if (value.Key == WithoutSection(key)) text = value.Text;
  });
  return text;
}

Problem SetProjectValues(ModelProject& project, std::span<const ProjectChange> changes) {
  ProfileStore store;
  SaveProjectToStore(project, store);
  for (const ProjectChange& change : changes) {
    const std::string_view name = WithoutSection(change.Key);
    const std::optional<ProjectKey> key = ReadProjectKey(name);
    if (!key) return "A project has no key " + Quoted(change.Key);
    std::string text = NumberOf(*key, change.Value);
    if (Problem problem = CheckProjectValue(*key, name, text)) return problem;
    if (key->QuoteStandIn != 0) std::replace(text.begin(), text.end(), '"', key->QuoteStandIn);
    store.SetString(ProjectSection, name, text);
  }

  // Nothing may get lost on the way back from the store.
  ModelOptions options;
  ModelProject changed(options);
  LoadProjectFromStore(store, changed);
  ProfileStore kept;
  SaveProjectToStore(changed, kept);
  if (const auto lost = FirstLost(store, kept, changes)) return WhyLost(*lost);
  LoadProjectFromStore(store, project);
  FillChangedAttachments(project, changes);
  return std::nullopt;
}

Problem RemoveProjectEntry(ModelProject& project, std::string_view entry) {
  const std::optional<ProjectKey> key = ReadEntryName(WithoutSection(entry));
  if (!key) return Quoted(entry) + " is no entry of a list";
  if (!key->Sub.empty()) return RemoveFromSequence(project.Sequences, *key, entry);
  if (key->List == SequenceGroup) return RemoveFrom(project.Sequences, key->Entry, entry);
  if (key->List == AttachmentGroup) return RemoveFrom(project.Attachments, key->Entry, entry);
  if (key->List == GibGroup) return RemoveFrom(project.Gibs, key->Entry, entry);
  if (key->List == QcCommandGroup) return RemoveFrom(project.QcCommands, key->Entry, entry);
  if (key->List == LodGroup) return RemoveFrom(project.Lods, key->Entry, entry);
  return RemoveFrom(project.Skins, key->Entry, entry);
}

}  // namespace tarnwick::project
