#pragma once

#include <QMetaObject>
#include <QObject>
#include <QThreadPool>
#include <memory>
#include <utility>

namespace tarnwick::view {

/// Work beside the window of which only the latest counts: what a later call overtakes is dropped before it starts, or
/// its result is.
///
///     m_loading.Run([path] { return Load(path); }, [this](Loaded loaded) { Show(std::move(loaded)); });
class Background : public QObject {
 public:
  explicit Background(QObject* parent = nullptr) : QObject(parent) { m_pool.setMaxThreadCount(1); }
  /// Waits for the work at hand; its result is dropped.
  ~Background() override {
    m_pool.clear();
    m_pool.waitForDone();
  }

  /// Calls `work` on a thread of its own, then `done` with what it gave on the thread of this object, unless another
  /// work was begun or Forget called meanwhile. `work` must not throw.
  template <typename Work, typename Done>
  void Run(Work work, Done done) {
    Forget();
    m_isRunning = true;
    m_pool.start([this, ticket = m_ticket, work = std::move(work), done = std::move(done)]() mutable {
      auto result = std::make_shared<decltype(work())>(work());
      QMetaObject::invokeMethod(
          this,
          [this, ticket, result, done = std::move(done)]() mutable {
            if (ticket != m_ticket) return;
            m_isRunning = false;
            done(std::move(*result));
          },
          Qt::QueuedConnection);
    });
  }

  /// Nothing of what was begun counts any more.
  void Forget() {
    m_pool.clear();
    ++m_ticket;
    m_isRunning = false;
  }

  bool IsRunning() const { return m_isRunning; }

 private:
  QThreadPool m_pool;
  int m_ticket = 0;
  bool m_isRunning = false;
};

}  // namespace tarnwick::view
