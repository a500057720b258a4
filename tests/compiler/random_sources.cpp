#include "random_sources.h"

#include <cmath>

#include "random_face.h"

namespace tarnwick::tests {

namespace {

class Maker {
 public:
  Maker(uint32_t seed, uint32_t things) : m_dice(seed), m_things(things) {
    if (!Has(RandomNames)) return;
    m_odd = Any({" // x", " {", "}", " ; #",
                 " \xc3\xbc"
                 "ber",
                 "\\back", "/slash", " $v$", "%f", " fps", " /*", ".smd", "."});
  }

  std::map<std::string, std::string> Make() {
    MakeBones();
    m_script = "$modelname \"Props/rand " + Number(m_dice.Below(100)) + ".mdl\"\n";
    if (Has(RandomStatic)) m_script += "$staticprop\n";
    if (Has(RandomHeader)) Header();
    if (Has(RandomShape)) Shape();
    m_script += "$cdmaterials \"models/Rand\"\n";
    if (Has(RandomBones)) DefineBones();
    Bodies();
    if (Has(RandomSkins)) Skins();
    if (Has(RandomLevels)) Levels();
    if (Has(RandomGrids)) {
      m_script += "$poseparameter \"aim yaw\" -60 60\n$poseparameter aim_pitch -90 45 loop 360\n";
    }
    if (Has(RandomAttachments)) Attachments();
    if (Has(RandomHitboxes)) Hitboxes();
    if (Has(RandomIk)) Chains();
    if (Has(RandomProcedures) && !Has(RandomStatic)) Procedures();
    if (Has(RandomWords)) WeightLists();
    Sequences();
    if (Has(RandomCollision)) Collision();
    m_files["model.qc"] = m_script;
    return m_files;
  }

 private:
  bool Has(RandomThing thing) const { return (m_things & thing) != 0; }
  std::string Any(const std::vector<std::string>& of) { return m_dice.Any(of); }
  /// A name that has what breaks a careless script, in models with such names.
  std::string Odd(const std::string& name) const { return name + m_odd; }
  std::string AnyBone() {
    return "\"" + m_bones[static_cast<size_t>(m_dice.Below(static_cast<int>(m_bones.size())))].Name + "\"";
  }

  void MakeBones() {
    const int few = Has(RandomStatic) ? m_dice.From(1, 3) : Has(RandomIk) ? m_dice.From(4, 9) : m_dice.From(1, 9);
    const int count = Has(RandomBigSkeleton) && !Has(RandomStatic) ? m_dice.From(60, 180) : few;
    for (int i = 0; i < count; ++i) {
      RandomBone bone;
      bone.Name = Odd(Any({"Bip01 Spine", "ValveBiped.arm", "bone", "tail.L", "Jaw"}) + Number(i));
      bone.Parent = i == 0 ? -1 : Has(RandomIk) && i < 4 ? i - 1 : m_dice.From(m_dice.Chance(10) ? -1 : 0, i - 1);
      for (size_t axis = 0; axis < 3; ++axis) bone.Rest[axis] = m_dice.Real(-12, 12);
      for (size_t axis = 3; axis < 6; ++axis) bone.Rest[axis] = m_dice.Chance(30) ? 0 : m_dice.Real(-3.1, 3.1);
      if (m_dice.Chance(20)) bone.Rest[4] = m_dice.Chance(50) ? 1.570796 : -1.570796;
      m_bones.push_back(bone);
    }
  }
  std::string Nodes() const {
    std::string text = "version 1\nnodes\n";
    for (size_t i = 0; i < m_bones.size(); ++i) {
      text += std::to_string(i) + " \"" + m_bones[i].Name + "\" " + std::to_string(m_bones[i].Parent) + "\n";
    }
    return text + "end\n";
  }
  static std::string PoseLine(size_t bone, const std::array<double, 6>& pose) {
    return std::to_string(bone) + Numbers(pose[0], pose[1], pose[2], pose[3], pose[4], pose[5]) + "\n";
  }
  std::string Rest() const {
    std::string text = "skeleton\ntime 0\n";
    for (size_t i = 0; i < m_bones.size(); ++i) text += PoseLine(i, m_bones[i].Rest);
    return text + "end\n";
  }

