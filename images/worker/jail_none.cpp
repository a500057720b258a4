#include "images/worker/jail.h"

namespace tarnwick::images {

// A system without a jail of its own here: the worker is still a process apart, so a crash stays in it, and the sizes
// in the headers are checked all the same.
bool LimitResources(std::string&) {
  return true;
}

bool LimitFurtherMemory(int64_t, std::string&) {
  return true;
}

bool EnterJail(std::string&) {
  return true;
}

}  // namespace tarnwick::images
