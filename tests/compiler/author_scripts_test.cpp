// Scripts in the hands of many authors: each case is a script with what the model must have become, told as lines.

#include <gmock/gmock.h>

#include <cctype>
#include <sstream>

#include "model/animation_records.h"
#include "model/script_records.h"
#include "workshop.h"

namespace tarnwick::compiler {
namespace {

using namespace tests;
using testing::HasSubstr;

/// A box with the corners (0, 0, 0) and `size`, two triangles of which wear `other`; each side has its own normal.
std::string Box(int x, int y, int z, const std::string& other = "wood", float smooth = 0) {
  static constexpr int Faces[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                                      {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
  static constexpr int Normals[6][3] = {{0, 0, -1}, {0, 0, 1}, {0, -1, 0}, {0, 1, 0}, {-1, 0, 0}, {1, 0, 0}};
  std::ostringstream out;
  out << "version 1\nnodes\n0 \"root\" -1\nend\nskeleton\ntime 0\n0 0 0 0 0 0 0\nend\ntriangles\n";
  for (int face = 0; face < 6; ++face) {
    for (const auto& corners : {std::array{0, 1, 2}, std::array{0, 2, 3}}) {
      out << (face == 5 ? other : "wood") << ".bmp\n";
      for (const int k : corners) {
        const int corner = Faces[face][k];
        out << "  0 " << ((corner & 1) != 0 ? x : 0) << " " << ((corner & 2) != 0 ? y : 0) << " "
            << ((corner & 4) != 0 ? z : 0) << " ";
        for (int axis = 0; axis < 3; ++axis) out << (smooth > 0 ? (axis == 2 ? 1 : 0) : Normals[face][axis]) << " ";
        out << (k % 2) << " " << (k / 2) << " 1 0 1.0\n";
      }
    }
  }
  out << "end\n";
  return out.str();
}

std::string Text(const std::string& bytes, int64_t at) {
  return bytes.c_str() + at;
}

/// The model in lines: what stands in its tables, one table a line.
std::string Told(const CompiledFiles& files) {
  const std::string& mdl = files.Mdl;
  const model::StudioHeader h = HeaderOf(files);
  std::ostringstream out;
  const auto rows = [&](const char* title, int32_t count, int64_t offset, size_t size, const auto& tell) {
    out << title << ":";
    for (int32_t i = 0; i < count; ++i) {
      out << " ";
      tell(offset + int64_t{i} * static_cast<int64_t>(size));
    }
    out << "\n";
  };
  const auto named = [&](int64_t at) { out << Text(mdl, at + RecordAt<int32_t>(mdl, at)); };
  const auto vec = [&](const model::Vec3& v) { out << v.x + 0.0f << "," << v.y + 0.0f << "," << v.z + 0.0f; };
  out << "name: " << h.Name << "\nflags: " << h.Flags << "\nmass: " << h.Mass << "\ncontents: " << h.Contents
      << "\nsurface: " << Text(mdl, h.SurfacePropOffset) << "\n";
  rows("bones", h.BoneCount, h.BoneOffset, sizeof(model::StudioBone), named);
  rows("sequences", h.SequenceCount, h.SequenceOffset, sizeof(model::StudioSeqDesc), [&](int64_t at) {
    const auto s = RecordAt<model::StudioSeqDesc>(mdl, at);
    out << Text(mdl, at + s.LabelOffset) << "/" << Text(mdl, at + s.ActivityOffset) << "/" << s.Flags << "/"
        << s.BlendSize[0] << "x" << s.BlendSize[1] << "/e" << s.EventCount;
  });
  rows("animations", h.AnimCount, h.AnimOffset, sizeof(model::StudioAnimDesc), [&](int64_t at) {
    const auto a = RecordAt<model::StudioAnimDesc>(mdl, at);
    out << Text(mdl, at + a.NameOffset) << "/" << a.FrameCount << "/" << a.Fps << "/" << a.Flags;
  });
  rows("parts", h.BodyPartCount, h.BodyPartOffset, sizeof(model::StudioBodyPart), [&](int64_t at) {
    const auto part = RecordAt<model::StudioBodyPart>(mdl, at);
    out << Text(mdl, at + part.NameOffset) << "(";
    for (int32_t i = 0; i < part.ModelCount; ++i) {
      out << (i > 0 ? " " : "") << Text(mdl, at + part.ModelOffset + int64_t{i} * int64_t{sizeof(model::StudioModel)});
    }
    out << ")";
  });
  rows("textures", h.TextureCount, h.TextureOffset, sizeof(model::StudioTexture), named);
  rows("folders", h.MaterialDirectoryCount, h.MaterialDirectoryOffset, 4,
       [&](int64_t at) { out << "[" << Text(mdl, RecordAt<int32_t>(mdl, at)) << "]"; });
  rows("skins", h.SkinFamilyCount, h.SkinOffset, 2 * static_cast<size_t>(h.SkinReferenceCount), [&](int64_t at) {
    for (int32_t i = 0; i < h.SkinReferenceCount; ++i) out << RecordAt<int16_t>(mdl, at + int64_t{2} * i);
  });
  rows("attachments", h.AttachmentCount, h.AttachmentOffset, sizeof(model::StudioAttachment), named);
  rows("sets", h.HitboxSetCount, h.HitboxSetOffset, sizeof(model::StudioHitboxSet), [&](int64_t at) {
    named(at);
    out << "(" << RecordAt<model::StudioHitboxSet>(mdl, at).HitboxCount << ")";
  });
  rows("poses", h.PoseParameterCount, h.PoseParameterOffset, sizeof(model::StudioPoseParameter), named);
  rows("chains", h.IkChainCount, h.IkChainOffset, sizeof(model::StudioIkChain), named);
  rows("included", h.IncludeModelCount, h.IncludeModelOffset, 8,
       [&](int64_t at) { out << Text(mdl, at + RecordAt<int32_t>(mdl, at + 4)); });
  out << "lods: " << (files.Vvd.empty() ? 0 : RecordAt<int32_t>(files.Vvd, 0x0C)) << "\nhull: ";
  vec(h.HullMinimum);
  out << " ";
  vec(h.HullMaximum);
  out << "\nkeys: " << (h.KeyValueSize > 0 ? Text(mdl, h.KeyValueOffset) : "") << "\n";
  if (!files.Phy.empty()) {
    const std::string text = files.Phy.substr(files.Phy.find("solid {"));
    out << "phy: " << text << "\n";
  }
  return out.str();
}

struct Authored {
  const char* Subject;
  std::string Script;
  std::vector<const char*> Expected;  // pieces of the model's lines
  int64_t Triangles = -1;
};

class AuthoredScripts : public testing::Test {
 protected:
  void Check(const std::vector<Authored>& cases) {
    for (const Authored& c : cases) {
      SCOPED_TRACE(c.Subject);
      Workshop shop;
      WriteText(shop.Folder.Path("parts/crate.smd"), Box(8, 16, 24, "Metal"));
      WriteText(shop.Folder.Path("parts/Crate_LOD1.SMD"), Box(8, 16, 24));
      WriteText(shop.Folder.Path("parts/crate phys.smd"), Box(8, 16, 24, "phys", 1));
      WriteText(shop.Folder.Path("parts/sub/gib.smd"), Box(4, 4, 4));
      WriteText(
          shop.Folder.Path("parts/common.qci"),
          "$surfaceprop wood\n$definemacro look name speed \\\\\n$sequence $name$_$speed$ swing \\\\\nfps $speed$\n");
      const auto files = shop.Compile(c.Script);
      EXPECT_TRUE(files) << testing::PrintToString(shop.Texts());
      if (!files) continue;
      const std::string told = Told(*files);
      for (const char* expected : c.Expected) {
        EXPECT_THAT(told, HasSubstr(expected)) << testing::PrintToString(shop.Texts());
      }
      if (c.Triangles >= 0) {
        EXPECT_EQ(shop.Report.Triangles, c.Triangles);
      }
    }
  }
};

TEST_F(AuthoredScripts, AreReadHoweverTheyAreTyped) {
  Check({
      {"plain, with a doubled slash in a bare path",
       "$modelname props//my_crate.mdl\n$cd parts\n$cdmaterials models//props//crate // the folder\n"
       "$body body crate.smd//the mesh\n$staticprop//no bones\n$sequence idle crate.smd\n",
       {"name: props//my_crate.mdl", "folders: [models\\\\props\\\\crate\\]", "parts: body(crate.smd)",
        "bones: static_prop", "textures: wood Metal", "sequences: idle//0/1x1/e0"},
       12},
      {"upper case, backslashes, tabs, CRLF and a byte order mark",
       "\xEF\xBB\xBF$MODELNAME\t\"Props\\Crate.MDL\"\r\n$CD\t\".\\parts\"\r\n$STATICPROP\r\n$BODY\tBody\t\"CRATE."
       "SMD\"\r\n"
       "$CDMATERIALS\t\"Models\\Props\"\t\"models/other/\"\r\n$SEQUENCE\tIdle\t\"CRATE\"\tFPS\t1\tLOOP\r\n",
       {"name: Props\\Crate.MDL", "folders: [Models\\Props\\] [models\\other\\]", "parts: Body(CRATE.SMD)",
        "animations: @Idle/1/1/1"}},
      {"comments of every kind",
       "/* a\n$body wrong wrong\n*/ $modelname crate.mdl // name\n# $body wrong wrong\n; $body wrong wrong\n"
       "$cd parts ; the folder\n$body body /* which? */ crate # the mesh\n$sequence idle crate /* one\nframe */ fps 5\n"
       "// $staticprop\n$surfaceprop metal_box //solid\n",
       {"name: crate.mdl", "surface: metal_box", "bones: root", "parts: body(crate)"}},
      {"bytes of an old code page in names, blanks in file names",
       "$modelname \"props/caf\xE9.mdl\"\n$cd parts\n$cdmaterials \"models/caf\xE9 noir\"\n$body \"k\xF6rper\" crate\n"
       "$sequence idle crate\n$collisionmodel \"crate phys.smd\" { $mass 10 }\n",
       {"name: props/caf\xE9.mdl", "folders: [models\\caf\xE9 noir\\]", "parts: k\xF6rper(crate)",
        "\"name\" \"crate phys\"", "mass: 10"}},
      {"a name without ending and with the folder of models, sequences first",
       "$cd parts\n$sequence \"idle\" \"crate\" fps 30\n$collisionmodel \"crate phys\"\n{\n\t$mass 20.0\n}\n$body b "
       "crate\n"
       "$modelname models/props/crate\n",
       {"name: models/props/crate.mdl", "mass: 20"}},
      {"folders that are put on and taken off, a script beside it with a macro and a variable",
       "$definevariable base crate\n$modelname $base$_two.mdl\n$pushd parts\n$include \"parts\\Common.QCI\"\n$pushd "
       "sub\n"
       "$body gib gib.smd\n$popd\n$body b $base$\n$look walk 12\n$popd\n$sequence again \"parts/swing\"\n",
       {"name: crate_two.mdl", "surface: wood", "parts: gib(gib.smd) b(crate)", "sequences: walk_12//",
        "@walk_12/3/12/0"}},
      {"an absolute folder of another computer",
       "$cd \"C:\\Users\\me\\models\\crate\\\"\n$modelname crate.mdl\n$body b \"D:/art/parts/crate.smd\"\n"
       "$sequence idle \"parts\\crate.smd\"\n",
       {"parts: b(D:/art/parts/crate.smd)", "sequences: idle"}},
      {"another format's ending where the text stands beside it",
       "$modelname crate.mdl\n$cd parts\n$model \"b\" \"crate.dmx\"\n$sequence idle crate.dmx\n",
       {"parts: b(crate.dmx)"},
       12},
      {"numbers in quotes, options glued to braces",
       "$modelname \"crate.mdl\"\n$cd \"parts\"\n\"$body\" \"b\" \"crate\"\n$scale \"2\"\n"
       "$sequence \"idle\" {\"crate\" fps \"10\" \"loop\" {event 5004 \"0\" \"Crate.Hum\"} {event AE_X 0}}\n"
       "$bbox \"-1\" \"-2\" \"-3\" \"4\" \"5\" \"6\"\n",
       {"sequences: idle//1/1x1/e2", "/10/1", "hull: -1,-2,-3 4,5,6"}},
  });
}

TEST_F(AuthoredScripts, BuildBodiesSkinsAndLevels) {
  const std::string head = "$modelname a.mdl\n$cd parts\n$cdmaterials models/a\n";
  Check({
      {"groups with blanks, braces anywhere",
       head + "$bodygroup lamp\n{\n\tstudio \"crate.smd\"\n\tblank\n}\n$bodygroup g { studio sub/gib studio crate\n}\n"
              "$body b { crate blank }\n$sequence idle crate",
       {"parts: lamp(crate.smd ) g(sub/gib crate) b(crate )"}},
      {"a block behind a body, and a model with a block that is empty",
       head + "$body b \"crate\" {\n}\n$model m \"sub\\gib.smd\"\n{\n}\n$sequence idle crate",
       {"parts: b(crate) m(sub\\gib.smd)"}},
      {"a blank added to a group by its name",
       head + "$bodygroup lamp { studio crate }\n$appendblankbodygroup lamp\n$sequence idle crate",
       {"parts: lamp(crate )"}},
      {"skins with rows shorter than the first and with names in other case",
       head + "$body b crate\n$texturegroup skinfamilies\n{\n\t{ \"WOOD\" \"metal.vmt\" }\n\t{ wood_red "
              "}\n\t{\"wood_blue\""
              " \"metal_blue\"}\n}\n$sequence idle crate",
       {"textures: wood Metal wood_red wood_blue metal_blue", "skins: 01234 21234 34234"}},
      {"skins without a name or with the brace glued to the words",
       head + "$body b crate\n$texturegroup \"\" {{wood}{wood2}{wood3}}\n$sequence idle crate",
       {"skins: 0123 2123 3123"}},
      {"levels: a mesh replaced, one taken away, one that is not there",
       head + "$body b crate.smd\n$body g sub/gib.smd\n$sequence idle crate\n"
              "$lod 10 {\n\treplacemodel \"crate\" \"crate_lod1\"\n\tremovemodel \"sub\\gib\"\n}\n"
              "$lod 20 { replacemodel crate.smd blank\n replacemodel nothing.smd crate_lod1.smd\n replacematerial wood "
              "planks }\n"
              "$shadowlod\n{\n\treplacemodel crate crate_lod1.smd\n}\n",
       {"lods: 4", "textures: wood Metal planks", "flags: 65"}},
      {"a level with a material of its own, which only a replacement brings in",
       head + "$body b crate_lod1\n$sequence idle crate_lod1\n$lod 10 { replacemodel crate_lod1 crate }\n"
              "$lod 20 { replacemodel crate_lod1 crate replacematerial metal steel }\n",
       {"textures: wood steel", "lods: 3"}},
      {"renamed materials, a folder that is empty",
       head + "$cdmaterials \"\"\n$renamematerial metal steel\n$body b crate\n$sequence idle crate",
       {"folders: [models\\a\\] []", "textures: wood steel"}},
      {"scale and place of what follows alone",
       head + "$body b crate\n$scale 0.5\n$body c crate\n$sequence idle crate",
       {"hull: -16,", "parts: b(crate) c(crate)"}},
      {"flags and the model's texts",
       head + "$body b crate\n$sequence idle crate\n$mostlyopaque\n$contents \"grate\"\n$surfaceprop Nothing_Known\n"
              "$keyvalues\n{\n\tprop_data\n\t{\n\t\t\"base\" \"Wooden.Small\"\n\t\tsub { a b }\n\t}\n\tother { x \"1 "
              "2\" }\n}\n"
              "$includemodel \"humans/male_shared.mdl\"\n$IncludeModel models\\x.mdl\n",
       {"flags: 9", "contents: 8", "surface: Nothing_Known", "included: models/humans/male_shared.mdl models\\x.mdl",
        "keys: mdlkeyvalue\n{\nprop_data {\n\"base\" \"Wooden.Small\" "}},
  });
}

TEST_F(AuthoredScripts, BuildBonesMotionAndCollision) {
  const std::string head = "$modelname a.mdl\n$cd parts\n$body b arm\n";
  Check({
      {"a sequence in one line, braces on the same line and the next, several animations",
       head + "$animation a swing fps 24\n$animation \"b\" \"Swing.smd\" { fps 12 loop\n frames 0 1 }\n"
              "$sequence one a loop ACT_IDLE 3 fadein 0.5\n$sequence two { a b blend p 0 1 }\n"
              "$sequence three {\n\t\"a\"\n\t\"b\" a b blendwidth 2\n\tblend \"p\" 0 1\n\tblend q 1 -1\n\tactivity "
              "\"ACT_RUN\" -1\n"
              "\t{ event 3001 1 }\n}\n$sequence four swing.smd { snap autoplay delta }\n",
       {"one/ACT_IDLE/1/1x1", "two//1/2x1", "three/ACT_RUN/1/2x2/e1", "four//30/1x1", "poses: p q", "b/2/12/1"}},
      {"a sequence that stands still, one of a static model whose file is gone",
       head + "$sequence idle swing fps 0\n$sequence gone nowhere fps 5\n",
       {"@idle/3/0/0", "sequences: idle//0/1x1/e0\n"}},
      {"the same of a static model", "$staticprop\n" + head + "$sequence idle nowhere loop fps 5\n", {"@idle/1/5/1"}},
      {"attachments with every option",
       head + "$sequence idle swing\n$attachment \"a\" \"arm\" 1 2 3 rotate 0 90 0\n$attachment b root 1 2 3 absolute "
              "rigid\n"
              "$attachment c \"\" 0 0 0\n$Attachment \"d\" \"ARM\" 0.00 1.0 -2. world_align rotate -90 -90 0\n"
              "$attachment e arm 0 0 0 x_and_z_axes 1 0 0 0 0 1\n",
       {"attachments: a b c d e", "bones: root arm\n"}},
      {"hit boxes in sets, groups of bones",
       head + "$sequence idle swing\n$hboxset \"cstrike\"\n$hbox 1 \"arm\" -1 -1 -1 1 1 1\n$hbox 0 root 0 0 0 1 1 1 0 "
              "0 0\n"
              "$hboxset empty\n$hgroup 2 arm\n",
       {"sets: cstrike(2) empty(0)", "flags: 0"}},
      {"defined bones of six, nine and twelve numbers, merged bones, bones that nothing uses",
       head + "$definebone \"top\" \"\" 0 0 0 0 0 0\n$definebone root top 0 0 1 0 0 0 0 0 0\n"
              "$definebone \"arm\" \"root\" 4 0 0 0 0 0 0 0 0 0 0 0\n$bonemerge unused\n$sequence idle swing\n",
       {"bones: top root arm unused"}},
      {"weights, chains, poses that go round, layers, nodes",
       head + "$weightlist upper { \"arm\" 1 }\n$weightlist lower root .5 arm 0\n$defaultweightlist { root 1 }\n"
              "$ikchain hand arm knee 0.7 0.7 0\n$poseparameter yaw -180 180 loop 360\n$poseparameter \"p\" 0 1 wrap\n"
              "$sequence idle swing weightlist upper node stand\n$sequence walk swing {\n\taddlayer idle\n"
              "\tblendlayer idle 0 1 1 2 spline\n\ttransition stand walk iklock hand 1 0\n\tX\n}\n",
       {"poses: yaw p", "chains: hand", "sequences: idle//0/1x1/e0 walk//0/1x1/e0"}},
      {"a name of its own inside, boxes of vertices alone, bones as long as at rest",
       "$bboxonlyverts\n$internalname \"inside.mdl\"\n$lockbonelengths\n" + head +
           "$sequence idle swing frame 0 0\n$attachment far unused 0 0 0\n",
       {"name: inside.mdl", "bones: root arm unused", "hull: -8,-3.49691e-07,0 0,8,4"}},
      {"animations aligned in place and turn",
       head + "$animation base swing frames 2 2 rotate 0 90 0\n$animation a swing align base X YR ZR 0 1\n"
              "$sequence idle a\n",
       {"a/3/30/0"}},
      {"what is not built swallows nothing that follows it",
       head + "$bodygrouppreset x\n{\n\ta b\n}\n$clampworldspace $opaque\n$limitrotation arm 1 2 $fancy { a { b\n } }\n"
              "$controller 0 arm X 0 1\n$animblocksize 32 nostall highres\n$worldalign root arm\n$fancier a {\n"
              "$surfaceprop stone\n$collisionmodel crate { $collisionprecision .1 $weldposition 1 $mass 7 $drag 2\n"
              "$remove2d\n$inertia 3 }\n$sequence idle swing match a fps 5 walkalign x 1 2 loop compress 2 {\n"
              "alignboneto a b c\nderivative 2 fadein .5 { event 1 0 } worldspaceblend q activity ACT_X 2\n}\n",
       {"flags: 5", "surface: stone", "mass: 7", "\"inertia\" \"3.0", "idle/ACT_X/1/1x1/e1", "/3/5/1"}},
      {"eyes, numbers and words of the head",
       head +
           "$sequence idle swing\n$eyeposition 0 0 70\n$illumposition 0 0 35 arm\n$cbox 0 0 0 0 0 0\n$maxeyedeflection "
           "90\n"
           "$origin 0 0 0 -90\n$upaxis Z\n$obsolete\n$donotcastshadows\n$noforcedfade\n$constantdirectionallight .5\n",
       {"bones: root arm"}},
      {"a collision model with its lines",
       head + "$sequence idle swing\n$collisionmodel \"crate phys.smd\"\n{\n\t// heavy\n\t$Mass 35.5 // "
              "kilograms\n\t$concave\n"
              "\t$maxconvexpieces 20\n\t$automass\n\t$masscenter 4 8 2\n\t$inertia 2\n\t$damping .1\n\t$rotdamping "
              "0.5\n\t$drag 1\n}\n"
              "$collisiontext\n{\n\tbreak { \"model\" \"gib1\" health 10 }\n}\n",
       {"mass: 35.5", "\"concave\" \"1\"", "\"inertia\" \"2.000000\"", "\"rotdamping\" \"0.500000\"", "break {"}},
      {"a collision model whose mass is no number, in one line",
       head + "$sequence idle swing\n$collisionmodel crate { $mass weight $concave }\n",
       {"mass: 0"}},
      {"joints in older and newer words",
       head + "$sequence idle swing\n$collisionjoints \"crate phys\" {\n$mass 10\n$inertia 5\n$jointinertia 3\n"
              "$jointinertia root 4\n$jointdamping \"root\" .5\n$rootbone root\n$jointskip arm\n$noselfcollisions }\n",
       {"\"inertia\" \"4.000000\"", "\"damping\" \"0.500000\"", "\"name\" \"root\""}},
      {"surfaces of joints, the last of two",
       head + "$sequence idle swing\n$jointsurfaceprop root metal\n$jointsurfaceprop root stone\n"
              "$collisionjoints \"crate phys\" { $mass 10 }\n",
       {"\"surfaceprop\" \"stone\""}},
      {"jiggle bones with groups in any order",
       head + "$sequence idle swing\n$jigglebone \"arm\"\n{\n\tis_flexible\n\t{\n\t\tlength 20\n\t\ttip_mass 100\n"
              "\t\tangle_constraint 30\n\t}\n\thas_base_spring { stiffness 100 damping 3 left_constraint -1 1 }\n}\n",
       {"bones: root arm"}},
  });
}

}  // namespace
}  // namespace tarnwick::compiler