  /// Round surfaces of a few materials.
  std::string Mesh(const std::string& name, int fewest, int most, const std::vector<std::string>& worn = {}) {
    std::string triangles;
    m_meshVertices.clear();
    const int parts = m_dice.From(1, 3) + static_cast<int>(worn.size());
    for (int part = 0; part < parts; ++part) {
      std::string material = Any({"Skin", "cloth_a", "metal", "glass"});
      if (static_cast<size_t>(part) < worn.size()) material = worn[static_cast<size_t>(part)];
      if (Has(RandomNames) && static_cast<size_t>(part) >= worn.size() && m_dice.Chance(30))
        material = Any({"end.tga", "triangles.vmt", "50% grey", "folder/leaf", "a;b"});
      const int columns = m_dice.From(fewest, most), rows = m_dice.From(fewest, most);
      const double size = Has(RandomOddMeshes) && m_dice.Chance(20) ? 20000 : m_dice.Real(1, 15),
                   x = m_dice.Real(-20, 20), z = m_dice.Real(-20, 40);
      const bool odd = Has(RandomOddMeshes);
      const double length = odd && m_dice.Chance(30) ? 0 : 1;  // of normals
      const double tiles = odd && m_dice.Chance(30) ? -700 : 1;
      std::vector<RandomVertex> grid;
      for (int row = 0; row <= rows; ++row) {
        for (int column = 0; column <= columns; ++column) {
          const double u = double(column) / columns, v = double(row) / rows;
          const double a = u * 6.283185, b = v * 3.141593;
          const double nx = std::cos(a) * std::sin(b), ny = std::sin(a) * std::sin(b), nz = std::cos(b);
          RandomVertex vertex;
          vertex.Place = {x + size * nx, size * ny, z + size * nz, nx, ny, nz};
          vertex.Line = Number(BoneOfRow()) +
                        Numbers(x + size * nx, size * ny, z + size * nz, nx * length, ny * length, nz * length,
                                u * tiles, v * tiles) +
                        Links() + "\n";
          grid.push_back(vertex);
        }
      }
      for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
          const auto at = [&](int r, int c) {
            return grid[static_cast<size_t>((row + r) * (columns + 1) + column + c)];
          };
          for (const auto& corners :
               {std::array{at(0, 0), at(1, 0), at(1, 1)}, std::array{at(0, 0), at(1, 1), at(0, 1)}}) {
            triangles += material + "\n" + corners[0].Line + corners[1].Line + corners[2].Line;
            if (!Has(RandomOddMeshes) || m_dice.Chance(90)) continue;
            // The triangle again, one turned over, one without an area.
            const size_t last = static_cast<size_t>(m_dice.Below(3));
            triangles += material + "\n" + corners[last].Line + corners[1].Line + corners[(last + 1) % 3].Line;
          }
        }
      }
      m_meshVertices.insert(m_meshVertices.end(), grid.begin(), grid.end());
    }
    m_files[name] = Nodes() + Rest() + "triangles\n" + triangles + "end\n";
    return name;
  }
  int BoneOfRow() { return m_dice.Below(static_cast<int>(m_bones.size())); }
  std::string Links() {
    if (!Has(RandomWeights) || m_dice.Chance(30)) return "";
    const int count = m_dice.From(1, 4);
    std::string text = " " + Number(count);
    double left = 1;
    for (int i = 0; i < count; ++i) {
      const double weight = i + 1 == count ? left : left * m_dice.Real(0.02, 0.9);
      left -= weight;
      text += " " + Number(BoneOfRow()) + Numbers(weight);
    }
    return text;
  }

