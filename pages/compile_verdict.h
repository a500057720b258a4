#pragma once

#include <string>

#include "jobs/result.h"

namespace tarnwick::pages {

/// What became of a script's compile, in words: whether the model was written, how old the file there is, and how many
/// errors and warnings were told.
///
///     props/crate.mdl was written (12.3 KB), no errors, 2 warnings
///     props/crate.mdl was not written, the file there is 3 days old; 1 error, no warnings
std::string CompileVerdict(const jobs::ItemResult& result, const std::string& gameDirectory);

/// The same behind a tool's text, with the first error on a line of its own: lines in square brackets.
std::string VerdictLines(const jobs::ItemResult& result, const std::string& gameDirectory);

}  // namespace tarnwick::pages
