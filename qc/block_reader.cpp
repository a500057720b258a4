// Blocks that hold something else than options.

#include <utility>

#include "qc/script_reader.h"

namespace tarnwick::qc {

using core::TroubleKind;

namespace {

/// Key values nest no deeper than this.
constexpr int DeepestKeys = 64;

}  // namespace

/// Whether the block that `open` opens ends at the next word. A brace that closes it is taken; a block that the
/// script's end or the next statement cuts off is told.
ScriptReader::BlockEnd ScriptReader::EndOfBlock(const Place& open) {
  const Word* word = m_words.Peek();
  if (word == nullptr) {
    m_told.Warning(TroubleKind::Damaged, open, "the block that opens here is never closed");
    return BlockEnd::Lost;
  }
  if (word->Is('}')) {
    m_words.Take();
    return BlockEnd::Closed;
  }
  if (word->FirstOfLine && FindStatement(word->Text) != nullptr) {
    m_told.Error(TroubleKind::Damaged, word->At,
                 "the block that opens in line " + std::to_string(open.Line) + " is not closed ahead of this " +
                     std::string(word->Text));
    return BlockEnd::Lost;
  }
  return BlockEnd::NotYet;
}

/// Passes over a block whose brace was taken.
void ScriptReader::SkipBlock() {
  for (size_t depth = 1; depth > 0;) {
    const Word* word = m_words.Peek();
    if (word == nullptr || (word->FirstOfLine && FindStatement(word->Text) != nullptr)) return;
    if (word->Is('{')) ++depth;
    if (word->Is('}')) --depth;
    m_words.Take();
  }
}

std::vector<KeyValue> ScriptReader::ReadKeys(const Place& open, int depth) {
  std::vector<KeyValue> keys;
  while (EndOfBlock(open) == BlockEnd::NotYet) {
    const Word word = m_words.Take();
    KeyValue key{word.Text, "", word.At, false, {}};
    Place brace = word.At;
    key.IsBlock = word.Is('{');
    if (key.IsBlock) {
      m_told.Warning(TroubleKind::Damaged, word.At, "this block of keys has no name");
      key.Key = "";
    } else if (const Word* value = m_words.Peek(); value != nullptr && value->Is('{')) {
      brace = m_words.Take().At;
      key.IsBlock = true;
    } else if (value == nullptr || value->Is('}')) {
      m_told.Warning(TroubleKind::Damaged, word.At, "the key " + Shown(word.Text) + " has no value");
    } else if (!(value->FirstOfLine && FindStatement(value->Text) != nullptr)) {
      key.Value = m_words.Take().Text;
    }
    if (key.IsBlock && depth >= DeepestKeys) {
      m_told.Error(TroubleKind::Limit, brace, "the keys are nested too deep");
      SkipBlock();
    } else if (key.IsBlock) {
      key.Children = ReadKeys(brace, depth + 1);
    }
    keys.push_back(std::move(key));
  }
  return keys;
}

int32_t ScriptReader::ReadKeyValues(const Place& open) {
  auto keys = ReadKeys(open, 0);
  m_script.KeyValues.push_back(std::move(keys));
  return static_cast<int32_t>(m_script.KeyValues.size() - 1);
}

void ScriptReader::ReadRows(const Place& open, std::vector<std::vector<Argument>>& rows) {
  bool told = false;
  while (EndOfBlock(open) == BlockEnd::NotYet) {
    const Word word = m_words.Take();
    if (word.Is('{')) {
      ReadNames(word.At, rows.emplace_back());
    } else if (!std::exchange(told, true)) {
      m_told.Error(TroubleKind::Damaged, word.At, Shown(word.Text) + " stands outside of the braces of a row");
    }
  }
}

void ScriptReader::ReadNames(const Place& open, std::vector<Argument>& names) {
  while (EndOfBlock(open) == BlockEnd::NotYet) {
    const Word word = m_words.Take();
    if (word.Is('{')) {
      m_told.Error(TroubleKind::Damaged, word.At, "this { stands in a row of names");
      SkipBlock();
    } else {
      names.push_back(AsArgument(word));
    }
  }
}

/// Names with a number each: in braces, or to the end of the line.
void ScriptReader::ReadPairs(const Context& context, bool braces, const Place& open,
                             std::vector<std::vector<Argument>>& rows) {
  for (;;) {
    const Word* next = m_words.Peek();
    if (braces ? EndOfBlock(open) != BlockEnd::NotYet
               : next == nullptr || next->FirstOfLine || next->Is('{') || next->Is('}') || EndsStatement(*next)) {
      return;
    }
    const Word word = m_words.Take();
    if (word.Is('{')) {
      m_told.Error(TroubleKind::Damaged, word.At, "this { stands in a list of names and numbers");
      SkipBlock();
      continue;
    }
    std::vector<Argument> pair = {AsArgument(word)};
    const Word* number = m_words.Peek();
    if (number == nullptr || number->Is('}') || number->Is('{') || EndsStatement(*number)) {
      m_told.Error(TroubleKind::Refused, word.At,
                   Shown(word.Text) + " in " + std::string(context.Name) + " has no number behind it");
      continue;
    }
    TakeArgument('n', pair);
    rows.push_back(std::move(pair));
  }
}

}  // namespace tarnwick::qc
