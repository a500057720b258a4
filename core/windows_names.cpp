#include "core/windows_names.h"

#include <algorithm>
#include <array>

#include "core/paths.h"

namespace tarnwick::core {

bool IsDeviceName(std::string_view name) {
  std::string stem = UpperAscii(name.substr(0, name.find('.')));
  while (stem.ends_with(' ')) stem.pop_back();
  constexpr std::array<std::string_view, 6> Plain = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
  if (std::find(Plain.begin(), Plain.end(), stem) != Plain.end()) return true;
  if (!stem.starts_with("COM") && !stem.starts_with("LPT")) return false;
  const std::string_view number = std::string_view(stem).substr(3);
  // The superscript digits count too.
  return (number.size() == 1 && number[0] >= '0' && number[0] <= '9') || number == "\u00B9" || number == "\u00B2" ||
         number == "\u00B3";
}

std::string WindowsNameTrouble(std::string_view name) {
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' '; };
  if (std::any_of(name.begin(), name.end(), isControl)) return "its name has a control byte";
  if (name.find_first_of("<>:\"|?*") != std::string_view::npos) return "its name has a character that Windows reserves";
  if (name.ends_with('.') || name.ends_with(' ')) return "its name ends in a dot or a blank";
  return IsDeviceName(name) ? "its name is that of a device" : "";
}

}  // namespace tarnwick::core