  void Header() {
    const std::vector<std::string> lines = {
        "$surfaceprop \"Flesh\"",
        "$contents \"grate\" solid",
        "$eyeposition 1 -2.5 60",
        "$illumposition 0 3 12.25",
        "$bbox -20 -20 0 20 20 72",
        "$cbox -1 -2 -3 4 5 6",
        "$maxeyedeflection 30",
        "$mostlyopaque",
        "$opaque",
        "$includemodel \"rand/Moves.mdl\"",
        "$keyvalues { prop_data { base Metal.Large allowstatic 1 } \"a b\" { c \"d e\" } }",
        "$animblocksize " + Any({"4 nostall", "8", "16"}),
        "$cdmaterials \"\" other\\folder",
        "$allowrootlods",
        "$cdmaterials one/ \"two words\\\""};
    for (const std::string& line : lines) {
      if (m_dice.Chance(50)) m_script += line + "\n";
    }
    if (m_dice.Chance(50) && !Has(RandomStatic)) m_script += "$jointsurfaceprop " + AnyBone() + " metal\n";
    if (m_dice.Chance(50) && !Has(RandomStatic)) m_script += "$bonemerge " + AnyBone() + "\n";
    if (m_dice.Chance(50) && !Has(RandomStatic)) m_script += "$jointcontents " + AnyBone() + " grate\n";
    if (m_dice.Chance(50) && !Has(RandomStatic)) m_script += "$hgroup 3 " + AnyBone() + "\n";
  }
  void Shape() {
    std::vector<std::string> lines = {"$scale 2.5",
                                      "$scale 0.1",
                                      "$origin 4 -2 3",
                                      "$origin 0 0 10 30",
                                      "$upaxis Y",
                                      "$bboxonlyverts",
                                      "$lcaseallsequences",
                                      "$calctransitions",
                                      "$sectionframes 10 20",
                                      "$minlod 1",
                                      "$renamematerial metal \"new metal\"",
                                      "$centerbonesonverts",
                                      "$lockbonelengths",
                                      "$cmdlist turned { reverse fps 12 }",
                                      "$appendblankbodygroup \"Body One\""};
    if (!Has(RandomStatic)) {
      // Merges of joints may name bones that are dropped, which is told again.
      if (!Has(RandomJoints))
        lines.insert(lines.end(), {"$collapsebones", "$alwayscollapse " + AnyBone(), "$root " + AnyBone()});
      lines.insert(lines.end(), {"$hierarchy " + AnyBone() + " \"" + m_bones[0].Name + "\"",
                                 "$renamebone " + AnyBone() + " \"Renamed bone\"", "$screenalign " + AnyBone(),
                                 "$worldalign " + AnyBone(), "$forcerealign " + AnyBone() + " " + AnyBone() + " 0 10 0",
                                 "$defaultweightlist { " + AnyBone() + " 0.5 }"});
    }
    for (const std::string& line : lines) {
      if (m_dice.Chance(15)) m_script += line + "\n";
    }
  }
  void DefineBones() {
    if (Has(RandomStatic)) return;
    for (size_t i = 0; i < m_bones.size(); ++i) {
      const RandomBone& bone = m_bones[i];
      constexpr double Degrees = 57.295779513;
      m_script += "$definebone \"" + bone.Name + "\" \"" +
                  (bone.Parent < 0 ? "" : m_bones[static_cast<size_t>(bone.Parent)].Name) + "\"" +
                  Numbers(bone.Rest[0], bone.Rest[1], bone.Rest[2], bone.Rest[4] * Degrees, bone.Rest[5] * Degrees,
                          bone.Rest[3] * Degrees, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0) +
                  "\n";
    }
    m_script += "$definebone \"Spare bone\" \"\" 1 2 3 40 50 60 0 0 0 0 0 0\n";
  }

