#include "core/key_values.h"

#include <algorithm>

#include "core/paths.h"

namespace tarnwick::core {

namespace {

enum class TokenKind { Text, Open, Close, Condition, End, Unended };

struct Token {
  TokenKind Kind;
  std::string_view Text;
  int Line;
};

bool IsBlank(char c) {
  return static_cast<unsigned char>(c) <= ' ';
}

/// Cuts a text into words, quoted texts, braces and conditions.
class Tokens {
 public:
  explicit Tokens(std::string_view text) : m_rest(text) {
    if (m_rest.starts_with("\xEF\xBB\xBF")) m_rest.remove_prefix(3);
  }

  const Token& Peek() {
    if (!m_next) m_next = Scan();
    return *m_next;
  }
  Token Take() {
    const Token token = Peek();
    m_next.reset();
    return token;
  }

 private:
  std::string_view Cut(size_t size) {
    const std::string_view cut = m_rest.substr(0, size);
    m_line += static_cast<int>(std::count(cut.begin(), cut.end(), '\n'));
    m_rest.remove_prefix(cut.size());
    return cut;
  }

  void SkipBlanksAndComments() {
    while (!m_rest.empty()) {
      if (IsBlank(m_rest.front())) {
        Cut(1);
      } else if (m_rest.starts_with("//")) {
        Cut(m_rest.find('\n'));
      } else {
        return;
      }
    }
  }

  Token Scan() {
    SkipBlanksAndComments();
    const int line = m_line;
    if (m_rest.empty()) return {TokenKind::End, {}, line};
    const char first = m_rest.front();
    if (first == '{' || first == '}') return {first == '{' ? TokenKind::Open : TokenKind::Close, Cut(1), line};
    if (first == '"' || first == '[') return Enclosed(first == '"' ? '"' : ']', line);
    size_t size = 0;
    while (size < m_rest.size() && !IsBlank(m_rest[size]) && std::string_view("{}\"").find(m_rest[size]) > 2) ++size;
    return {TokenKind::Text, Cut(size), line};
  }

  Token Enclosed(char closing, int line) {
    const size_t end = m_rest.find(closing, 1);
    if (end == std::string_view::npos) return {TokenKind::Unended, Cut(m_rest.size()), line};
    const std::string_view whole = Cut(end + 1);
    if (closing == '"') return {TokenKind::Text, whole.substr(1, end - 1), line};
    const size_t inside = whole.find_first_not_of(" \t", 1);
    const bool condition = whole[inside] == '$' || whole[inside] == '!';
    return {condition ? TokenKind::Condition : TokenKind::Text, whole, line};
  }

  std::string_view m_rest;
  int m_line = 1;
  std::optional<Token> m_next;
};

class Reader {
 public:
  Reader(std::string_view text, KeyValues& result) : m_tokens(text), m_result(result) {}

  /// Reads keys into `keys` up to the end of the block or, at level 0, of the text. False after an error.
  bool Keys(std::vector<KeyValue>& keys, int level) {
    for (;;) {
      const Token token = m_tokens.Take();
      switch (token.Kind) {
        case TokenKind::Text:
          keys.push_back({.Key = std::string(token.Text), .Line = token.Line});
          if (!Behind(keys.back(), level)) return false;
          break;
        case TokenKind::End:
          return level == 0 || Fail(token.Line, "the text ends inside a block");
        case TokenKind::Close:
          return level > 0 || Fail(token.Line, "a } closes no block");
        case TokenKind::Open:
          return Fail(token.Line, "a { has no key before it");
        case TokenKind::Condition:
          return Fail(token.Line, "a condition stands in a key's place");
        case TokenKind::Unended:
          return Unended(token);
      }
    }
  }

 private:
  bool Behind(KeyValue& key, int level) {
    TakeCondition(key);
    const Token token = m_tokens.Take();
    switch (token.Kind) {
      case TokenKind::Text:
        key.Value = token.Text;
        TakeCondition(key);
        return true;
      case TokenKind::Open:
        key.IsBlock = true;
        if (level + 1 >= MostKeyValueLevels) return Fail(token.Line, "too many blocks inside one another");
        return Keys(key.Children, level + 1);
      case TokenKind::Unended:
        return Unended(token);
      default:
        return Fail(token.Line, "the key \"" + key.Key.substr(0, 64) + "\" has no value");
    }
  }

  void TakeCondition(KeyValue& key) {
    if (m_tokens.Peek().Kind == TokenKind::Condition) key.Condition = m_tokens.Take().Text;
  }

  bool Unended(const Token& token) {
    const bool quote = token.Text.front() == '"';
    return Fail(token.Line, quote ? "a quoted text has no closing quote" : "a [ has no closing ]");
  }

  bool Fail(int line, const std::string& text) {
    m_result.Error = "line " + std::to_string(line) + ": " + text;
    return false;
  }

  Tokens m_tokens;
  KeyValues& m_result;
};

const KeyValue* FindIn(const std::vector<KeyValue>& keys, std::string_view key) {
  const auto found = std::find_if(keys.begin(), keys.end(),
                                  [&](const KeyValue& candidate) { return EqualIgnoringCase(candidate.Key, key); });
  return found == keys.end() ? nullptr : &*found;
}

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

/// One name of a condition, `!` before it.
bool TermHolds(std::string_view term) {
  term = Trimmed(term);
  bool wanted = true;
  for (; term.starts_with('!'); term = Trimmed(term.substr(1))) wanted = !wanted;
  if (!term.starts_with('$')) return false;
  const bool holds =
      EqualIgnoringCase(term, "$WIN32") || EqualIgnoringCase(term, "$WINDOWS") || EqualIgnoringCase(term, "$PC");
  return holds == wanted;
}

/// Whether all (or, with `any`, one) of the parts between `separator` hold.
template <typename Holds>
bool Combined(std::string_view text, std::string_view separator, bool any, Holds holds) {
  for (;;) {
    const size_t end = text.find(separator);
    if (holds(text.substr(0, end)) == any) return any;
    if (end == std::string_view::npos) return !any;
    text.remove_prefix(end + separator.size());
  }
}

}  // namespace

const KeyValue* KeyValue::Find(std::string_view key) const {
  return FindIn(Children, key);
}

const KeyValue* KeyValues::Find(std::string_view key) const {
  return FindIn(Roots, key);
}

KeyValues ReadKeyValues(std::string_view text) {
  KeyValues result;
  Reader(text, result).Keys(result.Roots, 0);
  return result;
}

bool ConditionHolds(std::string_view condition) {
  if (condition.empty()) return true;
  if (condition.size() < 2 || condition.front() != '[' || condition.back() != ']') return false;
  condition = condition.substr(1, condition.size() - 2);
  if (condition.find_first_of("()") != std::string_view::npos) return false;
  return Combined(condition, "||", true, [](std::string_view all) { return Combined(all, "&&", false, TermHolds); });
}

}  // namespace tarnwick::core
