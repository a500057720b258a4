#include "archives/safe_name.h"

#include <algorithm>
#include <array>

#include "core/paths.h"

namespace tarnwick::archives {

namespace {

bool IsControl(char c) {
  return static_cast<unsigned char>(c) < ' ' || c == '\x7F';
}

/// Whether Windows takes `part` for a device, whatever its extension.
bool IsDevice(std::string_view part) {
  std::string stem = core::UpperAscii(part.substr(0, part.find('.')));
  while (stem.ends_with(' ')) stem.pop_back();
  constexpr std::array<std::string_view, 6> Plain = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
  if (std::find(Plain.begin(), Plain.end(), stem) != Plain.end()) return true;
  if (!stem.starts_with("COM") && !stem.starts_with("LPT")) return false;
  const std::string_view number = std::string_view(stem).substr(3);
  // The superscript digits count too.
  return (number.size() == 1 && number[0] >= '0' && number[0] <= '9') || number == "\u00B9" || number == "\u00B2" ||
         number == "\u00B3";
}

std::string UnsafePart(std::string_view part, NameRules rules) {
  if (part.empty()) return "its name has an empty part";
  if (part == "." || part == "..") return "its name has the part \"" + std::string(part) + "\"";
  if (std::any_of(part.begin(), part.end(), IsControl)) return "its name has a control byte";
  if (part.find(':') != std::string_view::npos) return "its name has a colon";
  if (rules == NameRules::Posix) return {};
  if (part.find_first_of("<>\"|?*") != std::string_view::npos) return "its name has a character that Windows reserves";
  if (part.ends_with('.') || part.ends_with(' ')) return "a part of its name ends in a dot or a blank";
  return IsDevice(part) ? "a part of its name is that of a device" : "";
}

}  // namespace

std::string UnsafeReason(std::string_view name, NameRules rules) {
  if (!name.empty() && (name.front() == '/' || name.front() == '\\')) return "its name begins at the root";
  for (;;) {
    const size_t end = name.find_first_of("/\\");
    std::string reason = UnsafePart(name.substr(0, end), rules);
    if (!reason.empty() || end == std::string_view::npos) return reason;
    name.remove_prefix(end + 1);
  }
}

std::string PrintableName(std::string_view name) {
  constexpr std::string_view Digits = "0123456789abcdef";
  std::string printable;
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    if (IsControl(c)) {
      printable.append({'\\', 'x', Digits[byte >> 4], Digits[byte & 15]});
    } else {
      printable += c;
    }
  }
  return printable;
}

}  // namespace tarnwick::archives
