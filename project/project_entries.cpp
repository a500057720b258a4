#include "project/project_entries.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace tarnwick::project {

namespace {

/// The first `count` of `array`; a count that no editor could have made is brought into range.
template <typename T, size_t Size>
std::span<const T> Used(const std::array<T, Size>& array, int32_t count) {
  return {array.data(), static_cast<size_t>(std::clamp(count, 0, static_cast<int32_t>(Size)))};
}

template <typename T, size_t Size>
bool Append(std::array<T, Size>& array, int32_t& count, T value) {
  const size_t used = Used(array, count).size();
  if (used == Size) return false;
  array[used] = std::move(value);
  count = static_cast<int32_t>(used + 1);
  return true;
}

template <typename T, size_t Size>
bool Replace(std::array<T, Size>& array, int32_t& count, std::span<const T> rows) {
  if (rows.size() > Size) return false;
  std::array<T, Size> fresh;
  std::copy(rows.begin(), rows.end(), fresh.begin());
  array = std::move(fresh);
  count = static_cast<int32_t>(rows.size());
  return true;
}

}  // namespace

std::span<const std::string> SequenceEntry::Commands() const {
  return Used(commands, commandCount);
}

std::span<const EventEntry> SequenceEntry::Events() const {
  return Used(events, eventCount);
}

bool SequenceEntry::AddCommand(std::string command) {
  return Append(commands, commandCount, std::move(command));
}

bool SequenceEntry::AddEvent(EventEntry event) {
  return Append(events, eventCount, std::move(event));
}

bool SequenceEntry::SetCommands(std::span<const std::string> rows) {
  return Replace(commands, commandCount, rows);
}

bool SequenceEntry::SetEvents(std::span<const EventEntry> rows) {
  return Replace(events, eventCount, rows);
}

bool SequenceEntry::operator==(const SequenceEntry& other) const {
  return name == other.name && smdFile == other.smdFile && rotateDirection == other.rotateDirection &&
         rotateAmount == other.rotateAmount && activity == other.activity &&
         activityStrength == other.activityStrength && fps == other.fps && loop == other.loop &&
         std::ranges::equal(Commands(), other.Commands()) && std::ranges::equal(Events(), other.Events());
}

}  // namespace tarnwick::project
