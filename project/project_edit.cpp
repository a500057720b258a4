#include "project/project_edit.h"

#include <algorithm>
#include <vector>

#include "core/number_parse.h"
#include "project/field_rules.h"
#include "project/profile_store.h"
#include "project/project_keys.h"
#include "project/project_store.h"
#include "project/project_values.h"

namespace tarnwick::project {

namespace {

using Problem = std::optional<std::string>;

std::string Quoted(std::string_view text) {
  std::string quoted(1, '"');
  return quoted.append(text).append(1, '"');
}

Problem CheckKind(const ProjectKey& key, std::string_view name, std::string_view value) {
  size_t length = 0;
  switch (key.Kind) {
    case ValueKind::Text: {
      const Verdict refused = key.QuoteStandIn != 0 ? CheckCommand(value, key.QuoteStandIn) : CheckText(name, value);
      return refused ? Problem(refused->Text) : std::nullopt;
    }
    case ValueKind::Check:
      if (value == "0" || value == "1") return std::nullopt;
      return std::string(name) + " is 0 or 1, not " + Quoted(value);
    case ValueKind::Whole:
      core::ParseWhole(value, &length);
      if (length == value.size() && length != 0) return std::nullopt;
      return std::string(name) + " is a whole number, not " + Quoted(value);
    case ValueKind::Real:
      core::ParseReal(value, &length);
      if (length == value.size() && length != 0) return std::nullopt;
      return std::string(name) + " is a number, not " + Quoted(value);
  }
  return std::nullopt;
}

/// Why a value did not become part of the project although it is good in itself.
std::string WhyLost(const ProjectKey& key, std::string_view name) {
  if (key.Sub == CommandKey && key.SubEntry >= MaximumCommands) {
    return "A sequence can hold " + std::to_string(MaximumCommands) + " commands";
  }
  if (key.Sub == EventGroup && key.SubEntry >= MaximumEvents) {
    return "A sequence can hold " + std::to_string(MaximumEvents) + " events";
  }
  return std::string(name) +
         " cannot be set so: entries are numbered from 0 without a gap, a new one begins with its first field, and "
         "that "
         "field is not empty";
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
    if (value.Key == key) text = value.Text;
  });
  return text;
}

Problem SetProjectValue(ModelProject& project, std::string_view key, std::string_view value) {
  const std::optional<ProjectKey> known = ReadProjectKey(key);
  if (!known) return "A project has no key " + Quoted(key);
  if (Problem problem = CheckKind(*known, key, value)) return problem;

  ProfileStore store;
  SaveProjectToStore(project, store);
  std::string text(value);
  if (known->QuoteStandIn != 0) std::replace(text.begin(), text.end(), '"', known->QuoteStandIn);
  store.SetString(ProjectSection, key, text);

  // Nothing may get lost on the way back from the store.
  ModelOptions options;
  ModelProject changed(options);
  LoadProjectFromStore(store, changed);
  ProfileStore kept;
  SaveProjectToStore(changed, kept);
  for (const auto& entry : store.Entries()) {
    if (!kept.Entries().contains(entry.first)) return WhyLost(*known, key);
  }
  LoadProjectFromStore(store, project);
  return std::nullopt;
}

Problem RemoveProjectEntry(ModelProject& project, std::string_view entry) {
  const std::optional<ProjectKey> key = ReadEntryName(entry);
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
