#include "project/profile_store.h"

#include <gmock/gmock.h>

#include "support/scratch_folder.h"

namespace tarnwick::project {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using tests::ReadText;
using tests::WriteText;

TEST(ProfileStore, WritesItsEntriesSortedByTheBytesOfTheirKeys) {
  tests::ScratchFolder folder;
  ProfileStore store;
  store.SetString("M", "Animation10", "Name", "ten");
  store.SetString("M", "Animation2", "Name", "two");
  store.SetString("M", "Animation1", "Event0", "name", "a b");
  store.SetInt("M", "a", -5);
  store.SetInt("M", "B", "n", 7);
  store.SetInt("M", "B", "c", "n", 8);
  ASSERT_TRUE(store.SaveFile(folder.Path("a.sc")));
  EXPECT_EQ(ReadText(folder.Path("a.sc")),
            "\"M/Animation1/Event0/name\" \"a b\"\n\"M/Animation10/Name\" \"ten\"\n\"M/Animation2/Name\" \"two\"\n"
            "\"M/B/c/n\" \"8\"\n\"M/B/n\" \"7\"\n\"M/a\" \"-5\"\n");
  ProfileStore again;
  ASSERT_TRUE(again.LoadFile(folder.Path("a.sc")));
  EXPECT_EQ(again.Entries(), store.Entries());
  EXPECT_EQ(again.GetInt("M", "a", 0), -5);
  EXPECT_EQ(again.GetInt("M", "B", "c", "n", 0), 8);
  EXPECT_EQ(again.GetInt("M", "Animation2", "Name", 3), 0);
  EXPECT_EQ(again.GetInt("M", "b", 3), 3);
  EXPECT_EQ(again.GetString("M", "Animation1", "Event0", "name", ""), "a b");
  EXPECT_EQ(again.GetString("M", "Animation1", "name", "other"), "other");
}

TEST(ProfileStore, FindsInDamagedLinesWhatTheQuotesTell) {
  ProfileStore store;
  ProfileLoadNotes notes;
  store.LoadText(
      "\xEF\xBB\xBF\"sound\" \"v\"\r\n"
      "\"empty\" \"\"\n"
      "\"twice\" \"1\"\n"
      "\"twice\" \"2\"\n"
      "xkey\" \"value\"\n"       // no quote before the key
      "\"open\" \"to the end\n"  // none behind the value
      "\"keyonly\n"
      "\"cut\" \n"
      "\"\" \"x\"\n"
      "\"\n"
      "\"last\" \"l\"",
      &notes);
  EXPECT_THAT(store.Entries(), ElementsAre(Pair("\" ", ""), Pair("cut", ""), Pair("empty", ""), Pair("key", "value"),
                                           Pair("keyonly", ""), Pair("last", "l"), Pair("open", "to the end"),
                                           Pair("sound", "v"), Pair("twice", "2")));
  EXPECT_THAT(notes.DamagedLines, ElementsAre(5, 6, 7, 8, 9, 10));
  EXPECT_EQ(notes.EmptyLine, 0);
}

TEST(ProfileStore, EndsAtAnEmptyLineAndTellsWhatItHides) {
  ProfileStore store;
  store.SetString("old", "key", "gone");
  ProfileLoadNotes notes;
  store.LoadText("\"a\" \"1\"\r\n\r\n\"b\" \"2\"\n\"c\" \"3\"", &notes);
  EXPECT_THAT(store.Entries(), ElementsAre(Pair("a", "1")));
  EXPECT_EQ(notes.EmptyLine, 2);
  EXPECT_EQ(notes.LinesBehindIt, 2);
  store.LoadText("\"a\" \"1\"\n\n\n", &notes);
  EXPECT_EQ(notes.EmptyLine, 0);
}

TEST(ProfileStore, LosesNothingWhenAFileFails) {
  tests::ScratchFolder folder;
  ProfileStore store;
  std::string reason;
  store.SetString("a", "b", "kept");
  EXPECT_FALSE(store.LoadFile(folder.Path("missing.sc"), &reason));
  EXPECT_FALSE(store.LoadFile(folder.Path(), &reason));
  EXPECT_EQ(store.GetString("a", "b", ""), "kept");
  WriteText(folder.Path("a.sc"), "good");
  for (const char* bad : {"quo\"te", "line\nbreak"}) {
    store.SetString("a", "bad", bad);
    EXPECT_FALSE(store.SaveFile(folder.Path("a.sc"), &reason));
    EXPECT_THAT(reason, HasSubstr("a/bad"));
  }
  store.Clear();
  EXPECT_FALSE(store.SaveFile(folder.Path("missing/a.sc"), &reason));
  EXPECT_EQ(ReadText(folder.Path("a.sc")), "good");
}

}  // namespace
}  // namespace tarnwick::project
