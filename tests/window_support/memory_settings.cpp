#include "window_support/memory_settings.h"

namespace tarnwick::tests {

namespace {

std::string Key(std::string_view section, std::string_view name) {
  return std::string(section) + '/' + std::string(name);
}

}  // namespace

std::string MemorySettings::GetString(std::string_view section, std::string_view name,
                                      std::string_view defaultText) const {
  const auto found = Values.find(Key(section, name));
  return found == Values.end() ? std::string(defaultText) : found->second;
}

int32_t MemorySettings::GetInt(std::string_view section, std::string_view name, int32_t defaultValue) const {
  const auto found = Values.find(Key(section, name));
  return found == Values.end() ? defaultValue : std::stoi(found->second);
}

void MemorySettings::WriteString(std::string_view section, std::string_view name, std::string_view text) {
  Values[Key(section, name)] = text;
}

void MemorySettings::WriteInt(std::string_view section, std::string_view name, int32_t value) {
  Values[Key(section, name)] = std::to_string(value);
}

}  // namespace tarnwick::tests
