#pragma once

#include <map>
#include <string>
#include <utility>
#include <variant>

#include "core/app_settings.h"

namespace tarnwick::tests {

/// Settings that live as long as the object.
class MemorySettings : public core::AppSettings {
 public:
  std::string GetString(std::string_view section, std::string_view name, std::string_view defaultText) const override {
    const std::string* text = Find<std::string>(section, name);
    return text ? *text : std::string(defaultText);
  }
  int32_t GetInt(std::string_view section, std::string_view name, int32_t defaultValue) const override {
    const int32_t* value = Find<int32_t>(section, name);
    return value ? *value : defaultValue;
  }
  void WriteString(std::string_view section, std::string_view name, std::string_view text) override {
    Values[{std::string(section), std::string(name)}] = std::string(text);
  }
  void WriteInt(std::string_view section, std::string_view name, int32_t value) override {
    Values[{std::string(section), std::string(name)}] = value;
  }

  /// Everything stored, by section and value name.
  std::map<std::pair<std::string, std::string>, std::variant<std::string, int32_t>> Values;

 private:
  template <typename Kind>
  const Kind* Find(std::string_view section, std::string_view name) const {
    const auto found = Values.find({std::string(section), std::string(name)});
    return found == Values.end() ? nullptr : std::get_if<Kind>(&found->second);
  }
};

}  // namespace tarnwick::tests
