#include "project/model_project.h"

#include <gtest/gtest.h>

namespace tarnwick::project {
namespace {

TEST(ModelProject, FindsTheFirstEntryOfExactlyThatName) {
  SequenceList sequences;
  for (const char* name : {"run", "Walk", "walk", "walk"}) {
    SequenceEntry entry;
    entry.name = name;
    entry.smdFile = std::to_string(sequences.Count());
    sequences.Add(entry);
  }
  ASSERT_NE(sequences.Find("walk"), nullptr);
  EXPECT_EQ(sequences.Find("walk")->smdFile, "2");
  EXPECT_EQ(sequences.Find("RUN"), nullptr);
  sequences.RemoveByName("walk");
  EXPECT_EQ(sequences.Count(), 3);
  EXPECT_EQ(sequences.Find("walk")->smdFile, "3");
  sequences.RemoveByName("missing");
  sequences.RemoveAt(0);
  EXPECT_EQ(sequences.At(0).name, "Walk");

  GibList gibs;
  gibs.Add({"a.mdl", "", ""});
  EXPECT_EQ(gibs.Find("a.mdl"), 0);
  EXPECT_EQ(gibs.Find("A.mdl"), -1);
}

TEST(ModelProject, KeepsTwentyCommandsOfASequenceAndRefusesTheNext) {
  SequenceEntry entry;
  EXPECT_EQ(entry.fps, 30.0);
  for (int i = 0; i < MaximumCommands; ++i) EXPECT_TRUE(entry.AddCommand(std::to_string(i)));
  EXPECT_FALSE(entry.AddCommand("one more"));
  EXPECT_EQ(entry.Commands().back(), "19");
  EXPECT_FALSE(entry.SetEvents(std::vector<EventEntry>(MaximumEvents + 1)));
  EXPECT_TRUE(entry.Events().empty());
  EXPECT_TRUE(entry.SetCommands(std::vector<std::string>{"only"}));
  EXPECT_EQ(entry.Commands().size(), 1u);
  EXPECT_EQ(entry.commands[1], "");
  entry.commandCount = 1000;  // no count leads out of the record
  EXPECT_EQ(entry.Commands().size(), 20u);
}

}  // namespace
}  // namespace tarnwick::project
