#pragma once

#include <functional>
#include <memory>
#include <string>

#include "core/app_settings.h"

class QSettings;

namespace tarnwick::settings {

/// The settings in the user's own store: organisation "Fennelworks", application "tarnwick". On Windows that is
/// HKEY_CURRENT_USER\Software\Fennelworks\tarnwick with a subkey for each section, elsewhere the file
/// ~/.config/Fennelworks/tarnwick.conf.
///
/// Each call goes to the store, so a value that somebody else changes counts at the next read. A damaged file is read
/// as far as it makes sense; before it is written for the first time it is copied to "<file>.damaged", and a file that
/// cannot be read or written stays as it is. Either is told once through `tellTrouble`.
class QtSettingsStore : public core::AppSettings {
 public:
  using TellTrouble = std::function<void(const std::string& text)>;

  /// The user's store.
  explicit QtSettingsStore(TellTrouble tellTrouble);
  /// A store in the file `path`, which need not exist.
  QtSettingsStore(const std::string& path, TellTrouble tellTrouble);

  std::string GetString(std::string_view section, std::string_view name,
                        std::string_view defaultText = {}) const override;
  int32_t GetInt(std::string_view section, std::string_view name, int32_t defaultValue) const override;
  void WriteString(std::string_view section, std::string_view name, std::string_view text) override;
  void WriteInt(std::string_view section, std::string_view name, int32_t value) override;

  /// Whether the value is in the store, so that a reader does not get its default.
  bool Holds(std::string_view section, std::string_view name) const;
  /// The store's file (on Windows its registry path).
  std::string Location() const;

 private:
  std::unique_ptr<QSettings> Open() const;
  template <typename Value>
  void Write(std::string_view section, std::string_view name, const Value& value);
  bool PrepareToWrite(const QSettings& store);
  void Tell(const std::string& text);

  std::string m_path;  // empty: the user's store
  TellTrouble m_tellTrouble;
  bool m_told = false;
};

}  // namespace tarnwick::settings
