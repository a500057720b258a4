#pragma once

#include <string>
#include <string_view>

#include "core/app_settings.h"

namespace tarnwick::core {

/// A text value of the settings: where it lies and what a reader gets while it was never written.
struct TextSetting {
  std::string_view Section;
  std::string_view Name;
  std::string_view Default = {};

  std::string Read(const AppSettings& settings) const { return settings.GetString(Section, Name, Default); }
  void Write(AppSettings& settings, std::string_view text) const { settings.WriteString(Section, Name, text); }
};

/// A whole number of the settings.
struct IntSetting {
  std::string_view Section;
  std::string_view Name;
  int32_t Default = 0;

  int32_t Read(const AppSettings& settings) const { return settings.GetInt(Section, Name, Default); }
  void Write(AppSettings& settings, int32_t value) const { settings.WriteInt(Section, Name, value); }
};

/// Every value that the program keeps. A page reads and writes through these names only:
///
///     const std::string directory = setting::GameDirectory.Read(settings);
namespace setting {

#define TEXT_SETTING(variable, section, name, text) inline constexpr TextSetting variable{section, name, text};
#define NUMBER_SETTING(variable, section, name, number) inline constexpr IntSetting variable{section, name, number};
#include "core/settings_list.h"
#undef TEXT_SETTING
#undef NUMBER_SETTING

/// All text values, in the order of the list.
#define TEXT_SETTING(variable, section, name, text) &(variable),
#define NUMBER_SETTING(variable, section, name, number)
inline constexpr const TextSetting* TextValues[] = {
#include "core/settings_list.h"
};
#undef TEXT_SETTING
#undef NUMBER_SETTING

/// All numbers, likewise.
#define TEXT_SETTING(variable, section, name, text)
#define NUMBER_SETTING(variable, section, name, number) &(variable),
inline constexpr const IntSetting* IntValues[] = {
#include "core/settings_list.h"
};
#undef TEXT_SETTING
#undef NUMBER_SETTING

}  // namespace setting

}  // namespace tarnwick::core
