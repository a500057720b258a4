#include "cli/option_choices.h"

#include <CLI/CLI.hpp>

namespace tarnwick::cli {

std::vector<std::string> ChoicesOf(const CLI::Option& option) {
  const std::string type = option.get_type_name();  // "TEXT:{tga,png}": the parser keeps the words nowhere else
  const size_t begin = type.find(":{");
  const size_t end = begin == std::string::npos ? begin : type.find('}', begin);
  if (end == std::string::npos) return {};
  return CLI::detail::split(type.substr(begin + 2, end - begin - 2), ',');
}

}  // namespace tarnwick::cli
