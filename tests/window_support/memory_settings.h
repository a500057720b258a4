#pragma once

#include <map>
#include <string>

#include "core/app_settings.h"

namespace tarnwick::tests {

/// Settings that live as long as the test. Values can be looked at as "section/name", numbers as their text.
class MemorySettings : public core::AppSettings {
 public:
  std::string GetString(std::string_view section, std::string_view name,
                        std::string_view defaultText = {}) const override;
  int32_t GetInt(std::string_view section, std::string_view name, int32_t defaultValue) const override;
  void WriteString(std::string_view section, std::string_view name, std::string_view text) override;
  void WriteInt(std::string_view section, std::string_view name, int32_t value) override;

  std::map<std::string, std::string> Values;
};

}  // namespace tarnwick::tests
