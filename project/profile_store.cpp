#include "project/profile_store.h"

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <utility>

#include "core/file_image.h"
#include "core/number_parse.h"
#include "core/output_file.h"
#include "core/text_writer.h"

namespace tarnwick::project {

namespace {

using Text = std::string_view;

std::string Join(std::initializer_list<Text> names) {
  std::string key;
  for (const Text name : names) {
    if (!key.empty()) key += '/';
    key += name;
  }
  return key;
}

const std::string* Find(const std::map<std::string, std::string, std::less<>>& entries, const std::string& key) {
  const auto found = entries.find(key);
  return found == entries.end() ? nullptr : &found->second;
}

std::string TextOr(const std::string* value, Text defaultText) {
  return value != nullptr ? *value : std::string(defaultText);
}

int32_t WholeOr(const std::string* value, int32_t defaultValue) {
  return value != nullptr ? core::ParseWhole(*value) : defaultValue;
}

/// Takes the next line off `rest`, without its line end.
Text TakeLine(Text& rest) {
  const size_t end = rest.find('\n');
  Text line = rest.substr(0, end);
  rest.remove_prefix(end == Text::npos ? rest.size() : end + 1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

/// The text from `at` to the next double quote, or to the end.
Text UpToQuote(Text line, size_t at) {
  if (at >= line.size()) return {};
  return line.substr(at, line.find('"', at) - at);
}

struct Line {
  Text Key;
  Text Value;
  bool Sound;
};

/// Finds key and value in a line by its quotes. The first character is taken to be one; a key has at least one
/// character, whatever it is.
std::optional<Line> ReadLine(Text line) {
  if (line.size() < 2) return std::nullopt;
  const Text key = line.substr(1, line.find('"', 2) - 1);
  const Text value = UpToQuote(line, key.size() + 4);
  const bool sound = key[0] != '"' && line.size() == key.size() + value.size() + 5 && line.front() == '"' &&
                     line.substr(key.size() + 1, 3) == "\" \"" && line.back() == '"';
  return Line{key, value, sound};
}

bool FitsFile(Text text) {
  return text.find_first_of("\"\n") == Text::npos;
}

}  // namespace

void ProfileStore::SetString(Text section, Text key, Text value) {
  m_entries[Join({section, key})] = value;
}
void ProfileStore::SetString(Text section, Text group, Text key, Text value) {
  m_entries[Join({section, group, key})] = value;
}
void ProfileStore::SetString(Text section, Text group, Text subgroup, Text key, Text value) {
  m_entries[Join({section, group, subgroup, key})] = value;
}

void ProfileStore::SetInt(Text section, Text key, int32_t value) {
  m_entries[Join({section, key})] = std::to_string(value);
}
void ProfileStore::SetInt(Text section, Text group, Text key, int32_t value) {
  m_entries[Join({section, group, key})] = std::to_string(value);
}
void ProfileStore::SetInt(Text section, Text group, Text subgroup, Text key, int32_t value) {
  m_entries[Join({section, group, subgroup, key})] = std::to_string(value);
}

std::string ProfileStore::GetString(Text section, Text key, Text defaultText) const {
  return TextOr(Find(m_entries, Join({section, key})), defaultText);
}
std::string ProfileStore::GetString(Text section, Text group, Text key, Text defaultText) const {
  return TextOr(Find(m_entries, Join({section, group, key})), defaultText);
}
std::string ProfileStore::GetString(Text section, Text group, Text subgroup, Text key, Text defaultText) const {
  return TextOr(Find(m_entries, Join({section, group, subgroup, key})), defaultText);
}

int32_t ProfileStore::GetInt(Text section, Text key, int32_t defaultValue) const {
  return WholeOr(Find(m_entries, Join({section, key})), defaultValue);
}
int32_t ProfileStore::GetInt(Text section, Text group, Text key, int32_t defaultValue) const {
  return WholeOr(Find(m_entries, Join({section, group, key})), defaultValue);
}
int32_t ProfileStore::GetInt(Text section, Text group, Text subgroup, Text key, int32_t defaultValue) const {
  return WholeOr(Find(m_entries, Join({section, group, subgroup, key})), defaultValue);
}

bool ProfileStore::LoadFile(const std::string& path, std::string* reason, ProfileLoadNotes* notes) {
  const std::optional<core::FileImage> image = core::FileImage::Read(path, reason);
  if (!image) return false;
  LoadText(Text(reinterpret_cast<const char*>(image->Bytes().data()), image->Bytes().size()), notes);
  return true;
}

void ProfileStore::LoadText(Text text, ProfileLoadNotes* notes) {
  m_entries.clear();
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);  // the mark that some editors put before UTF-8 text
  ProfileLoadNotes found;
  for (int32_t number = 1; !text.empty(); ++number) {
    const Text line = TakeLine(text);
    if (line.empty()) {
      if (text.find_first_not_of("\r\n") != Text::npos) {
        found.EmptyLine = number;
        found.LinesBehindIt = static_cast<int32_t>(std::count(text.begin(), text.end(), '\n')) +
                              static_cast<int32_t>(!text.ends_with('\n'));
      }
      break;
    }
    const std::optional<Line> entry = ReadLine(line);
    if (!entry || !entry->Sound) found.DamagedLines.push_back(number);
    if (entry) m_entries[std::string(entry->Key)] = entry->Value;
  }
  if (notes != nullptr) *notes = std::move(found);
}

bool ProfileStore::SaveFile(const std::string& path, std::string* reason) const {
  const auto fail = [&](std::string why) {
    if (reason != nullptr) *reason = std::move(why);
    return false;
  };
  for (const auto& [key, value] : m_entries) {
    if (!FitsFile(key) || !FitsFile(value)) {
      return fail("the value of " + key + " holds a double quote or a line break, which the file cannot hold");
    }
  }
  std::optional<core::OutputFile> file = core::OutputFile::Create(path, reason);
  if (!file) return false;
  {
    core::TextWriter writer(*file);
    for (const auto& [key, value] : m_entries) writer.Format("\"%s\" \"%s\"\n", key, value);
  }
  return file->Commit() || fail(file->Error());
}

}  // namespace tarnwick::project