  void Bodies() {
    m_script += "$body \"" + Odd("Body One") + "\" \"" + Mesh("ref.smd", 4, 12) + "\"\n";
    if (Has(RandomRepeats)) Repeats();
    if (Has(RandomFace)) Face();
    if (!Has(RandomBodyGroups)) return;
    const int groups = m_dice.From(1, 2);
    for (int group = 0; group < groups; ++group) {
      m_script += "$bodygroup group" + Number(group) + " {\n";
      const int choices = m_dice.From(1, 3);
      for (int i = 0; i < choices; ++i) {
        m_script += "  studio \"" + Mesh("choice" + Number(group) + Number(i) + ".smd", 3, 6) + "\"\n";
        if (m_dice.Chance(40)) m_script += "  blank\n";
      }
      m_script += "}\n";
    }
  }
  void Repeats() {
    m_files["none.smd"] = Nodes() + Rest() + "triangles\nend\n";
    m_script += "$body again \"ref\"\n$bodygroup either {\n  studio \"ref.smd\"\n  studio \"none.smd\"\n" +
                std::string(m_dice.Chance(50) ? "  blank\n" : "") + "}\n";
  }
  void Face() {
    RandomFaceRequest face{m_dice, Has(RandomEyes)};
    Mesh("head.smd", 5, 9, Has(RandomEyes) ? std::vector<std::string>{"Eye_R", "eye_l"} : std::vector<std::string>{});
    face.Vertices = m_meshVertices;
    face.Bone = AnyBone();
    face.Skeleton = Nodes();
    m_script += MakeRandomFace(face, m_files);
  }
  void Skins() {
    m_script += "$texturegroup skinfamilies {\n  { \"Skin\" \"metal\" }\n  { \"Skin_b\" \"metal\" }\n";
    if (m_dice.Chance(50)) m_script += "  { \"Skin_c\" \"glass\" }\n";
    m_script += "}\n";
  }
  void Levels() {
    const int levels = m_dice.From(1, 4);
    for (int i = 1; i <= levels; ++i) {
      m_script += "$lod " + Number(10 * i) + " {\n";
      if (m_dice.Chance(70))
        m_script += "  replacemodel ref.smd \"" + Mesh("ref_lod" + Number(i) + ".smd", 3, 6) + "\"\n";
      if (m_dice.Chance(40) && !Has(RandomStatic))
        m_script += "  replacebone " + AnyBone() + " \"" + m_bones[0].Name + "\"\n";
      if (m_dice.Chance(20) && !Has(RandomStatic)) m_script += "  bonetreecollapse " + AnyBone() + "\n";
      if (m_dice.Chance(40)) m_script += Any({"  nofacial\n", "  facial\n"});
      if (m_dice.Chance(20)) m_script += "  removemesh metal\n";
      if (m_dice.Chance(20)) m_script += "  replacematerial Skin metal\n";
      m_script += "}\n";
    }
    if (m_dice.Chance(30)) m_script += "$shadowlod {\n  replacemodel ref.smd \"" + Mesh("shadow.smd", 3, 4) + "\"\n}\n";
  }
  void Attachments() {
    for (int i = m_dice.From(1, 5); i > 0; --i) {
      m_script += "$attachment \"" + Odd("At " + Number(i)) + "\" " + AnyBone() +
                  Numbers(m_dice.Real(-9, 9), m_dice.Real(-9, 9), 0.5);
      if (m_dice.Chance(30)) m_script += Any({" absolute", " rigid", " world_align", " x_and_z_axes 1 0 0 0 1 0.5"});
      if (m_dice.Chance(60)) {
        m_script += " rotate" + Numbers(m_dice.Chance(20) ? 90 : m_dice.Real(-89, 89), m_dice.Real(-180, 180),
                                        m_dice.Real(-180, 180));
      }
      m_script += "\n";
    }
  }
  void Hitboxes() {
    for (const char* set : {"default", "Second"}) {
      m_script += "$hboxset \"" + Odd(set) + "\"\n";
      for (int i = m_dice.From(0, 4); i > 0 && !Has(RandomStatic); --i) {
        m_script += "$hbox " + Number(m_dice.Below(8)) + " " + AnyBone() +
                    Numbers(-m_dice.Real(1, 5), -2.0, -3.5, 2.0, m_dice.Real(1, 5), 3.0) + "\n";
      }
      if (m_dice.Chance(50)) return;
    }
  }
  void Chains() {
    if (Has(RandomStatic)) return;
    m_script += "$ikchain \"" + Odd("Foot one") + "\" \"" + m_bones[2].Name + "\" knee 0.707 -0.707 0\n";
    m_script += "$ikchain hand \"" + m_bones[3].Name + "\"\n$ikautoplaylock hand 1 0.1\n";
  }
  void Procedures() {
    const auto last = m_bones.size() - 1;
    m_script += "$jigglebone \"" + m_bones[last].Name + "\" {\n  is_flexible {\n    length " +
                Numbers(m_dice.Real(5, 40)) +
                "\n    tip_mass 20\n    yaw_stiffness 120\n    yaw_damping 3\n    angle_constraint 45\n    "
                "yaw_constraint -20 30\n"
                "  }\n";
    if (m_dice.Chance(50))
      m_script +=
          "  has_base_spring {\n    base_mass 5\n    stiffness 90\n    left_constraint -2 3\n    up_friction 1\n  }\n";
    m_script += "}\n";
    if (last > 1 && m_dice.Chance(60)) {
      m_script +=
          "$jigglebone \"" + m_bones[last - 1].Name + "\" {\n  is_rigid {\n    length 12 tip_mass 3\n" +
          "    pitch_stiffness 80 pitch_damping 2 pitch_constraint -10 25 pitch_friction 0.5 pitch_bounce 0.25\n" +
          "    yaw_friction 0.125 yaw_bounce 0.75\n  }\n}\n";
    }
    if (last > 2 && m_dice.Chance(60)) {
      m_script +=
          "$jigglebone \"" + m_bones[last - 2].Name + "\" {\n  is_flexible {\n    length 30 tip_mass 5\n" +
          "    allow_length_flex along_stiffness 70 along_damping 4\n    pitch_stiffness 90 pitch_damping 8\n  }\n" +
          "  has_base_spring {\n    stiffness 60 damping 2 forward_constraint -3 5 forward_friction 2\n" +
          "    up_constraint -1 1 left_friction 0.5\n  }\n}\n";
    }
    if (last < 3) return;
    m_script += "$proceduralbones \"driven.vrd\"\n";
    m_files["driven.vrd"] =
        "<helper> \"" + m_bones[1].Name + "\" \"" + Parent(1) + "\" \"" + Parent(2) + "\" \"" + m_bones[2].Name +
        "\"\n<basepos> 1 2 3\n<trigger> 90 0 0 0 10 20 30 0 0 0\n<trigger> 45 10 20 30 0 0 0 1 0 -1\n";
  }
  std::string Parent(size_t bone) const {
    return m_bones[bone].Parent < 0 ? "" : m_bones[static_cast<size_t>(m_bones[bone].Parent)].Name;
  }
  void WeightLists() {
    if (Has(RandomStatic)) return;
    m_script += "$weightlist \"" + Odd("upper") + "\" {";
    for (const RandomBone& bone : m_bones) {
      if (m_dice.Chance(60))
        m_script += " \"" + bone.Name + "\"" + Numbers(m_dice.Chance(50) ? 1.0 : m_dice.Real(0, 1));
    }
    m_script += " }\n";
  }

