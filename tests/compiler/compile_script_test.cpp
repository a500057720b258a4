// Scripts as people write them: what takes effect, and what is told.

#include <gmock/gmock.h>

#include <cmath>

#include "model/animation_records.h"
#include "model/script_records.h"
#include "workshop.h"

namespace tarnwick::compiler {
namespace {

using namespace tests;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

std::string BoneName(const CompiledFiles& files, int number) {
  const int64_t at = HeaderOf(files).BoneOffset + int64_t{number} * static_cast<int64_t>(sizeof(model::StudioBone));
  return files.Mdl.c_str() + at + RecordAt<model::StudioBone>(files.Mdl, at).NameOffset;
}

TEST(CompileScript, PutsAnimationsIntoBlocksOfAFileOfTheirOwn) {
  Workshop shop;
  WriteText(shop.Folder.Path("parts/long.smd"), LongSwing(290));
  const std::string script =
      std::string(Head) +
      "$bonemerge arm\n$body a arm\n$ikchain hand arm\n$animation here swing noanimblock noautoik\n"
      "$animation a long\n$animation b long\n$animation c long\n$sequence s { here a b c }\n"
      "$sequence t swing ikrule hand release\n";
  const auto whole = shop.Compile(script);
  const auto cut = shop.Compile("$animblocksize 4 nostall\n" + script);
  ASSERT_TRUE(whole && cut);
  EXPECT_EQ(whole->Ani, "");
  const model::StudioHeader header = HeaderOf(*cut);
  EXPECT_STREQ(cut->Mdl.c_str() + header.AnimBlockNameOffset, "models/a.ani");
  ASSERT_GT(+header.AnimBlockCount, 2);
  EXPECT_EQ(RecordAt<uint32_t>(cut->Ani, 8), RecordAt<uint32_t>(cut->Mdl, 8)) << "the checksums";
  const auto block = [&](int32_t i) {
    return RecordAt<model::StudioAnimBlock>(
        cut->Mdl, header.AnimBlockOffset + i * static_cast<int64_t>(sizeof(model::StudioAnimBlock)));
  };
  for (int32_t i = 1; i < header.AnimBlockCount; ++i) {
    EXPECT_LE(block(i).End - block(i).Start, 4096);
    EXPECT_EQ(block(i).Start % 16, 0);
  }
  EXPECT_EQ(+block(header.AnimBlockCount - 1).End, static_cast<int32_t>(cut->Ani.size()));
  const auto animation = [&](int32_t i) {
    return RecordAt<model::StudioAnimDesc>(cut->Mdl,
                                           header.AnimOffset + i * static_cast<int64_t>(sizeof(model::StudioAnimDesc)));
  };
  EXPECT_EQ(+animation(0).Block, 0);
  const auto section = [&](int32_t i) {
    return RecordAt<model::StudioAnimSection>(
        cut->Mdl, header.AnimOffset + static_cast<int64_t>(sizeof(model::StudioAnimDesc)) + animation(1).SectionOffset +
                      i * static_cast<int64_t>(sizeof(model::StudioAnimSection)));
  };
  EXPECT_EQ(+animation(1).Block, 0) << "nostall";
  EXPECT_EQ(+section(0).Block, 0) << "nostall";
  EXPECT_EQ(+section(1).Block, 1);
  ASSERT_GT(+animation(4).Block, 0);
  ASSERT_EQ(+animation(4).IkRuleCount, 1);
  EXPECT_EQ(+animation(4).IkRuleOffset, 0);
  const auto rule = RecordAt<model::StudioIkRule>(
      cut->Ani, int64_t{block(animation(4).Block).Start} + animation(4).BlockIkRuleOffset);
  EXPECT_EQ(+rule.Type, model::IkRuleRelease);
  EXPECT_EQ(+rule.End, 1);
}

TEST(CompileScript, TellsWhatItDoesNotBuild) {
  const struct {
    const char* Line;
    const char* Told;
  } cases[] = {
      {"$root arm", "\"arm\" has a parent"},
      {"$root elbow", "no bone is called \"elbow\""},
      {"$bonesaveframe arm position", "$bonesaveframe has no effect"},
      {"$ikchain c arm knee 0 1 0 height 3", "\"height\" of an $ikchain"},
      {"$scale 0", "a scale of 0 leaves nothing"},
      {"$modelname b.mdl", "a second $modelname"},
      {"$hbox 0 arm 1 1 1 0 0 0", "inside out"},
      {"$weightlist w { thumb 1 }", "no bone is called \"thumb\""},
      {"$attachment a arm 0 0 0\n$attachment A root 0 0 0", "a second $attachment is called \"A\""},
      {"$poseparameter p 0 1\n$PoseParameter p 0 2", "a second $PoseParameter is called \"p\""},
      {"$mystery\n{\n  $body c nosuch\n}", "\"$mystery\" is not known"},
      {"$mystery { \n  $deeper 1\n$sequence s swing fps 0", "stands still"},
      {"$sequence s swing fps 0", "stands still"},
      {"$sequence s swing autoik", "\"autoik\" is known"},
      {"$animation n swing\n$sequence s n frames 0 1", "\"frames\" belongs to an $animation"},
      {"$lod 5 { replacematerial velvet silk }", "no mesh wears the material \"velvet\""},
      {"$lod 5 { removemodel hand }", "no body has the mesh \"hand\""},
      {"$ikchain c arm\n$sequence s swing { ikrule c release usesequence }", "\"usesequence\" is known"},
      {"$ikchain c arm\n$sequence s swing { ikrule c range 0 1 1 2 }", "has no kind"},
      {"$ikchain c arm\n$sequence s swing { ikrule c touch armm }", "no bone is called \"armm\"; the rule holds"},
      {"$ikchain c arm\n$sequence s swing { ikfixup c touch arm }", "\"ikfixup\" is known"},
      {"$ikchain c armm", "no bone is called \"armm\"; the chain"},
      {"$animation n swing\n$ikchain c arm\n$sequence s n { ikfixup c release }",
       "\"ikfixup\" belongs to an $animation"},
      {"$texturegroup s { { skin } { a } { b c d } }", "skin 2 names 3 materials, the first row 1"},
      {"$bodygroup g { }", "the body group \"g\" offers nothing"},
      {"$animation n swing\n$sequence s { n n blendwidth 3 }", "fewer than the blendwidth of 3"},
      {"$collisionjoints arm { $rootbone armm }", "$rootbone names the bone \"armm\""},
      {"$jigglebone arm { }", "a jiggle bone needs a group"},
      {"$appendblankbodygroup bb", "no body group above is called \"bb\"; did you mean \"b\"?"},
      {"$lod 5 { bonetreecollapse armm }", "no bone is called \"armm\"; did you mean \"arm\"?"},
      {"$lod 5 { replacebone arm rot }", "no bone is called \"rot\""},
      {"$jigglebone arm { is_flexible { length 5 stiffness 9 } }", "stiffness is no property of is_flexible"},
      {"$jigglebone arm { has_base_spring { tip_mass 9 } }", "tip_mass is no property of has_base_spring"},
      {"$jigglebone arm { is_flexible { } is_rigid { } }", "rigid or flexible, not both"},
      {"$jigglebone arm { is_rigid { } }\n$jigglebone ARM { is_rigid { } }", "a second $jigglebone for \"ARM\""},
      {"$jigglebone armm { is_rigid { } }", "no bone \"armm\" that could jiggle; did you mean \"arm\"?"},
      {"$jigglebone unusde { is_rigid { } }", "no bone \"unusde\" that could jiggle"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Line);
    Workshop shop;
    EXPECT_TRUE(shop.Compile(std::string(Head) + "$body b arm\n$sequence idle swing\n" + c.Line + "\n"));
    EXPECT_THAT(shop.Texts(), Contains(HasSubstr(c.Told)));
  }
}

TEST(CompileScript, TellsOfAnUnknownNameOnce) {
  Workshop shop;
  EXPECT_TRUE(
      shop.Compile(std::string(Head) +
                   "$body b arm\n$sequence idle swing weightlist legs addlayer wave\n$lod 5 { removemodel hand }\n"
                   "$animation is swing\n$sequence two swing weightlist hips addlayer is\n"));
  EXPECT_THAT(shop.Texts(),
              testing::UnorderedElementsAre(HasSubstr("\"legs\""), HasSubstr("\"wave\""), HasSubstr("\"hand\""),
                                            HasSubstr("\"hips\""), HasSubstr("no sequence is called \"is\"")));
}

TEST(CompileScript, PlacesBonesAndAnimationsWithTheirMeshes) {
  // (8, 0, 0) and (0, 8, 4) of the mesh; a source's X is the model's Y.
  const struct {
    const char* Line;
    model::Vec3 Least, Most, Root;
  } cases[] = {
      {"", {-8, 0, 0}, {0, 8, 4}, {0, 0, 0}},
      {"$upaxis y", {0, 0, 0}, {4, 8, 8}, {0, 0, 0}},
      {"$origin 1 2 3", {-10, 1, 3}, {-2, 9, 7}, {1, 2, 3}},
      {"$autocenter", {-4, -4, -2}, {4, 4, 2}, {-4, -4, -2}},
      {"$scale 2\n$origin 1 2 3\n$autocenter", {-8, -8, -4}, {8, 8, 4}, {-8, -8, -4}},
      {"$scale 2\n$origin 1 2 3 90", {-18, -15, 3}, {-2, 1, 11}, {1, 2, 3}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Line);
    Workshop shop;
    const auto files = shop.Compile(std::string(Head) + c.Line + "\n$body b arm\n$sequence idle arm\n");
    ASSERT_TRUE(files);
    const model::StudioHeader header = HeaderOf(*files);
    const auto near = [](const model::Vec3& a, const model::Vec3& b) {
      return std::abs(a.x - b.x) < 1e-4f && std::abs(a.y - b.y) < 1e-4f && std::abs(a.z - b.z) < 1e-4f;
    };
    const model::Vec3 least = header.HullMinimum, most = header.HullMaximum;
    EXPECT_TRUE(near(least, c.Least)) << least.x << " " << least.y << " " << least.z;
    EXPECT_TRUE(near(most, c.Most)) << most.x << " " << most.y << " " << most.z;
    EXPECT_TRUE(near(RecordAt<model::StudioBone>(files->Mdl, header.BoneOffset).Position, c.Root));
  }
}

TEST(CompileScript, MovesAttachmentsOfTheWholeModelWithIt) {
  Workshop turned;
  const auto moved = turned.Compile(std::string(Head) +
                                    "$origin 10 0 0 90\n$staticprop\n$attachment top any 0 8 4\n$body b arm\n"
                                    "$sequence idle arm\n");
  ASSERT_TRUE(moved);
  const auto beside = RecordAt<model::StudioAttachment>(moved->Mdl, HeaderOf(*moved).AttachmentOffset);
  EXPECT_NEAR(beside.Placement.m[3], 0, 1e-4);  // (0, 8) turned by a quarter, moved by (10, 0), turned once more
  EXPECT_NEAR(beside.Placement.m[7], 2, 1e-4);
  EXPECT_NEAR(beside.Placement.m[11], 4, 1e-4);

  Workshop shop;
  const auto files = shop.Compile(std::string(Head) +
                                  "$autocenter\n$staticprop\n$attachment top any 0 8 4\n$body b arm\n"
                                  "$sequence idle arm\n");
  ASSERT_TRUE(files);
  const model::StudioHeader header = HeaderOf(*files);
  ASSERT_EQ(header.AttachmentCount, 2);
  const model::Vec3 expected[] = {{-4, -4, 2}, {4, -4, -2}};
  for (int64_t i = 0; i < 2; ++i) {
    const int64_t at = header.AttachmentOffset + i * static_cast<int64_t>(sizeof(model::StudioAttachment));
    const auto attachment = RecordAt<model::StudioAttachment>(files->Mdl, at);
    EXPECT_STREQ(files->Mdl.c_str() + at + attachment.NameOffset, i == 0 ? "top" : "placementOrigin");
    const model::Vec3& place = expected[i];
    EXPECT_NEAR(attachment.Placement.m[3], place.x, 1e-4);
    EXPECT_NEAR(attachment.Placement.m[7], place.y, 1e-4);
    EXPECT_NEAR(attachment.Placement.m[11], place.z, 1e-4);
  }
}

TEST(CompileScript, TurnsSourcesIntoBonesThatTheirDefinitionRealigns) {
  Workshop shop;
  const std::string rest = "$body b arm\n$sequence idle swing\n";
  const auto plain = shop.Compile(std::string(Head) + rest);
  const auto turned = shop.Compile(std::string(Head) +
                                   "$definebone root \"\" 0 0 0 0 0 0\n"
                                   "$definebone arm root 4 0 0 0 90 0 0 0 0 0 90 0\n" +
                                   rest);
  ASSERT_TRUE(plain && turned);
  // The mesh moves as before, by a bone that lies otherwise.
  const model::StudioHeader before = HeaderOf(*plain), after = HeaderOf(*turned);
  EXPECT_NEAR(before.HullMaximum.z, after.HullMaximum.z, 1e-4);
  EXPECT_NEAR(before.HullMaximum.y, after.HullMaximum.y, 1e-4);
  EXPECT_NEAR(before.HullMinimum.x, after.HullMinimum.x, 1e-4);
  const auto second = RecordAt<model::StudioSecondHeader>(turned->Mdl, after.SecondHeaderOffset);
  ASSERT_EQ(second.SourceBoneCount, 1);
  const auto record = RecordAt<model::StudioSourceBone>(turned->Mdl, second.SourceBoneOffset);
  EXPECT_STREQ(turned->Mdl.c_str() + second.SourceBoneOffset + record.NameOffset, "arm");
  EXPECT_NEAR(record.Matrices[0](0, 0), 1, 1e-6);  // nothing is taken off its parent
  EXPECT_NEAR(record.Matrices[1](1, 0), 1, 1e-6);  // a quarter about Z
}

TEST(CompileScript, PutsTheMiddleOfMassWhereAScriptWantsIt) {
  Workshop shop;
  const std::string script = std::string(Head) + "$staticprop\n$body b arm\n$sequence idle arm\n";
  WriteText(shop.Folder.Path("parts/hull.smd"), Pyramid(4));
  const auto files = shop.Compile(script + "$collisionmodel hull { $mass 5 $masscenter 1 0.5 2 }\n");
  ASSERT_TRUE(files) << testing::PrintToString(shop.Texts());
  constexpr int64_t Surface = 16 + 32;  // behind the file's head and the solid's
  const float place[] = {RecordAt<float>(files->Phy, Surface), RecordAt<float>(files->Phy, Surface + 4),
                         RecordAt<float>(files->Phy, Surface + 8)};
  EXPECT_NEAR(place[0], -0.5 * 0.0254, 1e-6);  // turned by a quarter, in the axes of the file
  EXPECT_NEAR(place[1], -2 * 0.0254, 1e-6);
  EXPECT_NEAR(place[2], 1 * 0.0254, 1e-6);
}

TEST(CompileScript, ScalesBonesThatAnimationsAloneHave) {
  Workshop shop;
  WriteText(shop.Folder.Path("parts/wave.smd"),
            "version 1\nnodes\n0 \"root\" -1\n1 \"flag\" 0\nend\nskeleton\ntime 0\n0 0 0 0 0 0 0\n1 0 0 5 0 0 0\n"
            "time 1\n1 0 0 6 0 0 0\nend\n");
  const auto files = shop.Compile(std::string(Head) +
                                  "$body b arm\n$sequence idle swing\n$scale 3\n$sequence wave { wave fps 5 }\n"
                                  "$attachment top flag 0 0 0\n");
  ASSERT_TRUE(files);
  const model::StudioHeader header = HeaderOf(*files);
  ASSERT_EQ(header.BoneCount, 3);
  EXPECT_EQ(BoneName(*files, 2), "flag");
  const int64_t at = header.BoneOffset + 2 * static_cast<int64_t>(sizeof(model::StudioBone));
  EXPECT_EQ(RecordAt<model::StudioBone>(files->Mdl, at).Position.z, 15);
}

TEST(CompileScript, RefusesABodyWithoutAMesh) {
  for (const char* line : {"$body torso", "$Model \"torso\"", "$body torso // arm"}) {
    Workshop shop;
    EXPECT_FALSE(shop.Compile(std::string(Head) + "$body b arm\n" + line + "\n$sequence idle swing\n"));
    EXPECT_THAT(shop.Texts(), Contains(HasSubstr("error: the body \"torso\" has no mesh"))) << line;
  }
}

TEST(CompileScript, CollapsesBonesThatHoldNothingAndStandStill) {
  const std::string mesh =
      "version 1\nnodes\n0 \"root\" -1\n1 \"mid\" 0\n2 \"tip\" 1\nend\nskeleton\ntime 0\n0 0 0 0 0 0 0\n1 2 0 0 0 0 0\n"
      "2 2 0 0 0 0 0\nend\ntriangles\nm\n0 0 0 0 0 0 1 0 0\n2 8 0 0 0 0 1 1 0\n2 0 8 4 0 0 1 0 1\nend\n";
  const std::string swing =
      "version 1\nnodes\n0 \"root\" -1\n1 \"mid\" 0\n2 \"tip\" 1\nend\nskeleton\ntime 0\n0 0 0 0 0 0 0\n1 2 0 0 0 0 0\n"
      "2 2 0 0 0 0 0\ntime 1\n1 2 0 0 0 0 1\nend\n";
  const auto bones = [&](const std::string& lines) {
    Workshop shop;
    WriteText(shop.Folder.Path("parts/limb.smd"), mesh);
    WriteText(shop.Folder.Path("parts/wave.smd"), swing);
    const auto files = shop.Compile(std::string(Head) + "$body b limb\n" + lines);
    std::vector<std::string> names;
    for (int i = 0; files && i < HeaderOf(*files).BoneCount; ++i) names.push_back(BoneName(*files, i));
    return names;
  };
  EXPECT_THAT(bones("$sequence idle limb\n"), ElementsAre("root", "mid", "tip"));
  EXPECT_THAT(bones("$collapsebones\n$sequence idle limb\n"), ElementsAre("root", "tip"));
  EXPECT_THAT(bones("$collapsebones\n$sequence idle wave\n"), ElementsAre("root", "mid", "tip"));
}

TEST(CompileScript, LeavesWhatADroppedBoneHeldWhereItStood) {
  Workshop shop;
  const auto files = shop.Compile(std::string(Head) +
                                  "$body b arm\n$sequence idle swing\n$alwayscollapse arm\n$alwayscollapse root\n"
                                  "$attachment a unused 1 2 3 rigid\n$attachment b arm 1 2 3\n"
                                  "$attachment c ARM 1 2 3 absolute\n$hbox 2 arm 0 0 0 1 2 3\n");
  ASSERT_TRUE(files) << testing::PrintToString(shop.Texts());
  EXPECT_THAT(shop.Texts(), ElementsAre(HasSubstr("$alwayscollapse of \"root\" is passed over")));
  const model::StudioHeader header = HeaderOf(*files);
  ASSERT_EQ(header.BoneCount, 1);
  const model::Vec3 expected[] = {{1, 11, 3}, {5, 2, 3}, {1, 2, 3}};
  ASSERT_EQ(header.AttachmentCount, 3);
  for (int64_t i = 0; i < 3; ++i) {
    const auto attachment = RecordAt<model::StudioAttachment>(
        files->Mdl, header.AttachmentOffset + i * static_cast<int64_t>(sizeof(model::StudioAttachment)));
    const model::Vec3& place = expected[i];
    EXPECT_NEAR(attachment.Placement.m[3], place.x, 1e-5) << i;
    EXPECT_NEAR(attachment.Placement.m[7], place.y, 1e-5) << i;
    EXPECT_NEAR(attachment.Placement.m[11], place.z, 1e-5) << i;
  }
  const auto set = RecordAt<model::StudioHitboxSet>(files->Mdl, header.HitboxSetOffset);
  const auto box = RecordAt<model::StudioHitbox>(files->Mdl, header.HitboxSetOffset + set.HitboxOffset);
  const model::Vec3 least = box.Minimum, most = box.Maximum;
  EXPECT_NEAR(least.x, 4, 1e-5);
  EXPECT_NEAR(most.x, 5, 1e-5);
  EXPECT_NEAR(most.z, 3, 1e-5);
}

TEST(CompileScript, KeepsTheDriversOfBonesAndDrivesNoParentInPlaceOfAHelper) {
  Workshop shop;
  WriteText(shop.Folder.Path("parts/rules.vrd"),
            "<helper> arm root root unused\n<basepos> 4 0 0\n<trigger> 90 0 0 0 0 0 0 0 0 0\n");
  const std::string script = std::string(Head) + "$body b arm\n$sequence idle swing\n$proceduralbones rules.vrd\n";
  const auto driven = shop.Compile(script);
  ASSERT_TRUE(driven);
  ASSERT_EQ(HeaderOf(*driven).BoneCount, 3);
  EXPECT_EQ(BoneName(*driven, 2), "unused") << "it drives the arm";
  WriteText(shop.Folder.Path("parts/rules.vrd"),
            "<helper> unused root root arm\n<basepos> 0 9 0\n<trigger> 90 0 0 0 0 0 0 0 0 0\n");
  const auto none = shop.Compile(script);
  ASSERT_TRUE(none);
  EXPECT_THAT(shop.Texts(), testing::IsEmpty());
  const model::StudioHeader header = HeaderOf(*none);
  ASSERT_EQ(header.BoneCount, 2);
  EXPECT_EQ(RecordAt<model::StudioBone>(none->Mdl, header.BoneOffset).ProceduralType, 0);
}

TEST(CompileScript, GivesBonesOfALevelToOthersThroughAllThatStandBetween) {
  std::string mesh = "version 1\nnodes\n0 \"root\" -1\n";
  for (const char* node : {"1 \"arm\" 0", "2 \"hand\" 1", "3 \"finger\" 2", "4 \"tip\" 3", "5 \"sleeve\" 1"}) {
    mesh += std::string(node) + "\n";
  }
  mesh += "end\nskeleton\ntime 0\n";
  for (int bone = 0; bone < 6; ++bone) mesh += std::to_string(bone) + " 4 0 0 0 0 0\n";
  mesh += "end\ntriangles\n";
  for (int bone = 1; bone < 5; ++bone) {
    const std::string b = std::to_string(bone) + " " + std::to_string(20 * bone);
    mesh += "skin\n" + b + " 0 0 0 0 1 0 0\n" + b + " 8 0 0 0 1 1 0\n" + b + " 0 8 0 0 1 0 1\n";
  }
  mesh += "end\n";
  const auto bonesOfLevel = [&](const std::string& lines) {
    Workshop shop;
    WriteText(shop.Folder.Path("parts/limb.smd"), mesh);
    const auto files =
        shop.Compile(std::string(Head) + "$body b limb\n$sequence idle limb\n$lod 5 { " + lines + " }\n");
    std::string used;
    for (int i = 0; files && i < HeaderOf(*files).BoneCount; ++i) {
      const int64_t at = HeaderOf(*files).BoneOffset + int64_t{i} * static_cast<int64_t>(sizeof(model::StudioBone));
      const bool isUsed = (RecordAt<model::StudioBone>(files->Mdl, at).Flags & model::BoneFlagVertexLod0 << 1) != 0;
      if (isUsed) used += BoneName(*files, i) + " ";
    }
    for (const std::string& text : shop.Texts()) used += "(" + text + ")";
    return used;
  };
  EXPECT_EQ(bonesOfLevel("replacebone tip arm"), "root arm hand finger ");
  EXPECT_EQ(bonesOfLevel("replacebone hand arm\nreplacebone finger hand\nreplacebone tip finger"), "root arm ");
  EXPECT_EQ(bonesOfLevel("replacebone tip finger\nreplacebone finger hand\nreplacebone hand arm"), "root arm ");
  EXPECT_EQ(bonesOfLevel("bonetreecollapse HAND"), "root arm hand ");
  // The sleeve is not in the model: the arm, which took its place, keeps what it has.
  EXPECT_EQ(bonesOfLevel("replacebone sleeve root"), "root arm hand finger tip ");
  EXPECT_EQ(bonesOfLevel("bonetreecollapse sleeve"), "root arm hand finger tip ");
}

TEST(CompileScript, FindsTheMeshOfALevelByItsBareName) {
  for (const char* name : {"arm", "ARM.smd", "parts\\Arm", "arm.DMX"}) {
    Workshop shop;
    EXPECT_TRUE(
        shop.Compile("$modelname a.mdl\n$body b parts/arm.smd\n$sequence idle parts/swing\n$lod 5 { removemodel " +
                     std::string(name) + " }\n"));
    EXPECT_THAT(shop.Texts(), testing::IsEmpty()) << name;
  }
  Workshop shop;  // two of that name
  WriteText(shop.Folder.Path("more/arm.smd"), ArmMesh);
  EXPECT_TRUE(
      shop.Compile("$modelname a.mdl\n$body b parts/arm\n$body c more/arm\n$sequence idle parts/swing\n"
                   "$lod 5 { removemodel arm }\n"));
  EXPECT_THAT(shop.Texts(), Contains(HasSubstr("no body shows the mesh \"arm\"")));
}

TEST(CompileScript, NamesRenamedBonesInThePhysicsToo) {
  Workshop shop;
  WriteText(shop.Folder.Path("parts/block.smd"), Pyramid(6));
  const auto files = shop.Compile(std::string(Head) +
                                  "$renamebone root base\n$body b block\n$sequence idle block\n"
                                  "$collisionjoints block { $rootbone root $jointmerge root gone }\n");
  ASSERT_TRUE(files);
  EXPECT_THAT(files->Phy, HasSubstr("\"rootname\" \"base\""));
  EXPECT_THAT(files->Phy, HasSubstr("\"base,gone\""));
}

TEST(CompileScript, NamesABoneInRulesThatLetALimbGo) {
  Workshop shop;
  const auto files =
      shop.Compile(std::string(Head) +
                   "$body b arm\n$ikchain c arm\n$sequence idle swing { ikrule c release ikrule c touch \"\" }\n");
  ASSERT_TRUE(files);
  const int64_t at = HeaderOf(*files).AnimOffset;
  const auto animation = RecordAt<model::StudioAnimDesc>(files->Mdl, at);
  ASSERT_EQ(animation.IkRuleCount, 2);
  const int64_t rules = at + animation.IkRuleOffset;
  EXPECT_EQ(RecordAt<model::StudioIkRule>(files->Mdl, rules).Bone, 0);
  EXPECT_EQ(RecordAt<model::StudioIkRule>(files->Mdl, rules + int64_t{sizeof(model::StudioIkRule)}).Bone, -1);
}

TEST(CompileScript, KnowsRenamedMaterialsOfALevelByEitherName) {
  for (const char* name : {"b", "B.tga", "brick", "Brick.vmt"}) {
    Workshop shop;
    WriteText(shop.Folder.Path("parts/roof.smd"), Pyramid(8));
    const auto files =
        shop.Compile(std::string(Head) + "$body one roof\n$sequence idle roof\n$renamematerial b brick\n$lod 5 { " +
                     "replacematerial " + name + " low }\n$lod 9 { removemesh " + name + " }\n");
    ASSERT_TRUE(files);
    EXPECT_THAT(shop.Texts(), testing::IsEmpty()) << name;
    EXPECT_THAT(TextureNames(*files), ElementsAre("a", "brick", "low")) << name;
  }
}

}  // namespace
}  // namespace tarnwick::compiler
