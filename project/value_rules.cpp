#include "project/value_rules.h"

#include <cmath>

#include "core/number_parse.h"
#include "project/field_rules.h"

namespace tarnwick::project {

namespace {

std::string Quoted(std::string_view text) {
  std::string quoted(1, '"');
  return quoted.append(text).append(1, '"');
}

/// "one of prop_static (0), prop_dynamic (1)".
std::string OneOf(std::span<const std::string_view> names) {
  std::string text = "one of ";
  for (size_t i = 0; i < names.size(); ++i) {
    text.append(i == 0 ? "" : ", ").append(names[i]).append(" (" + std::to_string(i) + ")");
  }
  return text;
}

std::optional<std::string> CheckWhole(const ProjectKey& key, std::string_view name, std::string_view value) {
  size_t length = 0;
  const int32_t number = core::ParseWhole(value, &length);
  const bool isWhole = length == value.size() && length != 0;
  if (key.Names.empty() && !isWhole) return std::string(name) + " is a whole number, not " + Quoted(value);
  if (key.Names.empty() || (isWhole && number >= 0 && static_cast<size_t>(number) < key.Names.size())) return {};
  return std::string(name) + " is " + OneOf(key.Names) + ", not " + Quoted(value);
}

}  // namespace

std::optional<std::string> CheckProjectValue(const ProjectKey& key, std::string_view name, std::string_view value) {
  size_t length = 0;
  switch (key.Kind) {
    case ValueKind::Text: {
      const Verdict refused = key.QuoteStandIn != 0 ? CheckCommand(value, key.QuoteStandIn) : CheckText(name, value);
      return refused ? std::optional(refused->Text) : std::nullopt;
    }
    case ValueKind::Check:
      if (value == "0" || value == "1") return std::nullopt;
      return std::string(name) + " is 0 or 1, not " + Quoted(value);
    case ValueKind::Whole:
      return CheckWhole(key, name, value);
    case ValueKind::Real:
      if (const double number = core::ParseReal(value, &length); std::isfinite(number) && RoundsToNothing(number)) {
        return std::string(name) + " cannot be " + Quoted(value) + ": with its two decimals it would be kept as 0.00";
      } else if (std::isfinite(number) && length == value.size() && length != 0) {
        return std::nullopt;
      }
      return std::string(name) + " is a number, not " + Quoted(value);
  }
  return std::nullopt;
}

}  // namespace tarnwick::project
