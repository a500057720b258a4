#include "decompiler/writers/script_word.h"

namespace tarnwick::decompiler {

std::string ScriptWord(std::string_view name) {
  const bool breaks = name.empty() || name.find_first_of(" \t;{}") != std::string_view::npos ||
                      name.find("//") != std::string_view::npos;
  return breaks ? "\"" + std::string(name) + "\"" : std::string(name);
}

}  // namespace tarnwick::decompiler
