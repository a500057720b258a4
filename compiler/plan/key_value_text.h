#pragma once

#include <string>
#include <vector>

#include "qc/script.h"

namespace tarnwick::compiler {

/// The text of a $keyvalues block as a model holds it, without the zero byte at its end.
std::string KeyValueText(const std::vector<qc::KeyValue>& keys);
/// The keys of a block alone, as the text of a sequence holds them.
std::string KeyValueBody(const std::vector<qc::KeyValue>& keys);

}  // namespace tarnwick::compiler
