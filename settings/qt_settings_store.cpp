#include "settings/qt_settings_store.h"

#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QString>

namespace tarnwick::settings {

namespace {

constexpr const char* Organisation = "Fennelworks";
constexpr const char* Application = "tarnwick";

QString Text(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// Whether the text of a settings file holds something that is no section, value or comment, which a write would drop.
bool IsDamaged(const QByteArray& text) {
  if (text.contains('\0')) return true;
  for (const QByteArray& whole : text.split('\n')) {
    const QByteArray line = whole.trimmed();
    const bool isSection = line.startsWith('[') && line.endsWith(']');
    if (!line.isEmpty() && !line.startsWith(';') && !isSection && !line.contains('=')) return true;
  }
  return false;
}

QString Key(std::string_view section, std::string_view name) {
  return Text(section) + '/' + Text(name);
}

}  // namespace

QtSettingsStore::QtSettingsStore(TellTrouble tellTrouble) : m_tellTrouble(std::move(tellTrouble)) {}

QtSettingsStore::QtSettingsStore(const std::string& path, TellTrouble tellTrouble)
    : m_path(path), m_tellTrouble(std::move(tellTrouble)) {}

std::string QtSettingsStore::GetString(std::string_view section, std::string_view name,
                                       std::string_view defaultText) const {
  const QVariant value = Open()->value(Key(section, name));
  if (!value.isValid()) return std::string(defaultText);
  // A comma that was put into the file by hand, without quotes, makes a list of one text.
  if (value.typeId() == QMetaType::QStringList) return value.toStringList().join(',').toStdString();
  return value.toString().toStdString();
}

int32_t QtSettingsStore::GetInt(std::string_view section, std::string_view name, int32_t defaultValue) const {
  bool isNumber = false;
  const int32_t value = Open()->value(Key(section, name)).toInt(&isNumber);
  return isNumber ? value : defaultValue;
}

void QtSettingsStore::WriteString(std::string_view section, std::string_view name, std::string_view text) {
  Write(section, name, Text(text));
}

void QtSettingsStore::WriteInt(std::string_view section, std::string_view name, int32_t value) {
  Write(section, name, value);
}

bool QtSettingsStore::Holds(std::string_view section, std::string_view name) const {
  return Open()->contains(Key(section, name));
}

std::string QtSettingsStore::Location() const {
  return Open()->fileName().toStdString();
}

std::unique_ptr<QSettings> QtSettingsStore::Open() const {
  auto store = m_path.empty() ? std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope, Organisation,
                                                            Application)
                              : std::make_unique<QSettings>(Text(m_path), QSettings::IniFormat);
  store->setFallbacksEnabled(false);
  return store;
}

template <typename Value>
void QtSettingsStore::Write(std::string_view section, std::string_view name, const Value& value) {
  const std::unique_ptr<QSettings> store = Open();
  if (!PrepareToWrite(*store)) return;
  store->setValue(Key(section, name), QVariant::fromValue(value));
  store->sync();
  if (store->status() == QSettings::AccessError) {
    Tell("The settings cannot be saved: " + Location() + " cannot be written.");
  }
}

/// Whether the store may be written. Writing a damaged file drops what could not be read of it, so a copy is made
/// first.
bool QtSettingsStore::PrepareToWrite(const QSettings& store) {
  const QString path = store.fileName();
  if (!QFileInfo(path).isFile()) return true;  // not there yet, or no file at all
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    Tell("The settings cannot be saved: " + path.toStdString() + " cannot be read.");
    return false;
  }
  // Qt's own verdict is lost once it has the file's values at hand.
  if (!IsDamaged(file.readAll())) return true;
  const QString copy = path + ".damaged";
  QFile::remove(copy);
  if (!QFile::copy(path, copy)) {
    Tell("The settings cannot be saved: " + path.toStdString() + " is damaged and cannot be copied.");
    return false;
  }
  Tell("The settings file " + path.toStdString() +
       " was damaged. What could be read of it is kept; the damaged file is " + copy.toStdString() + ".");
  return true;
}

void QtSettingsStore::Tell(const std::string& text) {
  if (std::exchange(m_told, true) || !m_tellTrouble) return;
  m_tellTrouble(text);
}

}  // namespace tarnwick::settings
