#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarnwick::core {

/// Sections of the settings.
inline constexpr std::string_view MainSection = "Tarnwick";
inline constexpr std::string_view DecompilerSection = "Ravelback";

/// The program's persistent settings: text values and whole numbers, each under a section and a value name, both
/// case-sensitive. Nothing is cached: a value written is what the next reader gets, and a reader asks at the moment
/// that it needs the value. A value that was never written reads as the reader's default and is not created by reading.
///
/// Used on one thread only. There is nothing to fail: a value of the other kind, or a store that cannot be read, is a
/// missing value.
class AppSettings {
 public:
  virtual ~AppSettings() = default;

  /// The stored text, or `defaultText` if there is none.
  virtual std::string GetString(std::string_view section, std::string_view name,
                                std::string_view defaultText = {}) const = 0;

  /// The stored number, or `defaultValue` if there is none.
  virtual int32_t GetInt(std::string_view section, std::string_view name, int32_t defaultValue) const = 0;

  /// Stores `text`, over an older value.
  virtual void WriteString(std::string_view section, std::string_view name, std::string_view text) = 0;

  /// Stores `value`, over an older value.
  virtual void WriteInt(std::string_view section, std::string_view name, int32_t value) = 0;
};

}  // namespace tarnwick::core
