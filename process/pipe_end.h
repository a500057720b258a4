#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace tarnwick::process {

/// What the system said when a call failed: its error code and its message for that code.
struct SystemError {
  int Code = 0;
  std::string Message;
};

/// The error of the code that the system gave, `errno` or GetLastError().
SystemError ErrorOf(int code);

/// One end of a pipe, or nothing. Closed when the object goes away.
class PipeEnd {
 public:
  PipeEnd() = default;
  explicit PipeEnd(intptr_t handle) : m_handle(handle) {}
  PipeEnd(PipeEnd&& other) noexcept : m_handle(other.m_handle) { other.m_handle = None; }
  /// Closes the end that it was before.
  PipeEnd& operator=(PipeEnd&& other) noexcept {
    PipeEnd taken(std::move(other));
    std::swap(m_handle, taken.m_handle);
    return *this;
  }
  ~PipeEnd() { Close(); }

  bool IsOpen() const { return m_handle != None; }
  /// The descriptor, or the HANDLE, as a number.
  intptr_t Handle() const { return m_handle; }
  /// Closes the end; nothing happens if there is none. Tells what failed.
  std::optional<SystemError> Close();

 private:
  static constexpr intptr_t None = -1;
  intptr_t m_handle = None;
};

/// Makes an anonymous pipe whose ends a child can inherit.
[[nodiscard]] std::optional<SystemError> CreateInheritablePipe(PipeEnd& read, PipeEnd& write);

/// Keeps children from inheriting `end`.
[[nodiscard]] std::optional<SystemError> StopInheriting(PipeEnd& end);

/// Writes `size` bytes; whether that worked is not told, since the reader may be gone.
void WriteToPipe(PipeEnd& end, const char* bytes, size_t size);

/// What a read that waits for a limited time found.
struct PipeRead {
  enum class Kind { Bytes, Nothing, End };
  Kind Found = Kind::End;
  size_t Size = 0;
};

/// Reads up to `size` bytes as soon as there are any. `Nothing` after `wait` without one; `End` when the last writing
/// end is closed, and after any failure.
[[nodiscard]] PipeRead ReadFromPipe(PipeEnd& end, char* target, size_t size, std::chrono::milliseconds wait);

}  // namespace tarnwick::process
