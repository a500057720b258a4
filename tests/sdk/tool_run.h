#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "sdk/tool_console.h"

namespace tarnwick::tests {

/// What a tool printed and returned.
struct ToolRun {
  int Code;
  std::string Out;
  std::string Err;
};

inline ToolRun CallTool(sdk::ToolProgram program, const std::vector<std::string>& arguments) {
  std::ostringstream out;
  std::ostringstream err;
  const int code = program(arguments, out, err);
  return {code, out.str(), err.str()};
}

}  // namespace tarnwick::tests
