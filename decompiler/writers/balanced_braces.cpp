#include "decompiler/writers/balanced_braces.h"

namespace tarnwick::decompiler {

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

}  // namespace tarnwick::decompiler
