#include "qc/word_stream.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "qc/read_script.h"
#include "support/scratch_folder.h"

namespace tarnwick::qc {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using tests::ReadPlain;
using tests::ScratchFolder;
using tests::StatementsOf;
using tests::Told;
using tests::WriteText;

TEST(QcWords, CommentsOfEveryKindAreBlanks) {
  const Script script = ReadPlain(
      "\xEF\xBB\xBF// $a\n# $a\n; $a\n/* $a\n $a */ $scale 2;glued\n$opaque//glued\n$root a#b // \"\n"
      "$cdmaterials \"// # ; /* kept\"\t\t/* between */ c/* glued */");
  EXPECT_THAT(Told(script), IsEmpty());
  EXPECT_THAT(StatementsOf(script), ElementsAre("$scale 2", "$opaque", "$root a#b", "$cdmaterials // # ; /* kept|c"));
}

TEST(QcWords, DoubledSlashesPartFoldersWithinAPathAndBeginCommentsElsewhere) {
  const Script script = ReadPlain(
      "$modelname props//a.mdl//name\n$CDMaterials models//x//y models/z//\n$surfaceprop metal//solid\n"
      "$include//nothing\n$renamebone a//b.smd b//\n$root a.smd//b.smd\n$cd x// y\n$root a//b");
  EXPECT_THAT(StatementsOf(script),
              ElementsAre("$modelname props//a.mdl", "$CDMaterials models//x//y|models/z", "$surfaceprop metal",
                          "$renamebone a//b.smd|b", "$root a.smd", "$cd x", "$root a"));
}

TEST(QcWords, LinesEndInAnyWayAndBracesMayBeGlued) {
  const Script script = ReadPlain("$texturegroup s{{a b}{c \"d}\"}}\r$lod 5{nofacial}\r\n\n$opaque\r$bad");
  EXPECT_THAT(StatementsOf(script), ElementsAre("$texturegroup s {a|b} {c|d}}", "$lod 5: nofacial", "$opaque"));
  EXPECT_THAT(Told(script), ElementsAre(HasSubstr("a.qc:5:1: error: the statement \"$bad\" is not known")));
}

TEST(QcWords, AnOpenQuoteEndsWithItsLineAndAnOpenCommentIsTold) {
  const Script script = ReadPlain("$surfaceprop \"me tal\n$root \"\"\n $scale\t2 /* open");
  EXPECT_EQ(script.Statements.size(), 3u);
  EXPECT_EQ(script.Statements[0].Arguments[0].Text, "me tal");
  EXPECT_THAT(Told(script), ElementsAre(HasSubstr("a.qc:1:14: warning: this quote is not closed"),
                                        HasSubstr("a.qc:3:11: warning: the comment that begins here is never closed"),
                                        HasSubstr("the script names no model")));
}

TEST(QcVariables, StandForTheirValuesInBareWordsOnly) {
  const Script script = ReadPlain(
      "$definevariable a \"x y\"\n$definevariable ab 7\n$definevariable a other\n"
      "$cdmaterials $a$ p/$ab$_$ab$/$none$ \"$a$\"\n$definevariable deep $ab$$ab$\n$scale $deep$");
  EXPECT_THAT(StatementsOf(script), ElementsAre("$cdmaterials x y|p/7_7/$none$|$a$", "$scale 77"));
  EXPECT_THAT(Told(script), ElementsAre(HasSubstr("a.qc:3:17: warning: the variable \"a\" has a value already")));
}

TEST(QcMacros, TakeExactlyTheirArguments) {
  const Script script = ReadPlain(
      "$definevariable v 3\n$definemacro parts name file \\\\\n$body $name$_1 \"$file$.smd\" \\\\ // more\n"
      "$root $v$\n$PARTS \"my name\" $v$\n$parts one\n$opaque");
  EXPECT_THAT(StatementsOf(script), ElementsAre("$body my name_1|3.smd", "$root $v$", "$opaque"));
  EXPECT_THAT(Told(script),
              ElementsAre(HasSubstr("a.qc:6:1: error: the macro \"$parts\" takes 2 arguments, 1 are given")));
}

TEST(QcMacros, TellWhereTheyAreUsed) {
  const Script script = ReadPlain("$definemacro m a \\\\\n$scale $a$\n\n$m large");
  EXPECT_THAT(Told(script), ElementsAre("a.qc:2:8: error: \"large\" stands where a number should\n"
                                        "a.qc:4:1: note: in the macro \"m\", used here"));
}

TEST(QcIncludes, AreRelativeToTheirOwnFileInEitherCaseAndSlash) {
  const ScratchFolder folder;
  WriteText(folder.Path("main.qc"), "$pushd nowhere\n$include \"SUB\\Parts.QCI\"\n$popd\n$modelname m.mdl\n");
  WriteText(folder.Path("sub/parts.qci"), "$surfaceprop metal\n$include deeper/more\n$bad 1\n");
  WriteText(folder.Path("sub/deeper/More.qci"), "$opaque");
  WriteText(folder.Path("abs.qc"), "$include \"" + folder.Path("sub/parts.qci") + "\"\n$include \"C:\\x\\main.qc\"");
  ReadOptions options;
  options.FindSources = false;
  const Script script = ReadScript(folder.Path("main.qc"), options);
  EXPECT_THAT(StatementsOf(script), ElementsAre("$pushd nowhere", "$surfaceprop metal", "$opaque", "$popd"));
  EXPECT_THAT(Told(script), ElementsAre("SUB\\Parts.QCI:3:1: error: the statement \"$bad\" is not known\n"
                                        "main.qc:2:1: note: included here"));
  const Script absolute = ReadScript(folder.Path("abs.qc"), options);
  EXPECT_NE(absolute.Last(Command::ModelName), nullptr);
  EXPECT_THAT(Told(absolute), Contains(HasSubstr("abs.qc:2:10: warning: \"C:\\x\\main.qc\" is not there")));
}

TEST(QcIncludes, TellCyclesAndFilesThatAreNotThere) {
  const ScratchFolder folder;
  WriteText(folder.Path("a.qc"), "$include b.qci\n$include partz.qci\n$modelname m\n$include x\n$include");
  WriteText(folder.Path("b.qci"), "$include A.QC\n$opaque");
  WriteText(folder.Path("parts.qci"), "");
  WriteText(folder.Path("x.qci"), std::string_view("\xFF\xFE$\0", 4));
  EXPECT_THAT(Told(ReadScript(folder.Path("a.qc"))),
              ElementsAre(HasSubstr("b.qci:1:10: error: the script \"A.QC\" includes itself"),
                          "a.qc:2:10: error: the script \"partz.qci\" was not found in " + folder.Path() +
                              "/; did you mean \"parts.qci\"?",
                          HasSubstr("a.qc:4:10: error: the script \"x\" is UTF-16 text"),
                          HasSubstr("a.qc:5:1: error: $include needs the name of a file")));
}

}  // namespace
}  // namespace tarnwick::qc
