#include "decompiler/plain/flex_rule_text.h"

#include <gtest/gtest.h>

#include "support/face_description.h"

namespace tarnwick::decompiler::plain {
namespace {

std::optional<std::string> Text(const std::vector<StudioFlexOp>& ops, size_t mostBytes = 1 << 20) {
  int skipped = 0;
  const FlexRuleNames names{{"smile", "jaw"}, {"lip"}};
  return FlexRuleText({ops.data(), 0, static_cast<int64_t>(ops.size())}, names, mostBytes, skipped);
}

TEST(FlexRules, PrintsAnExpressionWithItsBlanks) {
  EXPECT_EQ(
      Text({{FlexOpController, 0}, {FlexOpFlexDesc, 0}, {FlexOpAdd, 0}, tests::Constant(-0.5f), {FlexOpDivide, 0}}),
      "(( smile +  %lip) /  -0.500)");
  EXPECT_EQ(
      Text(
          {{FlexOpController, 0}, {FlexOpController, 1}, tests::Constant(1), {FlexOpSubtract, 0}, {FlexOpMultiply, 0}}),
      "( smile * ( jaw -  1.000))");
  EXPECT_EQ(Text({{FlexOpController, -1}}), " unKnownFlexController!");
  EXPECT_EQ(Text({{FlexOpFlexDesc, 1}}), " unKnownFlexDesc!");
}

TEST(FlexRules, TellsAStackThatDoesNotCloseOut) {
  EXPECT_EQ(Text({}), "");
  EXPECT_EQ(Text({{FlexOpAdd, 0}}), "BADSTACK");
  EXPECT_EQ(Text({{FlexOpController, 0}, {FlexOpAdd, 0}}), " smile");
  EXPECT_EQ(Text({{FlexOpAdd, 0}, {FlexOpController, 0}}), " smile");
  EXPECT_EQ(Text({{FlexOpController, 0}, {FlexOpController, 1}}), "Bad stack");
}

TEST(FlexRules, TakesAnyLengthAndDepthUpToItsBound) {
  std::vector<StudioFlexOp> ops = {{FlexOpController, 0}};
  for (int i = 0; i < 50'000; ++i) ops.insert(ops.end(), {{FlexOpController, 1}, {FlexOpAdd, 0}});
  const auto text = Text(ops, 1 << 24);
  ASSERT_TRUE(text);
  EXPECT_EQ(text->size(), 50'000u * std::string("( +  jaw)").size() + std::string(" smile").size());
  EXPECT_FALSE(Text(ops, 1000));
}

}  // namespace
}  // namespace tarnwick::decompiler::plain
