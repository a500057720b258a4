#include "archives/safe_name.h"

#include <algorithm>

#include "core/windows_names.h"

namespace tarnwick::archives {

namespace {

bool IsControl(char c) {
  return static_cast<unsigned char>(c) < ' ' || c == '\x7F';
}

std::string UnsafePart(std::string_view part, NameRules rules) {
  if (part.empty()) return "its name has an empty part";
  if (part == "." || part == "..") return "its name has the part \"" + std::string(part) + "\"";
  if (std::any_of(part.begin(), part.end(), IsControl)) return "its name has a control byte";
  if (part.find(':') != std::string_view::npos) return "its name has a colon";
  if (rules == NameRules::Posix) return {};
  if (part.find_first_of("<>\"|?*") != std::string_view::npos) return "its name has a character that Windows reserves";
  if (part.ends_with('.') || part.ends_with(' ')) return "a part of its name ends in a dot or a blank";
  return core::IsDeviceName(part) ? "a part of its name is that of a device" : "";
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
