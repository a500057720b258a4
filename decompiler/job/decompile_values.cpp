#include "decompiler/job/decompile_values.h"

#include <algorithm>
#include <iterator>

namespace tarnwick::decompiler {

std::vector<core::Trouble> DecompileResult::Told(core::Severity level) const {
  std::vector<core::Trouble> told;
  std::copy_if(Troubles.begin(), Troubles.end(), std::back_inserter(told),
               [level](const core::Trouble& trouble) { return trouble.Level == level; });
  return told;
}

}  // namespace tarnwick::decompiler
