#include "decompiler/job/output_names.h"

#include <algorithm>

#include "core/paths.h"
#include "core/windows_names.h"

namespace tarnwick::decompiler {

namespace {

constexpr std::string_view RefusedCharacters = "<>:\"|?*";

}  // namespace

bool StaysInside(std::string_view name) {
  while (true) {
    const size_t separator = name.find_first_of("/\\");
    if (name.substr(0, separator) == "..") return false;
    if (separator == std::string_view::npos) return true;
    name.remove_prefix(separator + 1);
  }
}

std::string CleanFileName(std::string_view name) {
  std::string clean(core::LastComponent(name));
  for (char& c : clean) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F || RefusedCharacters.find(c) != std::string_view::npos) c = '_';
  }
  for (size_t i = clean.size(); i > 0 && (clean[i - 1] == '.' || clean[i - 1] == ' '); --i) clean[i - 1] = '_';
  if (clean.empty()) return "_";
  if (core::IsDeviceName(clean)) clean[0] = '_';
  return clean;
}

std::string FileKey(std::string_view name) {
  std::string key = core::LowerAscii(name);
  std::replace(key.begin(), key.end(), '\\', '/');
  return key;
}

std::string OutputNames::Take(std::string_view stem, std::string_view extension) {
  // Names of files end at 255 bytes; room is kept for the number that may follow the stem.
  constexpr size_t LongestStem = 200;
  const std::string clean = CleanFileName(stem).substr(0, LongestStem);
  std::string name = clean + std::string(extension);
  for (int number = 2; !m_taken.insert(core::LowerAscii(name)).second; ++number) {
    name = clean + "_" + std::to_string(number) + std::string(extension);
  }
  return name;
}

bool OutputNames::IsFree(std::string_view name) const {
  return m_taken.count(core::LowerAscii(name)) == 0;
}

void OutputNames::Reserve(std::string_view name) {
  m_taken.insert(core::LowerAscii(name));
}

}  // namespace tarnwick::decompiler
