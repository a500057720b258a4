#include "qc/expression.h"

#include <algorithm>
#include <optional>
#include <string>

#include "core/number_parse.h"
#include "core/paths.h"

namespace tarnwick::qc {

using core::TroubleKind;
using Kind = ExpressionNode::Kind;

namespace {

constexpr int DeepestNesting = 200;
constexpr std::string_view Signs = "+-*/(),=";

struct Token {
  enum class Type { End, Number, Name, Flex, Sign };
  Type What = Type::End;
  std::string_view Text;
  Place At;
  double Value = 0;

  bool Is(char sign) const { return What == Type::Sign && Text[0] == sign; }
};

/// Cuts the words of a rule into numbers, names and signs.
class Tokens {
 public:
  Tokens(std::span<const Word> words) : m_words(words) { Next(); }
  const Token& Now() const { return m_token; }
  void Next();

 private:
  std::span<const Word> m_words;
  size_t m_word = 0;
  size_t m_at = 0;
  Token m_token;
};

void Tokens::Next() {
  while (m_word < m_words.size() && m_at >= m_words[m_word].Text.size()) {
    if (m_words[m_word].Quoted && m_at == 0) break;  // an empty name
    ++m_word;
    m_at = 0;
  }
  if (m_word == m_words.size()) {
    Place end = m_token.At;
    end.Column += static_cast<uint32_t>(m_token.Text.size());
    m_token = {Token::Type::End, "", end, 0};
    return;
  }
  const Word& word = m_words[m_word];
  m_token = {Token::Type::Name, word.Text.substr(m_at), word.At, 0};
  m_token.At.Column += static_cast<uint32_t>(m_at);
  if (word.Quoted) {
    m_at = 0;
    ++m_word;
    if (m_token.Text.starts_with('%')) {
      m_token.What = Token::Type::Flex;
      m_token.Text.remove_prefix(1);
    }
    return;
  }
  const std::string_view rest = m_token.Text;
  size_t length = 1;
  if (Signs.find(rest[0]) != std::string_view::npos) {
    m_token.What = Token::Type::Sign;
  } else if (rest[0] == '.' || (rest[0] >= '0' && rest[0] <= '9')) {
    m_token.What = Token::Type::Number;
    m_token.Value = core::ParseReal(rest, &length);
    length = std::max<size_t>(length, 1);
  } else {
    const bool flex = rest[0] == '%';
    length = std::min(rest.size(), rest.find_first_of("+-*/(),=%", flex ? 1 : 0));
    if (flex) m_token.What = Token::Type::Flex;
  }
  m_token.Text = rest.substr(0, length);
  m_at += length;
  if (m_token.What == Token::Type::Flex) m_token.Text.remove_prefix(1);
}

class Parser {
 public:
  Parser(Tokens& tokens, std::vector<ExpressionNode>& nodes, Messages& messages)
      : m_tokens(tokens), m_nodes(nodes), m_messages(messages) {}

  /// The number of the node of a sum; nothing once something was wrong.
  std::optional<uint32_t> Sum();

 private:
  std::optional<uint32_t> Product();
  std::optional<uint32_t> Operand();
  std::optional<uint32_t> Function(const Token& name);
  std::optional<uint32_t> Binary(Kind kind, const Token& sign, uint32_t left, std::optional<uint32_t> right);
  bool Expect(char sign, std::string_view what);
  std::optional<uint32_t> Put(ExpressionNode node) {
    m_nodes.push_back(std::move(node));
    return static_cast<uint32_t>(m_nodes.size() - 1);
  }

