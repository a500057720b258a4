#include "project/project_keys.h"

#include <algorithm>
#include <charconv>

namespace tarnwick::project {

namespace {

/// The kind of the field of that key in one of the tables, or nothing.
template <typename Record, size_t Size>
std::optional<ValueKind> FindKind(const std::array<KeyedField<Record>, Size>& fields, std::string_view key) {
  const auto found = std::ranges::find(fields, key, &KeyedField<Record>::Key);
  return found == fields.end() ? std::nullopt : std::optional(KindOf(*found));
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
std::optional<ValueKind> ReadSequenceKey(std::string_view key, ProjectKey& result) {
  if (const auto kind = FindKind(SequenceKeys, key)) return kind;
  result.SubEntry = NumberBehind(key, CommandKey);
  if (result.SubEntry >= 0) {
    result.Sub = CommandKey;
    result.QuoteStandIn = SequenceCommandQuote;
    return ValueKind::Text;
  }
  const size_t slash = key.find('/');
  if (slash == std::string_view::npos) return std::nullopt;
  result.Sub = EventGroup;
  result.SubEntry = NumberBehind(key.substr(0, slash), EventGroup);
  return result.SubEntry < 0 ? std::nullopt : FindKind(EventKeys, key.substr(slash + 1));
}

std::optional<ValueKind> ReadListKey(std::string_view list, std::string_view key, ProjectKey& result) {
  if (list == SequenceGroup) return ReadSequenceKey(key, result);
  if (list == AttachmentGroup) return FindKind(AttachmentKeys, key);
  if (list == GibGroup) return FindKind(GibKeys, key);
  if (list == LodGroup) return FindKind(LodKeys, key);
  if (list == SkinGroup) return FindKind(SkinKeys, key);
  result.QuoteStandIn = QcCommandQuote;
  return FindKind(QcCommandKeys, key);
}

}  // namespace

std::string Numbered(std::string_view group, int32_t number) {
  return std::string(group) + std::to_string(number);
}

std::optional<ProjectKey> ReadProjectKey(std::string_view key) {
  ProjectKey result;
  const auto finish = [&](std::optional<ValueKind> kind) -> std::optional<ProjectKey> {
    if (!kind) return std::nullopt;
    result.Kind = *kind;
    return result;
  };
  const size_t slash = key.find('/');
  if (slash == std::string_view::npos) return finish(FindKind(FormKeys, key));
  const std::string_view group = key.substr(0, slash);
  const std::string_view below = key.substr(slash + 1);
  if (group == OptionsGroup) {
    const auto kind = FindKind(OptionKeys, below);
    return finish(kind ? kind : FindKind(FormOptionKeys, below));
  }
  for (const std::string_view list : {SequenceGroup, AttachmentGroup, GibGroup, QcCommandGroup, LodGroup, SkinGroup}) {
    result.Entry = NumberBehind(group, list);
    if (result.Entry < 0) continue;
    result.List = list;
    return finish(ReadListKey(list, below, result));
  }
  return std::nullopt;
}

}  // namespace tarnwick::project
