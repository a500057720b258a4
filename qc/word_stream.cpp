#include "qc/word_stream.h"

#include <algorithm>
#include <utility>

#include "core/paths.h"

namespace tarnwick::qc {

using core::TroubleKind;

namespace {

constexpr std::string_view Continued = "\\\\";

std::string_view FolderOf(std::string_view path) {
  return core::DirectoryWithSeparator(path);
}

bool IsWideText(std::string_view text) {
  return text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF");
}

}  // namespace

WordStream::WordStream(ScriptFiles& files, Messages& messages, FolderLook* look, FileReader read,
                       const ScriptLimits& limits)
    : m_files(files), m_messages(messages), m_look(look), m_read(std::move(read)), m_limits(limits) {}

void WordStream::Start() {
  const std::string_view text = m_files.Text(0);
  m_fileNumbers.emplace(m_files.Files[0].Path, 0);
  const Place start{0, 1, 1, 0};
  if (IsWideText(text)) {
    m_messages.Error(TroubleKind::Unknown, start, "this is UTF-16 text; save the script as plain text or UTF-8");
  } else if (text.size() > m_limits.FileBytes) {
    m_messages.Error(TroubleKind::Limit, start, "the script is larger than any that is read");
  } else {
    m_frames.push_back({WordScanner(text, 0), 0, 0, nullptr, {}, 0, false});
  }
}

const Word* WordStream::Peek() {
  if (!m_hasNext) m_hasNext = Read(m_next);
  return m_hasNext ? &m_next : nullptr;
}

Word WordStream::Take() {
  m_hasNext = false;
  return m_next;
}

bool WordStream::Read(Word& word) {
  while (!m_frames.empty()) {
    Frame& frame = m_frames.back();
    if (!ReadFrom(frame, word)) {
      if (frame.Body == nullptr && frame.Scanner.OpenComment().Line != 0) {
        Place at = frame.Scanner.OpenComment();
        at.From = frame.Origin;
        m_messages.Warning(TroubleKind::Damaged, at, "the comment that begins here is never closed");
      }
      m_frames.pop_back();
    } else if (!TakesDirective(word)) {
      return true;
    }
  }
  return false;
}

/// The frame's next word, with values in place.
bool WordStream::ReadFrom(Frame& frame, Word& word) {
  if (frame.Body != nullptr) {
    if (frame.At == frame.Body->Body.size() || !SpendMade(frame.Body->Body[frame.At].At, 1, 0)) return false;
    word = frame.Body->Body[frame.At];
    if (frame.At++ == 0) word.FirstOfLine = frame.FirstOfLine;
    word.At.From = frame.Origin;
    if (frame.Arguments.empty()) return true;
    Substitute(word, [&](std::string_view name) -> const Word* {
      const auto& parameters = frame.Body->Parameters;
      const auto found = std::find(parameters.begin(), parameters.end(), name);
      return found == parameters.end() ? nullptr : &frame.Arguments[static_cast<size_t>(found - parameters.begin())];
    });
    return true;
  }
  if (!frame.Scanner.Next(word)) return false;
  word.At.From = frame.Origin;
  if (frame.Scanner.OpenQuote()) {
    m_messages.Warning(TroubleKind::Damaged, word.At, "this quote is not closed; it is taken to end with its line");
  }
  if (!word.Quoted && !m_variables.empty()) {
    Substitute(word, [&](std::string_view name) -> const Word* {
      const auto found = m_variables.find(name);
      return found == m_variables.end() ? nullptr : &found->second;
    });
  }
  return true;
}

/// The next word of the text that the last one came from, if it stands on the same line.
bool WordStream::ReadOnLine(Word& word) {
  if (m_frames.empty()) return false;
  Frame& frame = m_frames.back();
  const WordScanner scanner = frame.Scanner;
  const size_t at = frame.At;
  if (frame.Body != nullptr && at < frame.Body->Body.size() && frame.Body->Body[at].FirstOfLine) return false;
  Word plain;
  if (frame.Body == nullptr) {
    if (!frame.Scanner.Next(plain)) return false;
    const bool sameLine = !plain.FirstOfLine;
    frame.Scanner = scanner;
    if (!sameLine) return false;
  }
  return ReadFrom(frame, word);
}

/// Replaces each `$name$` in the word for which `valueOf` gives a word.
template <typename Value>
void WordStream::Substitute(Word& word, Value valueOf) {
  const std::string_view text = word.Text;
  size_t open = text.find('$');
  std::string made;
  size_t taken = 0;
  bool changed = false;
  while (open != std::string_view::npos) {
    const size_t close = text.find('$', open + 1);
    if (close == std::string_view::npos) break;
    const Word* value = valueOf(text.substr(open + 1, close - open - 1));
    if (value == nullptr) {
      open = close;
      continue;
    }
    if (open == 0 && close + 1 == text.size()) {
      word.Text = value->Text;
      word.Quoted = word.Quoted || value->Quoted;
      return;
    }
    made += text.substr(taken, open - taken);
    made += value->Text;
    word.Quoted = word.Quoted || value->Quoted;
    changed = true;
    taken = close + 1;
    open = text.find('$', taken);
    if (!SpendMade(word.At, 0, value->Text.size())) return;
  }
  if (!changed) return;
  made += text.substr(taken);
  if (SpendMade(word.At, 0, made.size())) word.Text = m_files.Make(std::move(made));
}

/// Counts what macros and variables make. False, and the script ends there, when it is too much.
bool WordStream::SpendMade(const Place& at, size_t words, size_t bytes) {
  if (m_madeWords > m_limits.MadeWords || m_madeBytes > m_limits.MadeBytes) return false;
  m_madeWords += words;
  m_madeBytes += bytes;
  if (m_madeWords <= m_limits.MadeWords && m_madeBytes <= m_limits.MadeBytes) return true;
  m_messages.Error(TroubleKind::Limit, at, "the macros and variables of this script make too many words");
  for (Frame& frame : m_frames) {  // all end here
    frame.Scanner = WordScanner("", frame.File);
    if (frame.Body != nullptr) frame.At = frame.Body->Body.size();
  }
  return false;
}

uint32_t WordStream::AddOrigin(const Place& at, std::string_view macro) {
  m_files.Origins.push_back({at, macro});
  return static_cast<uint32_t>(m_files.Origins.size());
}

/// Whether the word was one for this class.
bool WordStream::TakesDirective(const Word& word) {
  if (!word.Text.starts_with('$') || (word.Quoted && !word.FirstOfLine)) return false;
  if (core::EqualIgnoringCase(word.Text, "$include")) {
    Include(word);
  } else if (core::EqualIgnoringCase(word.Text, "$definevariable")) {
    DefineVariable(word);
  } else if (core::EqualIgnoringCase(word.Text, "$definemacro")) {
    DefineMacro(word);
  } else {
    if (m_macros.empty()) return false;
    const auto macro = m_macros.find(core::LowerAscii(word.Text.substr(1)));
    if (macro == m_macros.end()) return false;
    UseMacro(word, macro->second);
  }
  return true;
}

void WordStream::DefineVariable(const Word& directive) {
  Word name, value;
  if (!ReadOnLine(name) || !ReadOnLine(value)) {
    return m_messages.Error(TroubleKind::Refused, directive.At, "$definevariable needs a name and a value on its line");
  }
  const auto [known, isNew] = m_variables.emplace(name.Text, value);
  if (!isNew && known->second.Text != value.Text) {
    m_messages.Warning(
        TroubleKind::Refused, name.At,
        "the variable " + Shown(name.Text) + " has a value already, " + Shown(known->second.Text) + ", which it keeps");
  }
}

void WordStream::DefineMacro(const Word& directive) {
  Macro macro;
  Word word;
  if (!ReadOnLine(word)) {
    return m_messages.Error(TroubleKind::Refused, directive.At, "$definemacro needs a name on its line");
  }
  const Word name = word;
  macro.Name = name.Text;
  // The body is kept as it stands: no variables, no macros, no includes until it is used.
  Frame& frame = m_frames.back();
  if (frame.Body != nullptr) {
    return m_messages.Error(TroubleKind::Refused, directive.At, "a macro cannot define a macro");
  }
  bool continued = macro.Name == Continued;
  bool head = true;
  if (macro.Name.ends_with(Continued)) {
    macro.Name.remove_suffix(Continued.size());
    continued = true;
  }
  for (;;) {
    const WordScanner before = frame.Scanner;
    if (!frame.Scanner.Next(word)) break;
    if (word.FirstOfLine) {
      if (!continued) {
        frame.Scanner = before;
        break;
      }
      head = false;
    }
    continued = !word.Quoted && word.Text.ends_with(Continued);
    if (continued) word.Text.remove_suffix(Continued.size());
    if (continued && word.Text.empty()) continue;
    if (head) {
      macro.Parameters.push_back(word.Text);
    } else {
      macro.Body.push_back(word);
    }
  }
  if (macro.Name.empty()) {
    return m_messages.Error(TroubleKind::Refused, directive.At, "$definemacro needs a name on its line");
  }
  if (macro.Body.empty()) {
    m_messages.Warning(TroubleKind::Refused, name.At,
                       "the macro " + Shown(macro.Name) +
                           " is empty; every line of a macro but its last, the first too, ends in two backslashes");
  }
  if (!m_macros.try_emplace(core::LowerAscii(macro.Name), std::move(macro)).second) {
    m_messages.Warning(TroubleKind::Refused, name.At,
                       "the macro " + Shown(name.Text) + " is defined already; the first definition stands");
  }
}

void WordStream::UseMacro(const Word& use, const Macro& macro) {
  std::vector<Word> arguments;
  Word word;
  while (arguments.size() < macro.Parameters.size() && ReadOnLine(word)) arguments.push_back(word);
  if (arguments.size() < macro.Parameters.size()) {
    return m_messages.Error(TroubleKind::Refused, use.At,
                            "the macro " + Shown(use.Text) + " takes " + std::to_string(macro.Parameters.size()) +
                                (macro.Parameters.size() == 1 ? " argument, " : " arguments, ") +
                                std::to_string(arguments.size()) + " are given");
  }
  if (m_frames.size() >= m_limits.Depth) {
    return m_messages.Error(TroubleKind::Limit, use.At,
                            "the macro " + Shown(use.Text) + " stands in too many macros; does it use itself?");
  }
  if (!SpendMade(use.At, 1, 0)) return;
  const uint32_t origin = AddOrigin(use.At, macro.Name);
  m_frames.push_back(
      {WordScanner("", use.At.File), use.At.File, origin, &macro, std::move(arguments), 0, use.FirstOfLine});
}

/// The path of the file that `name`, beside the script that includes it, means; nothing, and a name like it, if there
/// is none.
std::optional<std::string> WordStream::FindInclude(const Word& name, const std::string& folder, std::string& nearest) {
  const std::string path = Below(folder, name.Text);
  if (m_look == nullptr) return path;
  for (const std::string_view ending : {"", ".qci", ".qc"}) {
    if (auto found = m_look->FindFile(path + std::string(ending))) return found;
  }
  const std::string last(core::LastComponent(path));
  if (IsAbsolute(name.Text)) {  // from another computer: the file of that name beside the script
    if (auto found = m_look->FindFile(folder + last)) {
      m_messages.Warning(TroubleKind::Missing, name.At,
                         Shown(name.Text) + " is not there; the file of that name beside the script is taken");
      return found;
    }
  }
  NearName near(last);
  const auto parent = m_look->FindFolder(std::string(FolderOf(path)));
  if (parent || FolderOf(path).empty()) {
    for (const std::string& entry : m_look->Names(parent.value_or(""))) near.Offer(entry);
  }
  nearest = near.Best();
  return std::nullopt;
}

void WordStream::Include(const Word& directive) {
  Word name;
  if (!ReadOnLine(name) || name.Text.empty()) {
    return m_messages.Error(TroubleKind::Refused, directive.At, "$include needs the name of a file on its line");
  }
  const std::string folder(FolderOf(m_files.Files[directive.At.File].Path));
  std::string nearest;
  const auto path = FindInclude(name, folder, nearest);
  if (!path) {
    return m_messages.Error(TroubleKind::Missing, name.At,
                            "the script " + Shown(name.Text) + " was not found in " +
                                (folder.empty() ? "the script's folder" : folder) + DidYouMean(nearest));
  }
  OpenInclude(directive, name, *path);
}

void WordStream::OpenInclude(const Word& directive, const Word& name, const std::string& path) {
  for (const Frame& frame : m_frames) {
    if (frame.Body == nullptr && m_files.Files[frame.File].Path == path) {
      return m_messages.Error(
          TroubleKind::Refused, name.At,
          "the script " + Shown(name.Text) + " includes itself; what it would add is left out here");
    }
  }
  if (m_frames.size() >= m_limits.Depth || ++m_includes > m_limits.Includes) {
    return m_messages.Error(TroubleKind::Limit, name.At, "too many scripts include each other");
  }
  const auto [number, isNew] = m_fileNumbers.try_emplace(path, static_cast<uint32_t>(m_files.Files.size()));
  if (isNew) {
    std::string reason;
    auto image = m_read(path, reason);
    if (!image) {
      m_fileNumbers.erase(number);
      return m_messages.Error(TroubleKind::Unreadable, name.At,
                              "the script " + Shown(name.Text) + " cannot be read: " + reason);
    }
    m_files.Files.push_back({path, std::string(name.Text.substr(0, 256)), std::move(*image)});
  }
  const uint32_t file = number->second;
  const std::string_view text = m_files.Text(file);
  m_includedBytes += text.size();
  if (text.size() > m_limits.FileBytes || m_includedBytes > m_limits.IncludedBytes) {
    return m_messages.Error(TroubleKind::Limit, name.At, "the scripts that are included are too large to be read");
  }
  if (IsWideText(text)) {
    return m_messages.Error(TroubleKind::Unknown, name.At,
                            "the script " + Shown(name.Text) + " is UTF-16 text; save it as plain text or UTF-8");
  }
  const uint32_t origin = AddOrigin(directive.At, "");
  m_frames.push_back({WordScanner(text, file), file, origin, nullptr, {}, 0, false});
}

}  // namespace tarnwick::qc
