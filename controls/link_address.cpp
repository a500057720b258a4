#include "controls/link_address.h"

#include "core/paths.h"

namespace tarnwick::controls {
namespace {

constexpr std::string_view AppPrefix = "APP:";

}  // namespace

std::optional<std::string> AppCommandName(std::string_view address) {
  if (address.starts_with('"')) address.remove_prefix(1);
  if (!core::EqualIgnoringCase(address.substr(0, AppPrefix.size()), AppPrefix)) return std::nullopt;
  address.remove_prefix(AppPrefix.size());
  if (address.starts_with('"')) address.remove_prefix(1);
  if (address.ends_with('"')) address.remove_suffix(1);
  return std::string(address);
}

std::string OpenableAddress(std::string_view address) {
  constexpr std::string_view Wrapping = " \t\r\n\"";
  const size_t first = address.find_first_not_of(Wrapping);
  if (first == std::string_view::npos) return {};
  return std::string(address.substr(first, address.find_last_not_of(Wrapping) + 1 - first));
}

}  // namespace tarnwick::controls
