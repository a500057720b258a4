#include "qc/expression.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "qc/words.h"

namespace tarnwick::qc {
namespace {

using ::testing::HasSubstr;
using Kind = ExpressionNode::Kind;

struct Parsed {
  FlexRule Rule;
  Messages Told;
};

/// `text` outlives the result.
Parsed Parse(std::string_view text) {
  WordScanner scanner(text, 0);
  std::vector<Word> words;
  for (Word word; scanner.Next(word);) words.push_back(word);
  Parsed parsed;
  parsed.Rule = ParseFlexRule(words, parsed.Told);
  return parsed;
}

/// The rule as a stack machine takes it.
std::string Postfix(const FlexRule& rule) {
  std::string text;
  for (const ExpressionNode& node : rule.Nodes) {
    constexpr std::string_view Signs = "...~+-*/";
    if (!text.empty()) text += ' ';
    if (node.What == Kind::Number) {
      text += std::to_string(node.Value).substr(0, 4);
    } else if (node.What == Kind::Flex) {
      text += "%" + std::string(node.Name);
    } else if (node.What == Kind::Controller || node.What == Kind::Function) {
      text += node.Name;
    } else {
      text += Signs[static_cast<size_t>(node.What)];
    }
  }
  return text;
}

TEST(QcExpression, FollowsPrecedenceWithAndWithoutBlanks) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"%a = b", "b"},
      {"%a=b-c-d*2", "b c - d 2.00 * -"},
      {"%a = (b + c) * -(d / .5)", "b c + d 0.50 / ~ *"},
      {"%a= b * -0.5 - -1e0", "b -0.5 * -1.0 -"},
      {"%a = -(2) * --b", "2.00 ~ b ~ ~ *"},
      {"%a =min(b,MAX( %c , 1 ))/2", "b %c 1.00 max min 2.00 /"},
      {"%a = \"odd-name\" + \"%b c\"", "odd-name %b c +"},
  };
  for (const auto& [text, postfix] : cases) {
    const Parsed parsed = Parse(text);
    EXPECT_EQ(Postfix(parsed.Rule), postfix) << text;
    EXPECT_EQ(parsed.Rule.Flex, "a");
    EXPECT_EQ(parsed.Told.ErrorCount(), 0u) << text;
  }
}

TEST(QcExpression, TellsWhereItIsWrong) {
  struct Case {
    std::string_view Text;
    uint32_t Column;
    std::string_view Says;
  };
  const std::string deep = "%a = " + std::string(1000, '(');
  const Case cases[] = {
      {"%a b", 4, "the = should stand here"},
      {"% = b", 1, "the name is missing"},
      {"%a =", 5, "ends where a number or a name"},
      {"%a = (b + c", 12, "lacks a closing parenthesis"},
      {"%a = b c", 8, "an operator should stand here"},
      {"%a = b + * c", 10, "in place of \"*\""},
      {"%a = pow(b, 2)", 6, "there is no function \"pow\""},
      {"%a = min(b)", 6, "min takes 2 values, 1 are given"},
      {deep, 206, "nested too deep"},
  };
  for (const Case& wrong : cases) {
    const Parsed parsed = Parse(wrong.Text);
    ASSERT_EQ(parsed.Told.All().size(), 1u) << wrong.Text;
    EXPECT_THAT(parsed.Told.All()[0].Text, HasSubstr(std::string(wrong.Says)));
    EXPECT_EQ(parsed.Told.All()[0].At.Column, wrong.Column) << wrong.Text;
    EXPECT_TRUE(parsed.Rule.Nodes.empty());
  }
}

}  // namespace
}  // namespace tarnwick::qc
