#include "smd/smd_reader.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "smd/source_number.h"
#include "support/source_bytes.h"

namespace tarnwick::smd {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

TEST(SmdReader, ReadsWhatPeopleAndToolsWrite) {
  SmdSource source;
  const auto messages = ReadSource(
      "\xEF\xBB\xBFversion 1\r\nnodes // bones\r\n  7 \"left arm\" 3\r\n3 root -1\r\nend\r\n"
      "skeleton\r\ntime 0\r\n3\t0 0 1e1 0 0 0 # up\r\n7 1 2 3 .5 -.5 +1\r\ntime 1\r\n3 0 0 20 0 0 0\r\nend\r\n"
      "triangles\r\nfolder\\my skin.tga\r\n"
      "3 0 0 0 0 0 1 0 0\r\n3 1 0 0 0 0 1 1 0 1 7 0.25\r\n7 0 1 0 0 0 1 0 1 2 3 0.5 7 0.5\r\nEnd // of all\r\n",
      "arm.smd", source);
  EXPECT_THAT(messages, IsEmpty());
  ASSERT_THAT(source.Nodes, SizeIs(2));
  EXPECT_EQ(source.Nodes[0].Name, "left arm");
  EXPECT_EQ(source.Nodes[0].Parent, 1);
  EXPECT_EQ(source.FrameCount, 2);
  EXPECT_EQ(source.PoseOf(0, 1).Position.Z, 10);
  EXPECT_EQ(source.PoseOf(1, 0).Position.Y, 2) << "what a frame leaves out is held";
  EXPECT_THAT(source.Materials, ElementsAre("folder\\my skin.tga"));
  ASSERT_THAT(source.Corners, SizeIs(3));
  EXPECT_EQ(source.Corners[0].LinkCount, 0U);
  EXPECT_EQ(source.Corners[1].LinkCount, 2U) << "what the links leave belongs to the corner's own bone";
  EXPECT_EQ(source.Links[1].Weight, 0.75f);
}

TEST(SmdReader, TellsWhatIsWrongByLine) {
  const struct {
    const char* Text;
    int64_t Line;
    const char* Told;
  } cases[] = {
      {"hello\n", 1, "no SMD file"},
      {"version 1\nnodes\n0 \"a\"\nend\n", 3, "a node needs"},
      {"version 1\nnodes\n0 \"a\" 1\n1 \"b\" 0\nend\n", 5, "hangs from itself"},
      {"version 1\nnodes\n0 \"a\" -1\nend\nskeleton\n0 0 0 0 0 0 0\nend\n", 6, "ahead of the first frame"},
      {"version 1\nnodes\n0 \"a\" -1\nend\ntriangles\nskin\n0 0 0 0 0 0 1 0 0\n0 1 2\nend\n", 8, "a corner"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Text);
    SmdSource source;
    const auto messages = ReadSource(c.Text, "a.smd", source);
    ASSERT_FALSE(messages.empty());
    EXPECT_TRUE(messages[0].IsError);
    EXPECT_EQ(messages[0].Line, c.Line);
    EXPECT_THAT(messages[0].Text, HasSubstr(c.Told));
  }
}

TEST(SmdReader, GoesOnBehindWhatOtherProgramsGetWrong) {
  const std::string corners = "0 0 0 0 0 0 1 0 0\n0 1 0 0 0 0 1 1 0\n0 0 1 0 -1.#IND00 0 1 0 2,5\n";
  SmdSource source;
  const auto messages =
      ReadSource("version 1\nnodes\n0 \"a\" -1\nend\nskeleton\ntime 0\n0 0 0 0 0 0 0\nend\ntriangles\n\n" + corners +
                     "\nskin\n" + corners + "end\n",
                 "a.smd", source);
  std::vector<std::string> told;
  for (const SourceMessage& message : messages) told.push_back(std::to_string(message.Line) + " " + message.Text);
  EXPECT_THAT(told, ElementsAre("11 a triangle has no material and is left out",
                                "18 \"-1.#IND00\" is no finite number and counts as 0",
                                "18 the number \"2,5\" is read up to \",5\""));
  EXPECT_THAT(source.Materials, ElementsAre("skin"));
  ASSERT_THAT(source.Corners, SizeIs(3));
  EXPECT_EQ(source.Corners[2].Normal.X, 0);
  EXPECT_EQ(source.Corners[2].V, 2);
}

TEST(SmdReader, ReadsAMaterialThatIsCalledAsTheEndOfItsBlock) {
  const std::string corners = "0 0 0 0 0 0 1 0 0\n0 1 0 0 0 0 1 1 0\n0 0 1 0 0 0 1 0 .5\n";
  const std::string head = "version 1\nnodes\n0 \"a\" -1\nend\nskeleton\ntime 0\n0 0 0 0 0 0 0\nend\ntriangles\n";
  const std::string shape = "vertexanimation\ntime 0\n0 0 0 0 0 0 1\nend\n";
  for (const char* end : {"end", "END", "end // of all"}) {
    SmdSource source;
    const auto messages = ReadSource(
        head + "end\n" + corners + "skin\n" + corners + "end\n" + corners + "end\n" + corners + end + "\n" + shape,
        "a.smd", source);
    EXPECT_THAT(messages, IsEmpty()) << end;
    EXPECT_THAT(source.Materials, ElementsAre("end", "skin")) << end;
    EXPECT_THAT(source.Corners, SizeIs(12)) << end;
    EXPECT_THAT(source.Shapes, SizeIs(1)) << end;
  }
}

TEST(SmdReader, ReadsNumbersToTheNearestFloat) {
  const char* texts[] = {"0",          "-0.000000", "16777217",         "0.1",   "1e-40", "123456789.123456789",
                         "8388609.5",  "3.4e38",    "0.000030517579",   "5.",    ".5",    "9007199254740993",
                         "1.00000006", "-2.5E+3",   "0.50000002980232", "1e400", "1e-999"};
  for (const char* text : texts) {
    float value = 7;
    const std::string_view whole = text;
    EXPECT_EQ(ParseFloat(whole.data(), whole.data() + whole.size(), value), whole.data() + whole.size()) << text;
    EXPECT_EQ(std::bit_cast<uint32_t>(value), std::bit_cast<uint32_t>(std::strtof(text, nullptr))) << text;
  }
  float value = 7;
  for (const std::string_view none : {"", "-", ".", "x", "e5"}) {
    EXPECT_EQ(ParseFloat(none.data(), none.data() + none.size(), value), none.data()) << none;
  }
}

/// The numbers of a line as most tools write them take a way of their own; it comes to the same floats.
TEST(SmdReader, ReadsSixDecimalsToTheNearestFloatToo) {
  std::vector<std::string> texts = {
      "0.000000",    "-0.000000",   "8388609.500000", "9999999.999999", "0.500000", "16777217.000000",
      "1.000000060", "-1.5e000000", "12.3456",        "123456.7890123", "7.",       "00000.000001"};
  for (uint64_t i = 1; i < 4000; ++i) {
    const uint64_t bits = i * 0x9E3779B97F4A7C15u;
    char text[40];
    std::snprintf(text, sizeof text, "%s%llu.%06llu", (bits & 1) != 0 ? "-" : "",
                  static_cast<unsigned long long>((bits >> 40) % (bits % 7 < 3 ? 10 : 10000000)),
                  static_cast<unsigned long long>((bits >> 8) % 1000000));
    texts.emplace_back(text);
  }
  std::string file = "version 1\nnodes\n0 a -1\nend\nskeleton\n";
  for (size_t i = 0; i + 2 < texts.size(); i += 3) {
    file += "time 0\n0 " + texts[i] + " " + texts[i + 1] + "\t" + texts[i + 2] + " 0 0 " + texts[i] + "\r\n";
  }
  SmdSource source;
  EXPECT_THAT(ReadSource(file, "a.smd", source), IsEmpty());
  for (size_t i = 0; i + 2 < texts.size(); i += 3) {
    const SourcePose& pose = source.PoseOf(static_cast<int32_t>(i / 3), 0);
    const float values[] = {pose.Position.X, pose.Position.Y, pose.Position.Z};
    for (size_t k = 0; k < 3; ++k) {
      EXPECT_EQ(std::bit_cast<uint32_t>(values[k]), std::bit_cast<uint32_t>(std::strtof(texts[i + k].c_str(), nullptr)))
          << texts[i + k];
    }
    EXPECT_EQ(pose.Rotation.Z, pose.Position.X);
  }
}

/// Lines that vectors read must give what reading them number by number gives, and all others must be left to that.
TEST(SmdReader, ReadsLinesTheSameWithVectorsAsWithout) {
  const std::vector<std::string> words = {"0.000000",
                                          "-0.000000",
                                          "1.500000",
                                          "-12.345678",
                                          "9999999.999999",
                                          "-1234567.654321",
                                          "12345678.000001",
                                          "16777217.000000",
                                          "0.0000001",
                                          ".500000",
                                          "-.250000",
                                          "--1.000000",
                                          "+1.000000",
                                          "1-2.000000",
                                          "1.00000",
                                          "1,000000",
                                          "1.0000000",
                                          "nan",
                                          "8388609.500000",
                                          "1e3",
                                          "1.000000\v0",
                                          "1.00000:",
                                          "1.00000/",
                                          "100000000000000.000000",
                                          "-1.000000",
                                          "1.000000\x01",
                                          "-123456789012",
                                          "4.000000 // ",
                                          "# 1.000000",
                                          "1.\xFF\x80\xB0\xB9"
                                          "00000"};
  const std::vector<std::string> wholes = {"0", "1", "7", "12", "123", "4095", "99999", "-1", "1.0", "x", "00001", ""};
  const std::vector<std::string> blanks = {" ", " ", " ", "  ", "\t", " \t ", "\n", "\r\n", ""};
  const std::vector<std::string> ends = {"\n", "\r\n", " \n", "\r", "  // end\n", " 5 6\n"};
  uint64_t seed = 1;
  const auto pick = [&seed](const std::vector<std::string>& from, uint64_t usual) {
    seed = seed * 6364136223846793005u + 1442695040888963407u;
    const uint64_t bits = seed >> 33;
    return from[bits % 16 < 15 ? bits / 16 % usual : bits / 16 % from.size()];
  };
  for (size_t file = 0; file < 40; ++file) {
    std::string text = "version 1\nnodes\n0 a -1\n1 b 0\n12 c 1\nend\nskeleton\n";
    // The first files hold only what vectors read, the others more and more of what they do not.
    const size_t usual = file < 8 ? 6 : words.size() * (file - 7) / 33 + 3, usualBlanks = file < 20 ? 1 : 6;
    const auto numbers = [&](size_t count) {
      for (size_t i = 0; i < count; ++i) text += pick(blanks, usualBlanks) + pick(words, std::min(usual, words.size()));
    };
    for (size_t line = 0; line < 60; ++line) {
      if (line % 20 == 0) text += "time 0\n";
      text += (line % 3 == 0 ? "  " : "") + pick(wholes, 4);
      numbers(6 + (line % 16 == 0 ? 2 : 0));
      text += pick(ends, 2);
    }
    text += "end\ntriangles\n";
    for (size_t line = 0; line < 90; ++line) {
      if (line % 3 == 0) text += line % 9 == 0 ? "skin\n" : "skin two.tga\r\n";
      text += pick(wholes, 4);
      numbers(8);
      if (line % 7 != 0) text += " " + std::to_string(line % 6);
      for (size_t link = 0; line % 7 != 0 && link < line % 6; ++link) {
        text += pick(blanks, 3) + pick(wholes, 4);
        numbers(1);
      }
      text += pick(ends, 3);
    }
    text += "end\nvertexanimation\ntime 1\n12";
    numbers(6);
    // The end of a file must not be read over, wherever it is.
    for (size_t less = 0; less < (file % 16 == 0 ? 140 : 1); ++less, text.pop_back()) {
      ASSERT_EQ(tests::SourceBytes(text, core::HighestVectorLevel()),
                tests::SourceBytes(text, core::VectorLevel::Plain))
          << text;
    }
  }
}

}  // namespace
}  // namespace tarnwick::smd