  /// Frames that wander away from the rest pose.
  std::string Animation(const std::string& name, int frames, bool big) {
    std::string text = Nodes() + "skeleton\n";
    std::vector<std::array<double, 6>> slope(m_bones.size());
    for (auto& bone : slope) {
      const bool still = m_dice.Chance(40);
      for (size_t axis = 0; axis < 6; ++axis) {
        bone[axis] =
            still || m_dice.Chance(30) ? 0 : m_dice.Real(-1, 1) * (axis < 3 ? (big ? 300 : 10) : (big ? 3 : 0.3));
      }
    }
    // Half and quarter turns are what authors type.
    std::vector<std::array<double, 6>> turn(m_bones.size());
    for (auto& bone : turn) {
      if (m_dice.Chance(20)) bone[static_cast<size_t>(m_dice.From(3, 5))] = m_dice.From(-2, 2) * 1.570796;
    }
    for (int frame = 0; frame < frames; ++frame) {
      text += "time " + Number(frame) + "\n";
      for (size_t i = 0; i < m_bones.size(); ++i) {
        std::array<double, 6> pose = m_bones[i].Rest;
        const double t = frames == 1 ? 0.3 : std::sin(3.0 * frame / frames);
        for (size_t axis = 0; axis < 6; ++axis) pose[axis] += slope[i][axis] * t + turn[i][axis];
        text += PoseLine(i, pose);
      }
    }
    m_files[name] = text + "end\n";
    return name;
  }
  /// Words that make other frames of those of a file.
  std::string Reshaping(int frames) {
    if (frames < 8 || m_dice.Chance(60)) return {};
    return " " +
           Any({"reverse", "frames 1 6", "startloop 3", "scale 1.5", "rotate 30", "origin 1 2 3", "angles 10 20 30",
                "counterrotate " + AnyBone(), "lineardelta", "splinedelta", "fixuploop -2 2", "fudgeloop",
                "numframes 7", "noanimation", "subtract \"Idle one\" 0 delta", "presubtract \"Idle one\" 0"});
  }
  void Sequences() {
    m_script += "$sequence \"Idle one\" \"ref.smd\" fps " + Number(m_dice.From(1, 60)) + "\n";
    if (Has(RandomAnimations)) {
      for (int i = m_dice.From(1, 3); i > 0; --i) {
        const int frames = Has(RandomLongAnimations) && m_dice.Chance(60) ? m_dice.From(119, 200) : m_dice.From(1, 40);
        m_script += "$sequence \"" + Odd("move" + Number(i)) + "\" \"" +
                    Animation("move " + Number(i) + ".smd", frames, m_dice.Chance(30)) + "\"";
        m_script += Reshaping(frames) + (m_dice.Chance(50) ? " loop" : "");
        m_script += m_dice.Chance(30) ? " snap" : "";
        m_script += m_dice.Chance(30) ? " noanimblock" : "";
        m_script += m_dice.Chance(30) ? " fadein 0.5 fadeout 0\n" : "\n";
      }
    }
    if (Has(RandomTravel)) {
      m_script += "$sequence walk \"" + Animation("walk.smd", 21, false) +
                  "\" { walkframe 9 LX LY walkframe 20 LX LY LZ fps 20 }\n";
      m_script += "$sequence run \"" + Animation("run.smd", 11, false) + "\" X Y\n";
    }
    if (Has(RandomDeltas)) {
      m_script += "$animation base_pose \"ref.smd\"\n";
      m_script += "$sequence gesture \"" + Animation("gesture.smd", m_dice.From(2, 12), m_dice.Chance(20)) +
                  "\" subtract gesture 0 delta\n";
      m_script += "$sequence layer_over \"" + Animation("over.smd", m_dice.From(1, 12), false) +
                  "\" subtract \"Idle one\" 0 " +
                  Any({"delta autoplay", "predelta", "delta realtime", "delta hidden"}) + "\n";
    }
    if (Has(RandomGrids)) Grids();
    if (Has(RandomIk) && !Has(RandomStatic)) {
      m_script += "$sequence stand \"" + Animation("stand.smd", 11, false) + "\" {\n  ikrule \"" + Odd("Foot one") +
                  "\" touch \"\" range 0 2 8 10" + Any({"", " contact 5", " height 3 floor -1.5 radius 2"}) +
                  "\n  ikrule hand release\n  ikrule hand touch " + AnyBone() + Any({"", " range 3 4 9 13"}) +
                  Any({"", "\n  noautoik"}) + "\n}\n";
    }
    if (Has(RandomWords)) Words();
  }
  void Grids() {
    for (const char* name : {"a", "b", "c", "d", "e", "f"}) {
      m_script += std::string("$animation grid_") + name + " \"" +
                  Animation(std::string("grid_") + name + ".smd", 5, false) + "\"" +
                  (m_dice.Chance(30) ? " fps 12" : "") + "\n";
    }
    m_script +=
        "$sequence grid3 {\n  grid_a grid_b grid_c\n  blend \"aim yaw\" -30 60\n  activity ACT_RANDOM 2\n}\n"
        "$sequence grid32 {\n  grid_a grid_b grid_c grid_d grid_e grid_f\n  blendwidth 3\n  blend \"aim yaw\" -60 60\n"
        "  blend aim_pitch 45 -90\n}\n$sequence grid4 { grid_a grid_c grid_e grid_f blend aim_pitch -9 9 blend \"aim "
        "yaw\" 0 1 }\n";
  }
  void Words() {
    m_script += "$sequence talk \"" + Animation("talk.smd", m_dice.From(1, 20), false) + "\" {\n";
    const std::vector<std::string> lines = {"{ event AE_CL_PLAYSOUND 0 \"Crane.Hum\" }",
                                            "{ event 5001 1 \"12\" }",
                                            "activity ACT_TALK 3",
                                            "node \"" + Odd("Stand") + "\"",
                                            "addlayer \"Idle one\"",
                                            "blendlayer \"Idle one\" 0 1 2 3",
                                            "fadein 1.5",
                                            "activitymodifier fast",
                                            "blendlayer \"Idle one\" 1 2.5 3 3 local",
                                            "keyvalues { faceposer { type \"a b\" } }",
                                            "exitphase 0.25",
                                            Has(RandomGrids) ? "posecycle \"aim yaw\"" : "realtime",
                                            "snap"};
    for (const std::string& line : lines) {
      if (m_dice.Chance(60)) m_script += "  " + line + "\n";
    }
    if (!Has(RandomStatic) && m_dice.Chance(60)) m_script += "  weightlist \"" + Odd("upper") + "\"\n";
    if (Has(RandomIk) && !Has(RandomStatic)) m_script += "  iklock hand 1 0.25\n";
    m_script += "}\n$sequence step \"ref.smd\" transition \"" + Odd("Stand") +
                "\" Sit\n$sequence back \"ref.smd\" rtransition Sit \"Lie down\"\n";
  }

