#include "cli/interrupt.h"

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <thread>
#include <vector>

#ifdef _WIN32
#include <windows.h>
#endif

namespace tarnwick::cli {

namespace {

// A signal handler reaches nothing but what is static.
std::atomic<bool> Interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free);

#ifdef _WIN32
constexpr int Signals[] = {SIGINT, SIGTERM, SIGBREAK};
#else
constexpr int Signals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};
#endif

#ifdef _WIN32
/// Closing the console, logging off and shutting down: the system ends the process once this returns, or after some
/// seconds. Those are what the program gets to put its files in order; it ends by itself then.
BOOL WINAPI OnConsoleEvent(DWORD event) {
  if (event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT) return FALSE;  // signals
  Interrupted = true;
  Sleep(INFINITE);
  return TRUE;
}
#endif

void OnSignal(int number) {
  std::signal(number, OnSignal);  // Windows takes the handler away at each signal
  Interrupted = true;
}

/// How often the flag is looked at for those who wait for the token: a handler may not wake them itself.
constexpr std::chrono::milliseconds LookInterval{10};

}  // namespace

struct InterruptFlag::Watch {
  using Handler = void (*)(int);
  struct Replaced {
    int Number;
    Handler Old;
  };
  std::vector<Replaced> Handlers;
  std::stop_source Stop;
  std::mutex Lock;
  std::condition_variable End;
  bool HasEnded = false;  // under the lock
  std::thread Looker;

  /// Hands the flag on to those who wait for the token, until the end or the first interrupt.
  void Look() {
    std::unique_lock lock(Lock);
    while (!HasEnded && !Interrupted) End.wait_for(lock, LookInterval);
    lock.unlock();
    if (Interrupted) Stop.request_stop();
  }
};

InterruptFlag::InterruptFlag() : m_watch(std::make_unique<Watch>()) {
  Interrupted = false;
  for (const int number : Signals) {
    const Watch::Handler old = std::signal(number, OnSignal);
    if (old == SIG_IGN) {
      std::signal(number, SIG_IGN);
    } else {
      m_watch->Handlers.push_back({number, old});
    }
  }
#ifdef _WIN32
  SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
#endif
  m_watch->Looker = std::thread([watch = m_watch.get()] { watch->Look(); });
}

InterruptFlag::~InterruptFlag() {
  {
    const std::lock_guard lock(m_watch->Lock);
    m_watch->HasEnded = true;
  }
  m_watch->End.notify_one();
  m_watch->Looker.join();
#ifdef _WIN32
  SetConsoleCtrlHandler(OnConsoleEvent, FALSE);
#endif
  for (const Watch::Replaced& each : m_watch->Handlers) std::signal(each.Number, each.Old);
}

const std::atomic<bool>& InterruptFlag::Flag() const {
  return Interrupted;
}

std::stop_token InterruptFlag::Token() const {
  return m_watch->Stop.get_token();
}

}  // namespace tarnwick::cli
