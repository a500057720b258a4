#pragma once

#include <string>
#include <vector>

#include "qc/script.h"

namespace tarnwick::compiler {

/// The text that $collisiontext adds to a collision model's: a block a line, `name {"key" "value" ...  }`.
std::string FormatCollisionText(const std::vector<qc::KeyValue>& entries);

}  // namespace tarnwick::compiler
