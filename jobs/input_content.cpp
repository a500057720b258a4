#include "jobs/input_content.h"

#include <utility>

namespace tarnwick::jobs {

std::vector<core::Trouble> InputContent::TakeTroubles() {
  const std::lock_guard lock(m_lock);
  return std::exchange(m_troubles, {});
}

void InputContent::Tell(const core::Trouble& trouble) {
  const std::lock_guard lock(m_lock);
  m_troubles.push_back(trouble);
}

bool IsOnDisk(const std::string& name) {
  return archives::ReadContentName(name).Where == archives::ContentName::Place::Disk;
}

}  // namespace tarnwick::jobs