  Tokens& m_tokens;
  std::vector<ExpressionNode>& m_nodes;
  Messages& m_messages;
  int m_depth = 0;
};

std::optional<uint32_t> Parser::Binary(Kind kind, const Token& sign, uint32_t left, std::optional<uint32_t> right) {
  if (!right) return std::nullopt;
  return Put({kind, sign.At, 0, "", {left, *right}});
}

std::optional<uint32_t> Parser::Sum() {
  auto left = Product();
  while (left && (m_tokens.Now().Is('+') || m_tokens.Now().Is('-'))) {
    const Token sign = m_tokens.Now();
    m_tokens.Next();
    left = Binary(sign.Is('+') ? Kind::Add : Kind::Subtract, sign, *left, Product());
  }
  return left;
}

std::optional<uint32_t> Parser::Product() {
  auto left = Operand();
  while (left && (m_tokens.Now().Is('*') || m_tokens.Now().Is('/'))) {
    const Token sign = m_tokens.Now();
    m_tokens.Next();
    left = Binary(sign.Is('*') ? Kind::Multiply : Kind::Divide, sign, *left, Operand());
  }
  return left;
}

bool Parser::Expect(char sign, std::string_view what) {
  if (m_tokens.Now().Is(sign)) {
    m_tokens.Next();
    return true;
  }
  m_messages.Error(TroubleKind::Damaged, m_tokens.Now().At, "the expression lacks " + std::string(what) + " here");
  return false;
}

std::optional<uint32_t> Parser::Function(const Token& name) {
  struct Known {
    std::string_view Name;
    size_t Operands;
  };
  constexpr Known Functions[] = {{"min", 2}, {"max", 2}};
  const auto known = std::find_if(std::begin(Functions), std::end(Functions), [&](const Known& function) {
    return core::EqualIgnoringCase(function.Name, name.Text);
  });
  if (known == std::end(Functions)) {
    m_messages.Error(TroubleKind::Unknown, name.At,
                     "there is no function " + Shown(name.Text) + " in rules; there are min and max");
    return std::nullopt;
  }
  m_tokens.Next();
  ExpressionNode node{Kind::Function, name.At, 0, known->Name, {}};
  do {
    if (!node.Operands.empty()) m_tokens.Next();
    const auto operand = Sum();
    if (!operand) return std::nullopt;
    node.Operands.push_back(*operand);
  } while (m_tokens.Now().Is(','));
  if (!Expect(')', "a closing parenthesis")) return std::nullopt;
  if (node.Operands.size() != known->Operands) {
    m_messages.Error(TroubleKind::Refused, name.At,
                     std::string(known->Name) + " takes " + std::to_string(known->Operands) + " values, " +
                         std::to_string(node.Operands.size()) + " are given");
    return std::nullopt;
  }
  return Put(std::move(node));
}

std::optional<uint32_t> Parser::Operand() {
  if (++m_depth > DeepestNesting) {
    m_messages.Error(TroubleKind::Limit, m_tokens.Now().At, "the expression is nested too deep");
    return std::nullopt;
  }
  const Token token = m_tokens.Now();
  std::optional<uint32_t> node;
  if (token.What == Token::Type::Number) {
    m_tokens.Next();
    node = Put({Kind::Number, token.At, token.Value, "", {}});
  } else if (token.What == Token::Type::Flex) {
    m_tokens.Next();
    node = Put({Kind::Flex, token.At, 0, token.Text, {}});
  } else if (token.What == Token::Type::Name) {
    m_tokens.Next();
    node = m_tokens.Now().Is('(') ? Function(token) : Put({Kind::Controller, token.At, 0, token.Text, {}});
  } else if (token.Is('(')) {
    m_tokens.Next();
    node = Sum();
    if (node && !Expect(')', "a closing parenthesis")) node.reset();
  } else if (token.Is('-') || token.Is('+')) {
    m_tokens.Next();
    const bool signsNumber = m_tokens.Now().What == Token::Type::Number;
    node = Operand();
    if (node && token.Is('-')) {
      if (signsNumber) {
        m_nodes[*node].Value = -m_nodes[*node].Value;
      } else {
        node = Put({Kind::Negate, token.At, 0, "", {*node}});
      }
    }
  } else {
    m_messages.Error(TroubleKind::Damaged, token.At,
                     token.What == Token::Type::End
                         ? "the expression ends where a number or a name should stand"
                         : "a number or a name should stand here in place of " + Shown(token.Text));
  }
  --m_depth;
  return node;
}

}  // namespace

FlexRule ParseFlexRule(std::span<const Word> words, Messages& messages) {
  FlexRule rule;
  if (words.empty()) return rule;
  rule.At = words.front().At;
  Tokens tokens(words);
  rule.Flex = tokens.Now().Text;
  const bool named = tokens.Now().What == Token::Type::Flex && !rule.Flex.empty();
  tokens.Next();
  if (!named || !tokens.Now().Is('=')) {
    messages.Error(TroubleKind::Damaged, named ? tokens.Now().At : rule.At,
                   "a rule is written %name = expression; " +
                       std::string(named ? "the = should stand here" : "the name is missing"));
    return rule;
  }
  tokens.Next();
  const auto whole = Parser(tokens, rule.Nodes, messages).Sum();
  if (whole && tokens.Now().What != Token::Type::End) {
    messages.Error(TroubleKind::Damaged, tokens.Now().At,
                   "an operator should stand here in the expression, in front of " + Shown(tokens.Now().Text));
    rule.Nodes.clear();
  }
  if (!whole) rule.Nodes.clear();
  return rule;
}

}  // namespace tarnwick::qc