  void Collision() {
    const bool joints = Has(RandomJoints) && !Has(RandomStatic);
    const bool ofBone = Has(RandomJoints) && Has(RandomStatic);
    std::string triangles;
    const size_t solids = joints ? m_bones.size() : static_cast<size_t>(m_dice.From(1, 4));
    for (size_t i = 0; i < solids; ++i) {
      const double x = m_dice.Real(-20, 20), y = m_dice.Real(-20, 20), s = m_dice.Real(1, 8);
      const auto corner = [&](int c) {
        const double dx = (c & 1) != 0 ? 1 : -1, dy = (c & 2) != 0 ? 1 : -1, dz = (c & 4) != 0 ? 1 : -1;
        return (joints ? std::to_string(i) : "0") +
               Numbers(x + s * dx, y + s * dy * 1.5, 9 + s * dz, dx * 0.57735, dy * 0.57735, dz * 0.57735, 0.0, 0.0) +
               "\n";
      };
      static constexpr int Faces[12][3] = {{0, 2, 1}, {1, 2, 3}, {4, 5, 6}, {5, 7, 6}, {0, 1, 4}, {1, 5, 4},
                                           {2, 6, 3}, {3, 6, 7}, {0, 4, 2}, {2, 4, 6}, {1, 3, 5}, {3, 7, 5}};
      for (const auto& face : Faces) triangles += "phys\n" + corner(face[0]) + corner(face[1]) + corner(face[2]);
    }
    const bool shown = !joints && Has(RandomRepeats);
    if (!shown) m_files["hull.smd"] = Nodes() + Rest() + "triangles\n" + triangles + "end\n";
    m_script += std::string(joints || ofBone ? "$collisionjoints" : "$collisionmodel") +
                (shown ? " \"ref.smd\"" : " \"hull.smd\"") + " {\n  $mass " + Numbers(m_dice.Real(1, 200)) + "\n";
    if (!joints && m_dice.Chance(60)) m_script += "  $concave\n";
    if (joints && m_dice.Chance(30)) m_script += Any({"  $concaveperjoint\n", "  $noselfcollisions\n", "  $concave\n"});
    if (!joints && m_dice.Chance(20)) m_script += "  $masscenter 1 2 3\n";
    if (m_dice.Chance(10)) m_script += "  $maxconvexpieces 40\n";
    if (m_dice.Chance(50)) m_script += "  $inertia 2\n  $damping 0.1\n  $rotdamping 1.5\n";
    if (joints) {
      m_script += "  $rootbone \"" + m_bones[0].Name + "\"\n";
      for (size_t i = 1; i < m_bones.size(); ++i) {
        if (m_dice.Chance(50))
          m_script += "  $jointconstrain \"" + m_bones[i].Name + "\" " + Any({"x", "y", "z"}) +
                      Any({" limit -30 45.5 0.2", " free 0 0 0", " fixed 0 0 0"}) + "\n";
        if (m_dice.Chance(20)) m_script += "  $jointmassbias \"" + m_bones[i].Name + "\" 2\n";
        if (m_dice.Chance(10)) m_script += "  $jointinertia \"" + m_bones[i].Name + "\" 1.5\n";
        if (m_dice.Chance(10)) m_script += "  $jointdamping \"" + m_bones[i].Name + "\" 0.25\n";
        if (m_dice.Chance(5)) m_script += "  $jointskip \"" + m_bones[i].Name + "\"\n";
        if (m_dice.Chance(20)) m_script += "  $jointrotdamping \"" + m_bones[i].Name + "\" 0.75\n";
      }
      if (m_bones.size() > 2 && m_dice.Chance(50))
        m_script += "  $jointmerge \"" + m_bones[0].Name + "\" \"" + m_bones[2].Name + "\"\n";
      if (m_bones.size() > 3 && m_dice.Chance(50))
        m_script += "  $jointcollide \"" + m_bones[0].Name + "\" \"" + m_bones[3].Name + "\"\n";
      if (m_dice.Chance(50)) m_script += "  $animatedfriction 1 400 0.5 0.3 0\n";
    }
    m_script += "}\n";
    if (m_dice.Chance(30)) m_script += "$collisiontext { break { model \"props/a b.mdl\" health 10 fadetime 2.5 } }\n";
  }

  Dice m_dice;
  uint32_t m_things;
  std::string m_odd;
  std::vector<RandomBone> m_bones;
  std::vector<RandomVertex> m_meshVertices;
  std::string m_script;
  std::map<std::string, std::string> m_files;
};

}  // namespace

std::map<std::string, std::string> RandomSources(uint32_t seed, uint32_t things) {
  return Maker(seed, things).Make();
}

}  // namespace tarnwick::tests
