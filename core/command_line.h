#pragma once

#include <string>
#include <vector>

namespace tarnwick::core {

/// The words that a program was started with. While this lives, a Windows console takes what the program prints as
/// UTF-8 and knows the sequences that clear a line.
class CommandLine {
 public:
  /// From what `main` gets. On Windows the system is asked for its own text of the line instead, since what `main` gets
  /// there has lost whatever the code page does not hold.
  CommandLine(int count, const char* const* arguments);
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;
  ~CommandLine();

  /// The program's name and its arguments, in UTF-8 on Windows.
  int Count() const { return static_cast<int>(m_words.size()); }
  const char* const* Words() const { return m_pointers.data(); }
  /// The arguments alone.
  std::vector<std::string> Arguments() const;

 private:
  std::vector<std::string> m_words;
  std::vector<const char*> m_pointers;       // of the words, and a null behind them
  [[maybe_unused]] unsigned m_codePage = 0;  // that the console had; 0 for none to put back
};

}  // namespace tarnwick::core
