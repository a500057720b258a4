#include "core/key_values.h"

#include <gmock/gmock.h>

namespace tarnwick::core {
namespace {

using testing::HasSubstr;

/// The keys as one line: key=value for a pair, key(...) for a block, with the condition behind.
std::string Flat(const std::vector<KeyValue>& keys) {
  std::string text;
  for (const KeyValue& key : keys) {
    text += text.empty() ? "" : " ";
    text += key.Key + (key.IsBlock ? "(" + Flat(key.Children) + ")" : "=" + key.Value) + key.Condition;
  }
  return text;
}

TEST(KeyValues, ReadsWordsQuotesBlocksAndConditions) {
  struct Case {
    const char* Text;
    const char* Flat;
  };
  const Case cases[] = {
      {"", ""},
      {"\xEF\xBB\xBF\"a b\" \"c d\"", "a b=c d"},
      {"a b c d", "a=b c=d"},
      {"a{b c}d e", "a(b=c) d=e"},
      {"\"a\"\"b\"\"c\"{\"d\"\"\"}", "a=b c(d=)"},
      {"a b // c d\n// {\ne f//g", "a=b e=f//g"},
      {"a \"// no comment\"", "a=// no comment"},
      {"a \"two\nlines\" b c", "a=two\nlines b=c"},
      {"a \"C:\\new\\\" b c", "a=C:\\new\\ b=c"},
      {"a b [$X360] c [!$X360] { d e [ $WIN32 ] }", "a=b[$X360] c(d=e[ $WIN32 ])[!$X360]"},
      {"$color [1 .5 1] $x \"[2]\"", "$color=[1 .5 1] $x=[2]"},
      {"a b a c A { a d } A { }", "a=b a=c A(a=d) A()"},
  };
  for (const Case& c : cases) {
    const KeyValues keys = ReadKeyValues(c.Text);
    EXPECT_EQ(Flat(keys.Roots), c.Flat) << c.Text;
    EXPECT_EQ(keys.Error, "") << c.Text;
  }
}

TEST(KeyValues, FindsTheFirstOfANameInAnyCase) {
  const KeyValues keys = ReadKeyValues("Other 1\nGameInfo {\n Key first\n key second\n}");
  const KeyValue* block = keys.Find("gameINFO");
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(block->Line, 2);
  EXPECT_EQ(block->Find("KEY")->Value, "first");
  EXPECT_EQ(block->Find("none"), nullptr);
  EXPECT_EQ(keys.Find("Key"), nullptr);
}

TEST(KeyValues, KeepsWhatStandsBeforeAnError) {
  struct Case {
    std::string Text;
    const char* Error;
    const char* Flat;
  };
  const Case cases[] = {
      {"a b\nc", "line 2: the key \"c\" has no value", "a=b c="},
      {"a {\n b c", "line 2: the text ends inside a block", "a(b=c)"},
      {"a b }", "line 1: a } closes no block", "a=b"},
      {"a b\n{ }", "line 2: a { has no key", "a=b"},
      {"a { b }", "the key \"b\" has no value", "a(b=)"},
      {"a b\nc \"d\n e", "line 2: a quoted text has no closing quote", "a=b c="},
      {"a b c [d", "line 1: a [ has no closing ]", "a=b c="},
      {"[$X360] a b", "line 1: a condition stands in a key's place", ""},
  };
  for (const Case& c : cases) {
    const KeyValues keys = ReadKeyValues(c.Text);
    EXPECT_THAT(keys.Error, HasSubstr(c.Error)) << c.Text;
    EXPECT_EQ(Flat(keys.Roots), c.Flat) << c.Text;
  }
}

TEST(KeyValues, BoundsBlocksInsideOneAnother) {
  std::string text;
  for (int i = 0; i < 100'000; ++i) text += "a{";
  EXPECT_THAT(ReadKeyValues(text).Error, HasSubstr("too many blocks"));
  std::string allowed;
  for (int i = 1; i < MostKeyValueLevels; ++i) allowed += "a{";
  EXPECT_EQ(ReadKeyValues(allowed + std::string(MostKeyValueLevels - 1, '}')).Error, "");
}

TEST(KeyValues, ConditionsAreThoseOfAPc) {
  for (const char* holds : {"", "[$WIN32]", "[!$X360]", "[$win32 && !$PS3]", "[$X360 || $WINDOWS]", "[ ! ! $PC ]",
                            "[$X360 && $PS3 || $WIN32]"}) {
    EXPECT_TRUE(ConditionHolds(holds)) << holds;
  }
  for (const char* fails : {"[$X360]", "[!$WIN32]", "[$WIN32 && $X360]", "[$X360||$PS3]", "[]", "[", "x", "[$UNKNOWN]",
                            "[(!$X360)]", "[$WIN32 &&]"}) {
    EXPECT_FALSE(ConditionHolds(fails)) << fails;
  }
}

}  // namespace
}  // namespace tarnwick::core
