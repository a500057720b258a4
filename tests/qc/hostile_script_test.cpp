#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "qc/read_script.h"
#include "support/scratch_folder.h"

namespace tarnwick::qc {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using tests::ReadPlain;
using tests::ScratchFolder;
using tests::Told;
using tests::WriteText;

std::string Repeat(std::string_view text, size_t count) {
  std::string result;
  for (size_t i = 0; i < count; ++i) result += text;
  return result;
}

TEST(HostileScripts, MacroBombsEndWithOneMessage) {
  std::string bomb = "$definemacro m0 \\\\\n$root a\n";
  for (int i = 1; i < 28; ++i) {
    const std::string inner = "$m" + std::to_string(i - 1);
    bomb += "$definemacro m" + std::to_string(i) + " \\\\\n" + inner + " \\\\\n" + inner + "\n";
  }
  EXPECT_THAT(Told(ReadPlain(bomb + "$m27\n")),
              Contains(HasSubstr("the macros and variables of this script make too many words")));
  EXPECT_THAT(Told(ReadPlain("$definemacro m \\\\\n$m\n$m\n")), Contains(HasSubstr("does it use itself?")));
  EXPECT_THAT(Told(ReadPlain("$definemacro m \\\\\n$m \\\\\n$m \\\\\n$m\n$m\n")), SizeIs(Messages::Most + 1));

  std::string doubling = "$definevariable v0 0123456789\n";
  for (int i = 1; i < 60; ++i) {
    const std::string inner = "$v" + std::to_string(i - 1) + "$";
    doubling += "$definevariable v" + std::to_string(i) + " " + inner + inner + "\n";
  }
  EXPECT_THAT(Told(ReadPlain(doubling)), Contains(HasSubstr("make too many words")));
}

TEST(HostileScripts, IncludesInSquareAndInDepthEnd) {
  const ScratchFolder folder;
  for (int i = 0; i < 40; ++i) {
    const std::string next = "$include s" + std::to_string(i + 1) + ".qci\n";
    WriteText(folder.Path("s" + std::to_string(i) + ".qci"), next + next);
  }
  WriteText(folder.Path("s40.qci"), "$root a\n");
  EXPECT_THAT(Told(ReadScript(folder.Path("s0.qci"))), Contains(HasSubstr("too many scripts include each other")));
  const Script shallow = ReadScript(folder.Path("s36.qci"));
  EXPECT_THAT(Told(shallow), SizeIs(1));  // no $modelname; all else is read
  EXPECT_EQ(shallow.Statements.size(), 16u);
}

TEST(HostileScripts, LongWordsDeepBracesAndRubbishCostNoMoreThanTheirLength) {
  const std::string word(8 << 20, 'x');
  const Script longWords = ReadPlain("$" + word + "\n$surfaceprop " + word + "\n$bbox " + word);
  for (const Message& message : longWords.Told.All()) {
    EXPECT_LT(message.Text.size(), 500u);
  }
  EXPECT_THAT(Told(ReadPlain("$keyvalues " + Repeat("{ a ", 300'000))), Contains(HasSubstr("nested too deep")));
  EXPECT_THAT(Told(ReadPlain("$sequence s " + Repeat("{", 300'000))), Contains(HasSubstr("opens no block")));
  EXPECT_THAT(Told(ReadPlain("$model a b { %a = " + Repeat("(-", 300'000))), Contains(HasSubstr("nested too deep")));
  EXPECT_THAT(Told(ReadPlain(Repeat("$nonsense\n", 100'000))), SizeIs(Messages::Most + 1));
  EXPECT_THAT(Told(ReadPlain(Repeat("$lod 5 { nonsense\n", 100'000))), SizeIs(Messages::Most + 1));
  EXPECT_THAT(Told(ReadPlain(Repeat(std::string_view("$scale 1\0\0 \n", 12), 50'000))), IsEmpty());
}

TEST(HostileScripts, NamesThatNoFileCanHaveAreNotFound) {
  const ScratchFolder folder;
  std::string text = "$modelname a\n$body a \"" + Repeat("../x/", 5000) + "\"\n$body b \"" + std::string(10'000, 'n') +
                     "\"\n$body c \"nul";
  text += '\0';
  text += "name\"\n$body d \"/dev/zero\"\n$include \"/dev/zero\"\n$include \"" + folder.Path() + "\"";
  WriteText(folder.Path("a.qc"), text);
  const auto told = Told(ReadScript(folder.Path("a.qc")));
  EXPECT_THAT(told, Contains(HasSubstr("the mesh \"nul?name\" was not found")));
#ifndef _WIN32
  EXPECT_THAT(told, Contains(HasSubstr("\"/dev/zero\" cannot be read: it is not a regular file")));
#endif
}

}  // namespace
}  // namespace tarnwick::qc
