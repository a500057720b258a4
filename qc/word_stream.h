#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "qc/folder_look.h"
#include "qc/messages.h"
#include "qc/script_files.h"

namespace tarnwick::qc {

/// What a script may cost. The words of a sound script stay far below all of them.
struct ScriptLimits {
  size_t FileBytes = size_t{256} << 20;  // of one file
  size_t MadeWords = 1'000'000;          // words and uses that come from macros
  size_t MadeBytes = size_t{64} << 20;   // of texts with values in them
  size_t IncludedBytes = size_t{256} << 20;
  size_t Includes = 10'000;
  size_t Depth = 32;  // of includes and macros in each other
};

/// Reads the file at a path; nothing, and why in `reason`, if that fails.
using FileReader = std::function<std::optional<core::FileImage>(const std::string& path, std::string& reason)>;

/// The words of a script with all that stands for other words replaced: $include by the file's words, the use of a
/// macro by its body, `$name$` in bare words by the variable's value. $definemacro and $definevariable are taken out.
///
/// `look` finds included files in either case; without it the names are taken as they are.
class WordStream {
 public:
  WordStream(ScriptFiles& files, Messages& messages, FolderLook* look, FileReader read, const ScriptLimits& limits);

  /// Begins with the file that stands first in the script's files.
  void Start();

  /// The next word; nothing at the end of the script. It stays good until Take.
  const Word* Peek();
  /// The next word, taken out. Only after a Peek that gave one.
  Word Take();

 private:
  struct Macro {
    std::string_view Name;
    std::vector<std::string_view> Parameters;
    std::vector<Word> Body;
  };
  /// A text that words come from: a file, or a macro's body.
  struct Frame {
    WordScanner Scanner;
    uint32_t File = 0;
    uint32_t Origin = 0;
    const Macro* Body = nullptr;  // nothing: a file
    std::vector<Word> Arguments;
    size_t At = 0;
    bool FirstOfLine = false;  // whether the use of the macro began a line
  };

  bool Read(Word& word);
  bool ReadFrom(Frame& frame, Word& word);
  bool ReadOnLine(Word& word);
  bool TakesDirective(const Word& word);
  void Include(const Word& directive);
  void OpenInclude(const Word& directive, const Word& name, const std::string& path);
  void DefineVariable(const Word& directive);
  void DefineMacro(const Word& directive);
  void UseMacro(const Word& use, const Macro& macro);
  std::optional<std::string> FindInclude(const Word& name, const std::string& folder, std::string& nearest);
  uint32_t AddOrigin(const Place& at, std::string_view macro);
  bool SpendMade(const Place& at, size_t words, size_t bytes);
  template <typename Value>
  void Substitute(Word& word, Value valueOf);

  ScriptFiles& m_files;
  Messages& m_messages;
  FolderLook* m_look;
  FileReader m_read;
  ScriptLimits m_limits;
  std::vector<Frame> m_frames;
  std::unordered_map<std::string, Macro> m_macros;  // by name in small letters
  std::unordered_map<std::string_view, Word> m_variables;
  std::unordered_map<std::string, uint32_t> m_fileNumbers;
  size_t m_madeWords = 0;
  size_t m_madeBytes = 0;
  size_t m_includedBytes = 0;
  size_t m_includes = 0;
  Word m_next;
  bool m_hasNext = false;
};

}  // namespace tarnwick::qc
