#include "model/phy_text.h"

#include <algorithm>
#include <cctype>

namespace tarnwick::model {

namespace {

/// A hundred times what the largest known text holds.
constexpr int64_t MostEntries = 65536;
constexpr size_t DeepestBlock = 16;

bool IsBlank(char c) {
  return static_cast<unsigned char>(c) <= ' ';
}

struct Word {
  enum class Kind { End, Text, Open, Close };
  Kind What = Kind::End;
  std::string_view Text = {};
  bool IsUnclosed = false;
};

class Words {
 public:
  explicit Words(std::string_view text) : m_text(text) {}

  Word Next() {
    while (m_place < m_text.size() && IsBlank(m_text[m_place])) ++m_place;
    m_begin = m_place;
    if (m_place == m_text.size()) return {};
    const char first = m_text[m_place];
    if (first == '{' || first == '}') {
      ++m_place;
      return {first == '{' ? Word::Kind::Open : Word::Kind::Close};
    }
    return first == '"' ? Quoted() : Bare();
  }

  /// Where the last word begins.
  size_t Begin() const { return m_begin; }

 private:
  Word Quoted() {
    const size_t end = m_text.find('"', ++m_place);
    const bool isUnclosed = end == std::string_view::npos;
    const std::string_view text = m_text.substr(m_place, isUnclosed ? end : end - m_place);
    m_place = isUnclosed ? m_text.size() : end + 1;
    return {Word::Kind::Text, text, isUnclosed};
  }

  Word Bare() {
    while (m_place < m_text.size() && !IsBlank(m_text[m_place]) &&
           std::string_view("{}\"").find(m_text[m_place]) == std::string_view::npos) {
      ++m_place;
    }
    return {Word::Kind::Text, m_text.substr(m_begin, m_place - m_begin)};
  }

  std::string_view m_text;
  size_t m_place = 0;
  size_t m_begin = 0;
};

class Reader {
 public:
  Reader(std::string_view text, const std::string& file, int64_t offset, core::TroubleSink& troubles)
      : m_words(text), m_file(file), m_offset(offset), m_troubles(troubles) {}

  std::vector<PhyEntry> Read() {
    std::vector<PhyEntry> entries;
    ReadEntries(entries, 0);
    return entries;
  }

 private:
  /// Reads to the block's end, or to that of the text at `depth` 0.
  void ReadEntries(std::vector<PhyEntry>& entries, size_t depth) {
    Word word = m_words.Next();
    while (true) {
      switch (word.What) {
        case Word::Kind::End:
          if (depth > 0) Tell("a block is never closed");
          return;
        case Word::Kind::Close:
          if (depth > 0) return;
          Tell("a brace closes no block");
          word = m_words.Next();
          break;
        case Word::Kind::Open:
          Tell("a block has no name");
          if (!ReadBlock(entries, {}, depth)) return;
          word = m_words.Next();
          break;
        case Word::Kind::Text:
          if (!ReadEntry(entries, word, depth)) return;
          break;
      }
    }
  }

  /// Reads what follows the key `word`, and then the next word into it. False if no more is to be read.
  bool ReadEntry(std::vector<PhyEntry>& entries, Word& word, size_t depth) {
    if (word.IsUnclosed) Tell("a quote is never closed");
    const std::string_view key = word.Text;
    word = m_words.Next();
    if (word.What == Word::Kind::Open) {
      if (!ReadBlock(entries, key, depth)) return false;
    } else if (word.What == Word::Kind::Text) {
      if (word.IsUnclosed) Tell("a quote is never closed");
      if (!Count()) return false;
      entries.push_back({.Key = key, .Value = word.Text});
    } else {
      Tell("a key has no value");
      return true;
    }
    word = m_words.Next();
    return true;
  }

  bool ReadBlock(std::vector<PhyEntry>& entries, std::string_view name, size_t depth) {
    if (depth == DeepestBlock) {
      m_isFull = true;
      Tell("blocks stand too deep inside each other");
      return false;
    }
    if (!Count()) return false;
    entries.push_back({.Key = name, .IsBlock = true});
    ReadEntries(entries.back().Entries, depth + 1);
    return !m_isFull;
  }

  bool Count() {
    if (++m_count > MostEntries && !m_isFull) {
      m_isFull = true;
      Tell("it has more entries than any model needs");
    }
    return !m_isFull;
  }

  /// The first trouble is told; others mostly follow from it.
  void Tell(std::string_view problem) {
    if (m_isTold) return;
    m_isTold = true;
    const int64_t offset = m_offset + static_cast<int64_t>(m_words.Begin());
    m_troubles.Tell(
        {.Level = core::Severity::Warning,
         .Kind = core::TroubleKind::Damaged,
         .File = m_file,
         .Offset = offset,
         .Text = m_file + ": the text at byte " + std::to_string(offset) + " is damaged: " + std::string(problem)});
  }

  Words m_words;
  const std::string& m_file;
  int64_t m_offset;
  core::TroubleSink& m_troubles;
  int64_t m_count = 0;
  bool m_isFull = false;
  bool m_isTold = false;
};

char Small(char c) {
  return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

}  // namespace

std::optional<std::string_view> PhyEntry::Find(std::string_view key) const {
  for (const PhyEntry& entry : Entries) {
    if (!entry.IsBlock && std::equal(key.begin(), key.end(), entry.Key.begin(), entry.Key.end(),
                                     [](char a, char b) { return Small(a) == Small(b); })) {
      return entry.Value;
    }
  }
  return std::nullopt;
}

std::vector<PhyEntry> ReadPhyText(std::string_view text, const std::string& file, int64_t offset,
                                  core::TroubleSink& troubles) {
  return Reader(text.substr(0, text.find('\0')), file, offset, troubles).Read();
}

}  // namespace tarnwick::model
