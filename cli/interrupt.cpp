#include "cli/interrupt.h"

namespace tarnwick::cli {

namespace {

// A signal handler reaches nothing but what is static.
std::atomic<bool> Interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free);

void OnSignal(int) {
  Interrupted = true;
}

}  // namespace

InterruptFlag::InterruptFlag() {
  Interrupted = false;
  m_oldInterrupt = std::signal(SIGINT, OnSignal);
  m_oldTerminate = std::signal(SIGTERM, OnSignal);
}

InterruptFlag::~InterruptFlag() {
  std::signal(SIGINT, m_oldInterrupt);
  std::signal(SIGTERM, m_oldTerminate);
}

const std::atomic<bool>& InterruptFlag::Flag() const {
  return Interrupted;
}

}  // namespace tarnwick::cli
