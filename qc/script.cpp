#include "qc/script.h"

#include <cstddef>

namespace tarnwick::qc {

const Statement* Script::Last(Command kind) const {
  for (size_t i = Statements.size(); i-- > 0;) {
    if (Statements[i].Kind == kind) return &Statements[i];
  }
  return nullptr;
}

}  // namespace tarnwick::qc
