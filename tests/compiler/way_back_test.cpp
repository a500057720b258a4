// Models that scripts make, taken apart and compiled again.

#include <gmock/gmock.h>

#include <filesystem>

#include "model/animation_records.h"
#include "model/phy_records.h"
#include "model/script_records.h"
#include "round_trip.h"
#include "workshop.h"

namespace tarnwick::compiler {
namespace {

using namespace tests;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(WayBack, ComesBackWithoutTheCollisionModel) {
  Workshop shop;
  WriteText(shop.Folder.Path("parts/roof.smd"), Pyramid(8));
  WriteText(shop.Folder.Path("parts/block.smd"), Pyramid(20));
  // Commas where blanks should be, as they are met.
  const std::string script = std::string(Head) +
                             "$body b roof\n$texturegroup s { { b , a } { late , later } { z , a } }\n"
                             "$sequence idle roof\n$sequence two roof\n";
  const auto with = shop.Compile(script + "$collisionmodel block\n");
  const auto without = shop.Compile(script);
  ASSERT_TRUE(with && without);
  EXPECT_THAT(TextureNames(*with), ElementsAre("a", "b", ",", "late", "later", "z"));
  EXPECT_NE(HeaderOf(*with).HullMaximum.z, HeaderOf(*without).HullMaximum.z);
  for (const CompiledFiles* files : {&*with, &*without}) {
    ScratchFolder folder;
    CompiledFiles alone = *files;
    alone.Phy.clear();
    RoundTrip trip(WriteCompiled(folder, alone, "roof"));
    ASSERT_TRUE(trip.Compiled) << trip.Told;
    EXPECT_EQ(trip.Before["ravelback.qc"].find("$bbox") != std::string::npos, files == &*with);
    EXPECT_EQ(trip.Before["ravelback.qc"], trip.After["ravelback.qc"]);
    EXPECT_EQ(TextureNames(trip.Files), TextureNames(*files));
    EXPECT_NEAR(HeaderOf(trip.Files).HullMinimum.x, HeaderOf(*files).HullMinimum.x, 1e-4);
    EXPECT_NEAR(HeaderOf(trip.Files).HullMaximum.z, HeaderOf(*files).HullMaximum.z, 1e-4);
  }
}

TEST(WayBack, TakesNoTangentForAVertexOfTheBox) {
  Workshop shop;
  // Far smaller than the tangents behind the vertices are long, which point out of it.
  WriteText(shop.Folder.Path("parts/chip.smd"),
            "version 1\nnodes\n0 \"root\" -1\nend\nskeleton\ntime 0\n0 0 0 0 0 0 0\nend\ntriangles\na\n"
            "0 0 0 0 0 0 1 1 0\n0 0 0.5 0 0 0 1 1 1\n0 0.5 0 0 0 0 1 0 0\n"
            "a\n0 0 0 0 0 0 1 1 0\n0 0.5 0 0 0 0 1 0 0\n0 0 0 0.5 0 0 1 0 1\nend\n");
  const auto files = shop.Compile(std::string(Head) + "$body b chip\n$sequence idle chip\n");
  ASSERT_TRUE(files);
  ScratchFolder folder;
  EXPECT_THAT(RoundTrip(WriteCompiled(folder, *files, "chip")).Before["ravelback.qc"],
              testing::Not(HasSubstr("$bbox")));
}

TEST(WayBack, FindsTheBoxOfBonesThatMoveByTurns) {
  Workshop shop;
  const std::string nodes = "version 1\nnodes\n0 \"root\" -1\n1 \"left\" 0\n2 \"right\" 0\nend\nskeleton\n";
  const auto corner = [](int bone, const std::string& place) {
    return std::to_string(bone) + " " + place + " 0 0 1 0 0 1 " + std::to_string(bone) + " 1\n";
  };
  std::string mesh = nodes + "time 0\n0 0 0 0 0 0 0\n1 0 0 0 0 0 0\n2 0 0 0 0 0 0\nend\ntriangles\n";
  for (int bone = 0; bone < 3; ++bone)
    mesh += "a\n" + corner(bone, "0 0 0") + corner(bone, "4 0 0") + corner(bone, "0 4 2");
  WriteText(shop.Folder.Path("parts/wings.smd"), mesh + "end\n");
  const auto frame = [](int time, int left, int right) {
    return "time " + std::to_string(time) + "\n0 0 0 0 0 0 0\n1 " + std::to_string(left) + " 0 0 0 0 0\n2 0 " +
           std::to_string(right) + " 0 0 0 0\n";
  };
  // Each end of the box is reached in another frame. The only hit box is a small one, since those made by themselves
  // would tell the ends too.
  WriteText(shop.Folder.Path("parts/flap.smd"), nodes + frame(0, 0, 0) + frame(1, 20, 0) + frame(2, 40, 0) +
                                                    frame(3, 40, 30) + frame(4, 0, -50) + frame(5, -60, -50) + "end\n");
  const auto files =
      shop.Compile(std::string(Head) + "$body b wings\n$sequence idle flap\n$hbox 0 root -1 -1 -1 1 1 1\n");
  ASSERT_TRUE(files);
  EXPECT_GT(HeaderOf(*files).HullMaximum.y - HeaderOf(*files).HullMinimum.y, 100);
  ScratchFolder folder;
  EXPECT_THAT(RoundTrip(WriteCompiled(folder, *files, "wings")).Before["ravelback.qc"],
              testing::Not(HasSubstr("$bbox")));
}

TEST(WayBack, GivesBackTexturesOfSkinsInTheirOrder) {
  Workshop shop;
  WriteText(shop.Folder.Path("parts/roof.smd"), Pyramid(8));
  const auto files = shop.Compile(std::string(Head) +
                                  "$body one roof\n$sequence idle roof\n$texturegroup s { { a } { b } { snow } }\n"
                                  "$texturegroup t { { b unused } { moss unused } { a unused } }\n");
  ASSERT_TRUE(files) << testing::PrintToString(shop.Texts());
  EXPECT_THAT(TextureNames(*files), ElementsAre("a", "b", "snow", "unused", "moss"));
  ScratchFolder folder;
  RoundTrip trip(WriteCompiled(folder, *files, "roof"));
  ASSERT_TRUE(trip.Compiled) << trip.Told;
  EXPECT_EQ(TextureNames(trip.Files), TextureNames(*files));
  EXPECT_THAT(trip.Different([](const std::string&, const std::string&) { return true; }), testing::IsEmpty());
}

TEST(WayBack, GivesBackSequencesThatStandElsewhereThanTheirAnimations) {
  const auto told = [](const CompiledFiles& files) {
    const model::StudioHeader header = HeaderOf(files);
    std::string text;
    for (int64_t i = 0; i < header.AnimCount; ++i) {
      const int64_t at = header.AnimOffset + i * int64_t{sizeof(model::StudioAnimDesc)};
      text += std::string(files.Mdl.c_str() + at + RecordAt<model::StudioAnimDesc>(files.Mdl, at).NameOffset) + " ";
    }
    for (int64_t i = 0; i < header.SequenceCount; ++i) {
      const int64_t at = header.SequenceOffset + i * int64_t{sizeof(model::StudioSeqDesc)};
      const auto sequence = RecordAt<model::StudioSeqDesc>(files.Mdl, at);
      text += "| " + std::string(files.Mdl.c_str() + at + sequence.LabelOffset);
      for (int32_t k = 0; k < sequence.BlendCount; ++k) {
        text += " " + std::to_string(RecordAt<int16_t>(files.Mdl, at + sequence.BlendOffset + int64_t{2} * k));
      }
    }
    return text;
  };
  const struct {
    const char* Lines;
    const char* Told;
  } cases[] = {
      {"$declaresequence late\n$declaresequence gone\n$sequence early swing\n$sequence late arm\n",
       "@early @late | late 1| gone| early 0"},
      {"$declaresequence grid\n$sequence first swing\n$animation a arm\n$animation b swing\n$sequence second arm\n"
       "$sequence grid { a b @second }\n$sequence last swing\n$animation unused swing\n",
       "@first a b @second @last unused | grid 1 2 3| first 0| second 3| last 4"},
      {"$declaresequence late\n$sequence early swing { node one }\n$sequence late arm { transition one two }\n",
       "@early @late | late 1| early 0"},
      {"$sequence first swing\n$animation a swing\n$sequence grid { a @first }\n$sequence last arm\n",
       "@first a @last | first 0| grid 1 0| last 2"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Lines);
    Workshop shop;
    const auto files = shop.Compile(std::string(Head) + "$body one arm\n" + c.Lines);
    ASSERT_TRUE(files) << testing::PrintToString(shop.Texts());
    EXPECT_EQ(told(*files), c.Told);
    ScratchFolder folder;
    RoundTrip trip(WriteCompiled(folder, *files, "arm"));
    ASSERT_TRUE(trip.Compiled) << trip.Told;
    EXPECT_EQ(told(trip.Files), c.Told);
  }
}

TEST(WayBack, GivesBackTexturesThatMeshesCannotName) {
  Workshop shop;
  WriteText(shop.Folder.Path("parts/roof.smd"), Pyramid(8));
  WriteText(shop.Folder.Path("parts/arm.smd"), ArmMesh);
  // Two bodies of one file name, with the same triangles but for what one of them is called in its file.
  std::string other = Pyramid(8);
  other.replace(other.find("\na\n"), 3, "\nc\n");
  other.replace(other.find("\na\n"), 3, "\nc\n");
  std::filesystem::create_directory(shop.Folder.Path("parts/two"));
  WriteText(shop.Folder.Path("parts/two/roof.smd"), other);
  const auto files = shop.Compile(std::string(Head) +
                                  "$body one roof\n$body two \"two/roof\"\n$body three arm\n$sequence idle roof\n"
                                  "$texturegroup s { { a c } { red.tga.tga blue } }\n$renamematerial c a\n"
                                  "$renamematerial skin \"//walls/brick.tga\"\n$renamematerial blue RED\n");
  ASSERT_TRUE(files) << testing::PrintToString(shop.Texts());
  EXPECT_THAT(TextureNames(*files), ElementsAre("a", "b", "a", "//walls/brick", "red.tga", "RED"));
  ScratchFolder folder;
  RoundTrip trip(WriteCompiled(folder, *files, "roof"));
  ASSERT_TRUE(trip.Compiled) << trip.Told;
  EXPECT_EQ(TextureNames(trip.Files), TextureNames(*files));
  EXPECT_THAT(trip.Before["ravelback.qc"], HasSubstr("$renamematerial \"material3\" \"//walls/brick\"\n"));
  EXPECT_THAT(trip.Different([](const std::string&, const std::string&) { return true; }), testing::IsEmpty());
  EXPECT_EQ(HeaderOf(trip.Files).SkinFamilyCount, 2);
}

TEST(WayBack, GivesBackWaysBetweenNodesAndChainsOfFewerBones) {
  const auto told = [](const CompiledFiles& files) {
    const model::StudioHeader header = HeaderOf(files);
    std::string text;
    for (int32_t i = 0; i < header.NodeCount * header.NodeCount; ++i) {
      text += std::to_string(RecordAt<uint8_t>(files.Mdl, int64_t{header.NodeOffset} + i)) + " ";
    }
    for (int64_t i = 0; i < header.IkChainCount; ++i) {
      const auto chain =
          RecordAt<model::StudioIkChain>(files.Mdl, header.IkChainOffset + i * int64_t{sizeof(model::StudioIkChain)});
      text += "| " + std::to_string(chain.LinkCount) + " links ";
    }
    return text + "| " + std::to_string(header.IkLockCount) + " locks";
  };
  const std::string sequences =
      "$sequence one arm transition a b\n$sequence two arm rtransition b c\n$sequence three arm transition c d\n"
      "$ikchain hand arm\n$ikchain body root\n$ikautoplaylock body 1 0.5\n$sequence four swing ikrule hand release\n";
  for (const auto& [statement, expected] :
       {std::pair{"", "0 2 0 0 0 0 3 0 0 2 0 4 0 0 0 0 | 2 links | 1 links | 1 locks"},
        std::pair{"$calctransitions\n", "0 2 2 2 0 0 3 3 0 2 0 4 0 0 0 0 | 2 links | 1 links | 1 locks"}}) {
    SCOPED_TRACE(statement);
    Workshop shop;
    const auto files = shop.Compile(std::string(Head) + "$body b arm\n" + statement + sequences);
    ASSERT_TRUE(files) << testing::PrintToString(shop.Texts());
    EXPECT_EQ(told(*files), expected);
    ScratchFolder folder;
    RoundTrip trip(WriteCompiled(folder, *files, "a"));
    ASSERT_TRUE(trip.Compiled) << trip.Told;
    EXPECT_EQ(told(trip.Files), expected);
  }
}

TEST(WayBack, EndsAWalkInSectionsWhereItBegan) {
  Workshop shop;
  // The section of the last frame has half-floats, of which one here is far from the place.
  std::string walk = "version 1\nnodes\n0 \"root\" -1\n1 \"arm\" 0\nend\nskeleton\n";
  for (int frame = 0; frame <= 20; ++frame) {
    const double sway = frame % 20 * 0.013;
    walk += "time " + std::to_string(frame) + "\n0 " + std::to_string(40.017 + sway) + " " +
            std::to_string(0.25 * frame - sway) + " 33.009 0 0 0\n1 4 0 0 0 0 0\n";
  }
  WriteText(shop.Folder.Path("parts/walk.smd"), walk + "end\n");
  const auto files = shop.Compile(std::string(Head) +
                                  "$sectionframes 10 20\n$body b arm\n$sequence walk walk { walkframe 20 LX LY LZ }\n");
  ASSERT_TRUE(files);
  const auto travel = [](const CompiledFiles& compiled) {
    const int64_t at = HeaderOf(compiled).AnimOffset;
    const auto animation = RecordAt<model::StudioAnimDesc>(compiled.Mdl, at);
    return RecordAt<model::StudioMovement>(compiled.Mdl, at + animation.MovementOffset);
  };
  ScratchFolder folder;
  RoundTrip trip(WriteCompiled(folder, *files, "a"));
  ASSERT_TRUE(trip.Compiled) << trip.Told;
  const model::Vec3 before = travel(*files).Position, after = travel(trip.Files).Position;
  EXPECT_NEAR(after.x, before.x, 1e-5);
  EXPECT_NEAR(after.y, before.y, 1e-5);
  EXPECT_NEAR(after.z, before.z, 1e-5);
}

TEST(WayBack, KeepsABoxThatACompileWouldMakeLarger) {
  Workshop shop;
  WriteText(shop.Folder.Path("parts/block.smd"), Pyramid(6));
  const auto files = shop.Compile(std::string(Head) +
                                  "$bboxonlyverts\n$body b arm\n$sequence idle arm\n"
                                  "$hbox 0 root -50 -50 -50 50 50 50\n$collisionmodel block\n");
  ASSERT_TRUE(files);
  EXPECT_LT(HeaderOf(*files).HullMaximum.z, 10);
  ScratchFolder folder;
  RoundTrip trip(WriteCompiled(folder, *files, "a"));
  ASSERT_TRUE(trip.Compiled) << trip.Told;
  EXPECT_EQ(HeaderOf(trip.Files).HullMaximum.z, HeaderOf(*files).HullMaximum.z);
}

TEST(WayBack, KeepsTheMassCentreThatAScriptGives) {
  for (const char* kind : {"", "$staticprop\n"}) {
    SCOPED_TRACE(kind);
    Workshop shop;
    WriteText(shop.Folder.Path("parts/block.smd"), Pyramid(6));
    const auto files = shop.Compile(std::string(Head) + kind +
                                    "$body b block\n$sequence idle block\n"
                                    "$collisionmodel block { $mass 5 $masscenter 1 -2.5 3 }\n");
    ASSERT_TRUE(files);
    ScratchFolder folder;
    RoundTrip trip(WriteCompiled(folder, *files, "a"));
    ASSERT_TRUE(trip.Compiled) << trip.Told;
    EXPECT_THAT(trip.Before["ravelback.qc"], HasSubstr("$masscenter "));
    EXPECT_EQ(trip.Before["ravelback.qc"], trip.After["ravelback.qc"]);
    constexpr int64_t Centre = sizeof(model::PhyHeader) + sizeof(model::PhySolidHeader);
    const auto before = RecordAt<model::Vec3>(files->Phy, Centre),
               after = RecordAt<model::Vec3>(trip.Files.Phy, Centre);
    EXPECT_NEAR(after.x, before.x, 1e-6);
    EXPECT_NEAR(after.y, before.y, 1e-6);
    EXPECT_NEAR(after.z, before.z, 1e-6);
  }
}

/// How a model's animations are stored: the sizes of its blocks, then for each animation the block of each section.
std::string StorageOf(const CompiledFiles& files) {
  const model::StudioHeader header = HeaderOf(files);
  std::string text;
  for (int64_t i = 1; i < header.AnimBlockCount; ++i) {
    const auto block = RecordAt<model::StudioAnimBlock>(
        files.Mdl, header.AnimBlockOffset + i * int64_t{sizeof(model::StudioAnimBlock)});
    text += std::to_string(block.End - block.Start) + " ";
  }
  for (int64_t i = 0; i < header.AnimCount; ++i) {
    const int64_t at = header.AnimOffset + i * int64_t{sizeof(model::StudioAnimDesc)};
    const auto animation = RecordAt<model::StudioAnimDesc>(files.Mdl, at);
    text += "| " + std::to_string(animation.Block) + ":";
    for (int64_t k = 0; animation.SectionFrames > 0 && k < animation.FrameCount / animation.SectionFrames + 2; ++k) {
      text += " " + std::to_string(
                        RecordAt<model::StudioAnimSection>(
                            files.Mdl, at + animation.SectionOffset + k * int64_t{sizeof(model::StudioAnimSection)})
                            .Block);
    }
  }
  return text;
}

TEST(WayBack, FillsTheBlocksOfAnimationsAsBefore) {
  const struct {
    const char* Statement;
    const char* Animations;
    const char* Written;
  } cases[] = {
      {"$animblocksize 4 nostall", "", "$animblocksize 4 nostall\n"},
      {"$animblocksize 8", "noanimblock", "$animblocksize 8\n"},
      // Each section is larger than a block.
      {"$animblocksize 1", "", "$animblocksize 1\n"},
      {"$animblocksize 5", "noanimblock", "$animblocksize 5\n"},
      // All of them fit in one.
      {"$animblocksize 1000", "", "$animblocksize 16\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Statement);
    Workshop shop;
    WriteText(shop.Folder.Path("parts/long.smd"), LongSwing(900));
    WriteText(shop.Folder.Path("parts/short.smd"), LongSwing(100));
    const auto files =
        shop.Compile(std::string(Head) + "$bonemerge arm\n$body a arm\n" + c.Statement + "\n$sequence idle swing { " +
                     c.Animations + " }\n$animation a long\n$animation b long { " + c.Animations +
                     " }\n$animation c short\n$sequence s { a b c }\n$sequence d short { subtract a 0 delta }\n");
    ASSERT_TRUE(files) << testing::PrintToString(shop.Texts());
    ASSERT_FALSE(files->Ani.empty());
    ScratchFolder folder;
    RoundTrip trip(WriteCompiled(folder, *files, "a"));
    ASSERT_TRUE(trip.Compiled) << trip.Told;
    EXPECT_THAT(trip.Before["ravelback.qc"], HasSubstr(c.Written));
    EXPECT_EQ(StorageOf(trip.Files), StorageOf(*files));
  }
}

}  // namespace
}  // namespace tarnwick::compiler
