#include "project/project_keys.h"

#include <algorithm>
#include <charconv>

namespace tarnwick::project {

namespace {

/// Finds the field of that key in one of the tables and puts what it is into `result`.
template <typename Record, size_t Size>
bool FindField(const std::array<KeyedField<Record>, Size>& fields, std::string_view key, ProjectKey& result) {
  const auto found = std::ranges::find(fields, key, &KeyedField<Record>::Key);
  if (found == fields.end()) return false;
  result.Kind = KindOf(*found);
  result.Names = found->Names;
  return true;
}

/// The number of `name` if it is `group` and a number as the file writes it (digits, no leading zero); else -1.
int32_t NumberBehind(std::string_view name, std::string_view group) {
  if (!name.starts_with(group)) return -1;
  const std::string_view digits = name.substr(group.size());
  int32_t number = -1;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  const bool whole = read.ec == std::errc() && read.ptr == digits.data() + digits.size() && number >= 0;
  return whole && (digits.size() == 1 || digits[0] != '0') ? number : -1;
}

/// Understands what stands below one sequence.
bool ReadSequenceKey(std::string_view key, ProjectKey& result) {
  if (FindField(SequenceKeys, key, result)) return true;
  result.SubEntry = NumberBehind(key, CommandKey);
  if (result.SubEntry >= 0) {
    result.Sub = CommandKey;
    result.QuoteStandIn = SequenceCommandQuote;
    return true;
  }
  const size_t slash = key.find('/');
  if (slash == std::string_view::npos) return false;
  result.Sub = EventGroup;
  result.SubEntry = NumberBehind(key.substr(0, slash), EventGroup);
  return result.SubEntry >= 0 && FindField(EventKeys, key.substr(slash + 1), result);
}

bool ReadListKey(std::string_view list, std::string_view key, ProjectKey& result) {
  if (list == SequenceGroup) return ReadSequenceKey(key, result);
  if (list == AttachmentGroup) return FindField(AttachmentKeys, key, result);
  if (list == GibGroup) return FindField(GibKeys, key, result);
  if (list == LodGroup) return FindField(LodKeys, key, result);
  if (list == SkinGroup) return FindField(SkinKeys, key, result);
  result.QuoteStandIn = QcCommandQuote;
  return FindField(QcCommandKeys, key, result);
}

}  // namespace

std::string Numbered(std::string_view group, int32_t number) {
  return std::string(group) + std::to_string(number);
}

std::string_view WithoutSection(std::string_view key) {
  if (key.starts_with(ProjectSection) && key.substr(ProjectSection.size()).starts_with('/')) {
    key.remove_prefix(ProjectSection.size() + 1);
  }
  return key;
}

std::optional<ProjectKey> ReadProjectKey(std::string_view key) {
  ProjectKey result;
  const auto found = [&result](bool known) { return known ? std::optional(result) : std::nullopt; };
  const size_t slash = key.find('/');
  if (slash == std::string_view::npos) return found(FindField(FormKeys, key, result));
  const std::string_view group = key.substr(0, slash);
  const std::string_view below = key.substr(slash + 1);
  if (group == OptionsGroup) {
    return found(FindField(OptionKeys, below, result) || FindField(FormOptionKeys, below, result));
  }
  for (const std::string_view list : {SequenceGroup, AttachmentGroup, GibGroup, QcCommandGroup, LodGroup, SkinGroup}) {
    result.Entry = NumberBehind(group, list);
    if (result.Entry < 0) continue;
    result.List = list;
    return found(ReadListKey(list, below, result));
  }
  return std::nullopt;
}

std::vector<KeyDescription> DescribeProjectKeys() {
  std::vector<KeyDescription> keys;
  const auto add = [&keys](const std::string& prefix, const auto& fields) {
    for (const auto& field : fields) {
      keys.push_back({prefix + std::string(field.Key), field.Label, KindOf(field), field.Default, field.Names});
    }
  };
  const auto entry = [](std::string_view group) { return std::string(group) + "<i>/"; };
  const std::string options = std::string(OptionsGroup) + '/';
  add("", FormKeys);
  add(options, FormOptionKeys);
  add(options, OptionKeys);
  add(entry(SequenceGroup), SequenceKeys);
  keys.push_back({entry(SequenceGroup) + std::string(CommandKey) + "<j>", "Command", ValueKind::Text, {}, {}});
  add(entry(SequenceGroup) + std::string(EventGroup) + "<j>/", EventKeys);
  add(entry(AttachmentGroup), AttachmentKeys);
  add(entry(GibGroup), GibKeys);
  add(entry(QcCommandGroup), QcCommandKeys);
  add(entry(LodGroup), LodKeys);
  add(entry(SkinGroup), SkinKeys);
  return keys;
}

}  // namespace tarnwick::project
