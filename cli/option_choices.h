#pragma once

#include <string>
#include <vector>

namespace CLI {
class Option;
}

namespace tarnwick::cli {

/// The words of which an option's value must be one; empty where it may be anything.
std::vector<std::string> ChoicesOf(const CLI::Option& option);

}  // namespace tarnwick::cli
