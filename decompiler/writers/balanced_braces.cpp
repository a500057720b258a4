#include "decompiler/writers/clean_text.h"

#include <cmath>

namespace tarnwick::decompiler {

std::string CleanQuoted(std::string_view text) {
  std::string clean;
  for (const char c : text) {
    if (c != '"' && static_cast<unsigned char>(c) >= ' ' && c != '\x7F') clean += c;
  }
  return clean;
}

std::string BalanceBraces(std::string_view text) {
  std::string balanced;
  size_t depth = 0;
  bool quoted = false;
  for (const char c : text) {
    if (c == '"') quoted = !quoted;
    if (!quoted && c == '{') ++depth;
    if (!quoted && c == '}') {
      if (depth == 0) continue;
      --depth;
    }
    balanced += c;
  }
  if (quoted) balanced += '"';
  for (; depth > 0; --depth) balanced += " }";
  return balanced;
}

float FiniteOrZero(float value) {
  return std::isfinite(value) ? value : 0.0f;
}

}  // namespace tarnwick::decompiler
