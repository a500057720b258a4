#pragma once

#include <string>
#include <string_view>

#include "decompiler/job_context.h"
#include "model/truncate.h"

namespace tarnwick::decompiler {

/// `name` as a word of the script: in sources that are to be compiled a name that the script would break apart or lose
/// (it holds a blank, a semicolon, a brace or a comment's two slashes, or it is empty) stands in quotes.
std::string ScriptWord(const JobContext& job, std::string_view name);

}  // namespace tarnwick::decompiler
