#include "project/project_file.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "core/number_parse.h"
#include "project/field_rules.h"
#include "project/project_keys.h"
#include "project/project_store.h"
#include "project/value_rules.h"

namespace tarnwick::project {

namespace {

constexpr std::string_view Caption = "Project File Error";
constexpr size_t NamedInNotes = 5;  // as many lines or keys are named, the others only counted

std::string SectionPrefix() {
  return std::string(ProjectSection) + '/';
}

bool HoldsProject(const ProfileStore& store) {
  const std::string prefix = SectionPrefix();
  const auto first = store.Entries().lower_bound(prefix);
  return first != store.Entries().end() && first->first.starts_with(prefix);
}

/// "a, b, c and 7 more".
std::string Listed(const std::vector<std::string>& names) {
  std::string text;
  for (size_t i = 0; i < std::min(names.size(), NamedInNotes); ++i) text += (i == 0 ? "" : ", ") + names[i];
  if (names.size() > NamedInNotes) text += " and " + std::to_string(names.size() - NamedInNotes) + " more";
  return text;
}

/// A command or an event beyond what its sequence takes, which has a note of its own.
bool IsSurplus(std::string_view key) {
  const std::optional<ProjectKey> known = ReadProjectKey(key);
  return known && known->SubEntry >= (known->Sub == CommandKey ? MaximumCommands : MaximumEvents);
}

/// Keys of the file that did not become part of the project.
std::vector<std::string> KeysLeftOut(const ProfileStore& store, const ModelProject& project) {
  ProfileStore taken;
  SaveProjectToStore(project, taken);
  std::vector<std::string> keys;
  for (const auto& entry : store.Entries()) {
    const std::string_view key = WithoutSection(entry.first);
    if (!taken.Entries().contains(entry.first) && !IsSurplus(key)) keys.emplace_back(key);
  }
  return keys;
}

void AddFileNotes(const ProfileLoadNotes& found, std::vector<std::string>& notes) {
  if (!found.DamagedLines.empty()) {
    std::vector<std::string> lines;
    for (const int32_t line : found.DamagedLines) lines.push_back(std::to_string(line));
    notes.push_back("Damaged lines, of which was loaded what could be read: " + Listed(lines) + ".");
  }
  if (found.EmptyLine != 0) {
    notes.push_back(
        "Line " + std::to_string(found.EmptyLine) +
        " is empty and ends the project; lines behind it, not loaded: " + std::to_string(found.LinesBehindIt) + ".");
  }
}

/// Indices for which their key has no value.
std::vector<std::string> UnknownIndices(const ProfileStore& store) {
  std::vector<std::string> problems;
  for (const auto& [name, value] : store.Entries()) {
    const std::string_view key = WithoutSection(name);
    const std::optional<ProjectKey> known = ReadProjectKey(key);
    if (!known || known->Names.empty() || std::to_string(core::ParseWhole(value)) != value) continue;
    if (const auto problem = CheckProjectValue(*known, key, value)) problems.push_back(*problem + '.');
  }
  return problems;
}

bool Fail(core::Report& report, core::TroubleKind kind, const std::string& path, const std::string& text) {
  report.ErrorBox(kind, text, Caption, path);
  return false;
}

}  // namespace

bool OpenProjectFile(const std::string& path, ModelProject& project, ProfileStore& store, core::Report& report,
                     bool* whole) {
  project.configFile = path;
  ProfileStore loaded;
  ProfileLoadNotes found;
  std::string reason;
  if (!loaded.LoadFile(path, &reason, &found)) {
    return Fail(report, core::TroubleKind::Unreadable, path,
                "Unable to read the project file \"" + path + "\": " + reason);
  }
  if (!HoldsProject(loaded)) {
    return Fail(report, core::TroubleKind::Unknown, path,
                "\"" + path + "\" is no project file: no line of it belongs to a project");
  }
  store = std::move(loaded);
  std::vector<std::string> notes;
  LoadProjectFromStore(store, project, &notes);
  AddFileNotes(found, notes);
  if (const auto keys = KeysLeftOut(store, project); !keys.empty()) {
    notes.push_back(
        "Entries that no project has, or that stand behind a gap in the numbers, not loaded: " + Listed(keys) + ".");
  }
  const std::vector<std::string> kept = UnknownIndices(store);
  if (whole != nullptr) *whole = notes.empty();
  if (!notes.empty() || !kept.empty()) {
    std::string text = notes.empty() ? "The project file \"" + path + "\" was loaded."
                                     : "Not all of the project file \"" + path + "\" was loaded.";
    for (const std::string& note : notes) text += "\r\n" + note;
    if (!kept.empty()) text += "\r\nKept as it is, though nothing knows the value:";
    for (const std::string& value : kept) text += "\r\n" + value;
    report.WarningBox(notes.empty() ? core::TroubleKind::Unknown : core::TroubleKind::Lost, text,
                      "Project File Warning");
  }
  return true;
}

bool SaveProjectFile(const std::string& path, ModelProject& project, ProfileStore& store, core::Report& report) {
  if (const Verdict refused = CheckProjectForFile(project)) {
    return Fail(report, core::TroubleKind::Refused, path,
                "The project was not saved to \"" + path + "\".\r\n" + refused->Text);
  }
  project.configFile = path;
  SaveProjectToStore(project, store);
  std::string reason;
  if (store.SaveFile(path, &reason)) return true;
  return Fail(report, core::TroubleKind::Unwritable, path,
              "Unable to write the project file \"" + path + "\": " + reason);
}

}  // namespace tarnwick::project
