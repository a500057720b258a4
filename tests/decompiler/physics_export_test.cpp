#include <gmock/gmock.h>

#include <cmath>
#include <map>
#include <numeric>

#include "decompiled_model.h"
#include "model/animation_records.h"
#include "model/phy_solid.h"
#include "model/rigid_transform.h"
#include "support/smd_reader.h"
#ifdef TARNWICK_HULLS
#include "model/convex_hull.h"
#endif

// The physics file of a model as sources from which a compile makes the same.

namespace tarnwick::decompiler {
namespace {

using namespace tests;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

DecompiledModel Ready(const ModelBuilder& model, uint32_t more = 0) {
  return DecompiledModel(model, DecompileOptionReadyToCompile | more);
}

/// The statements of the physics, which end the script.
std::string Statements(const DecompiledModel& job) {
  const std::string script = job.File("ravelback.qc");
  const size_t begin = script.find("$collision");
  return begin == std::string::npos ? "" : script.substr(begin);
}

/// A piece as a compile finds it: triangles joined by vertices of one place and normal.
struct FoundPiece {
  int Bone = 0;
  std::vector<std::array<Vec3, 3>> Triangles;
};

std::vector<FoundPiece> PiecesOf(const SmdFile& smd) {
  std::map<std::array<double, 6>, size_t> firstWith;
  std::vector<size_t> set(smd.Triangles.size());
  std::iota(set.begin(), set.end(), size_t{0});
  const auto root = [&](size_t i) {
    while (set[i] != i) i = set[i];
    return i;
  };
  for (size_t i = 0; i < set.size(); ++i) {
    for (const SmdVertex& corner : smd.Triangles[i].Corners) {
      std::array<double, 6> key{};
      std::copy_n(corner.Values.begin(), 6, key.begin());
      const auto [entry, isNew] = firstWith.try_emplace(key, i);
      if (!isNew) set[std::max(root(i), root(entry->second))] = std::min(root(i), root(entry->second));
    }
  }
  std::map<size_t, FoundPiece> pieces;
  for (size_t i = 0; i < set.size(); ++i) {
    FoundPiece& piece = pieces[root(i)];
    std::array<Vec3, 3> triangle;
    for (size_t k = 0; k < 3; ++k) {
      const SmdVertex& corner = smd.Triangles[i].Corners[k];
      piece.Bone = corner.Bone;
      triangle[k] = {static_cast<float>(corner.Values[0]), static_cast<float>(corner.Values[1]),
                     static_cast<float>(corner.Values[2])};
    }
    piece.Triangles.push_back(triangle);
  }
  std::vector<FoundPiece> found;
  for (auto& [number, piece] : pieces) found.push_back(std::move(piece));
  return found;
}

/// The farthest that a corner of `piece`, put back by `toSolid`, lies from where the solid has it, in metres.
double FarthestFrom(const PhySolid& solid, const PhyPiece& piece, const FoundPiece& found,
                    const RigidTransform& toSolid) {
  EXPECT_EQ(piece.Triangles.size(), found.Triangles.size());
  double farthest = 0;
  for (size_t i = 0; i < std::min(piece.Triangles.size(), found.Triangles.size()); ++i) {
    for (size_t k = 0; k < 3; ++k) {
      const Vec3 is = ModelToPhy(toSolid.Apply(found.Triangles[i][k]));
      const Vec3 was = solid.Points[piece.Triangles[i][k]];
      farthest =
          std::max<double>({farthest, std::fabs(is.x - was.x), std::fabs(is.y - was.y), std::fabs(is.z - was.z)});
    }
  }
  return farthest;
}

#ifdef TARNWICK_HULLS
/// The corners of the hull round a piece as places, sorted.
std::vector<std::array<float, 3>> HullCorners(const FoundPiece& piece) {
  std::vector<Vec3> points;
  for (const auto& triangle : piece.Triangles) points.insert(points.end(), triangle.begin(), triangle.end());
  std::vector<std::array<float, 3>> corners;
  for (const PhyCorners& triangle : ConvexHull(points).value_or(std::vector<PhyCorners>{})) {
    for (const uint16_t corner : triangle) corners.push_back({points[corner].x, points[corner].y, points[corner].z});
  }
  std::sort(corners.begin(), corners.end());
  corners.erase(std::unique(corners.begin(), corners.end()), corners.end());
  return corners;
}
#endif

PhySolidDescription Solid(const std::string& bone, const std::string& parent, const BoxDescription& box) {
  return {.Values = {.Name = bone, .Parent = parent, .SurfaceProp = "metal"}, .Boxes = {box}};
}

/// A chain of three turned bones with a box on each.
ModelBuilder Crane() {
  ModelBuilder model{.Name = "props/crane.mdl",
                     .Bones = {{.Name = "base", .Position = {1, 2, 3}, .Angles = {0.3f, -0.2f, 1.1f}},
                               {.Name = "arm", .Parent = 0, .Position = {10, 0, 5}, .Angles = {0, 0.7f, 0}},
                               {.Name = "hook", .Parent = 1, .Position = {40, 1, -3}, .Angles = {-2, 0.1f, 0.4f}}}};
  model.Physics = PhyBuilder{
      .Solids = {Solid("base", "", {{-4, -4, -4}, {4, 4, 4}}), Solid("arm", "base", {{-2, -2, -2}, {2, 30, 2}}),
                 Solid("hook", "arm", {{0, 0, 0}, {3, 5, 7}})},
      .SharesMass = true};
  PhyValues& values = model.Physics->Values;
  values.TotalMass = 3;
  values.Constraints = {{0, 1, {{{-10, 20, 0.2f}, {0, 0, 0}, {-360, 360, 0}}}}, {1, 2, {}}};
  return model;
}

TEST(PhysicsExport, PutsJoinedSolidsOnTheirBonesAtRestAndBack) {
  const ModelBuilder model = Crane();
  const DecompiledModel job = Ready(model);
  EXPECT_TRUE(job.Result.Succeeded()) << job.Report.LogText;
  const SmdFile smd = ReadSmd(job.File("crane.smd"));
  EXPECT_EQ(smd.Problem, "");
  EXPECT_EQ(smd.Nodes.size(), 3u);
  const std::vector<FoundPiece> pieces = PiecesOf(smd);
  ASSERT_EQ(pieces.size(), 3u);
  RigidTransform rest;
  for (size_t i = 0; i < 3; ++i) {
    rest = rest * RigidTransform::Of(model.Bones[i].Angles, model.Bones[i].Position);
    const PhySolid solid = BoxSolid(model.Physics->Solids[i].Boxes);
    EXPECT_EQ(pieces[i].Bone, static_cast<int>(i));
    EXPECT_LT(FarthestFrom(solid, solid.Pieces[0], pieces[i], rest.Inverse()), 1e-6);
#ifdef TARNWICK_HULLS
    EXPECT_EQ(HullCorners(pieces[i]).size(), 8u);
#endif
  }
  EXPECT_EQ(Statements(job),
            "$collisionjoints \"crane.smd\" {\n\t$mass 3\n\t$inertia 1\n\t$damping 0\n\t$rotdamping 0\n"
            "\t$jointconstrain \"arm\" x limit -10 20 1\n\t$jointconstrain \"arm\" y limit 0 0 0\n"
            "\t$jointconstrain \"arm\" z limit -360 360 0\n\t$jointconstrain \"hook\" x limit 0 0 0\n"
            "\t$jointconstrain \"hook\" y limit 0 0 0\n\t$jointconstrain \"hook\" z limit 0 0 0\n}\n");
  EXPECT_THAT(job.Result.Lost, IsEmpty());
}

TEST(PhysicsExport, SaysWhatEachJointHas) {
  ModelBuilder model = Crane();
  PhyBuilder& physics = *model.Physics;
  physics.Solids[1].Values.Damping = 0.25f;
  physics.Solids[2].Values.Inertia = 1e-5f;
  physics.Solids[0].Values.RotationDamping = 2;
  physics.Solids[2].Values.MassBias = 1.5f;
  physics.Values.RootName = "BASE";
  physics.Values.JointMerges = {{"base", "arm bone"}};
  physics.Values.CollisionPairs = {{0, 2}};
  physics.Values.NoSelfCollisions = true;
  physics.Values.AnimatedFriction = PhyAnimatedFriction{1, 400, 0.5f, 0.25f, 0.125f};
  const DecompiledModel job = Ready(model);
  EXPECT_THAT(Statements(job),
              AllOf(HasSubstr("\t$jointdamping \"arm\" 0.25\n"), HasSubstr("\t$jointinertia \"hook\" 0.00001\n"),
                    HasSubstr("\t$jointrotdamping \"base\" 2\n"), HasSubstr("\t$jointmassbias \"hook\" 1.5\n"),
                    HasSubstr("\t$rootbone \"BASE\"\n"), HasSubstr("\t$jointmerge \"base\" \"arm bone\"\n"),
                    HasSubstr("\t$jointcollide \"base\" \"hook\"\n"), HasSubstr("\t$noselfcollisions\n"),
                    HasSubstr("\t$animatedfriction 1 400 0.5 0.25 0.125\n")));
}

TEST(PhysicsExport, NamesJointsInTheOrderOfTheSolids) {
  ModelBuilder model = Crane();
  PhyBuilder& physics = *model.Physics;
  std::swap(physics.Solids[1], physics.Solids[2]);
  physics.Values.Constraints = {};
  const DecompiledModel job = Ready(model);
  EXPECT_THAT(Statements(job), HasSubstr("\t$jointmassbias \"base\" 1\n\t$jointmassbias \"hook\" 1\n"
                                         "\t$jointmassbias \"arm\" 1\n"));
  EXPECT_THAT(job.Result.Lost, ElementsAre(LostKind{"physics solids without a constraint", 2}));
  // By itself a compile takes the order of the bones.
  std::swap(physics.Solids[1], physics.Solids[2]);
  EXPECT_THAT(Statements(Ready(model)), Not(HasSubstr("$jointmassbias")));
}

TEST(PhysicsExport, PutsTheSolidOfAWholeModelWhereItIsTyped) {
  const BoxDescription box = {{1, 2, 3}, {11, 22, 33}};
  const PhySolid solid = BoxSolid({box});
  const RigidTransform turn = RigidTransform::QuarterTurn();
  ModelBuilder model;
  model.Physics = PhyBuilder{.Solids = {Solid("phys", "", box)}};
  struct Case {
    const char* What;
    ModelBuilder Model;
    RigidTransform ToSolid;
  };
  std::vector<Case> cases;
  cases.push_back({"without an animation", model, turn});
  cases.push_back({"static", model, turn});
  cases.back().Model.Flags = ModelFlagStatic;
  // The root is posed by a quarter turn and moved: whatever it is, the pose puts the points back.
  model.Bones = {{.Name = "root", .Position = {3, 0, 1}, .Angles = {0.4f, 0, 0.5f}}};
  BoneAnimDescription posed{.Bone = 0};
  posed.RawPosition = {{7, -2, 5}};
  model.Animations = {{.Name = "@idle", .FrameCount = 1, .Data = {.Bones = {posed}}}};
  model.Sequences = {{.Label = "idle", .Blends = {0}}};
  const RigidTransform rest = RigidTransform::Of(model.Bones[0].Angles, model.Bones[0].Position);
  cases.push_back({"posed", model, RigidTransform::Of(model.Bones[0].Angles, {7, -2, 5}) * rest.Inverse()});
  for (const Case& each : cases) {
    const DecompiledModel job = Ready(each.Model);
    EXPECT_EQ(Statements(job).find("$collisionmodel \"phys.smd\" {\n\t$mass 1\n"), 0u) << each.What;
    const std::vector<FoundPiece> pieces = PiecesOf(ReadSmd(job.File("phys.smd")));
    ASSERT_EQ(pieces.size(), 1u) << each.What;
    EXPECT_LT(FarthestFrom(solid, solid.Pieces[0], pieces[0], each.ToSolid), 2e-6) << each.What;
  }
}

TEST(PhysicsExport, KnowsWhoseBodyASingleSolidIs) {
  const BoxDescription box = {{1, 2, 3}, {11, 22, 33}};
  ModelBuilder model;
  model.Bones = {{.Name = "static_prop"}};
  model.Physics = PhyBuilder{.Solids = {Solid("static_prop", "", box)}};
  EXPECT_EQ(Statements(Ready(model)).find("$collisionmodel \"static_prop.smd\""), 0u) << "no piece has a bone's number";
  // A static model is turned with all that belongs to its bone.
  model.Flags = ModelFlagStatic;
  model.Physics->Solids[0].BoneNumber = 1;
  const DecompiledModel job = Ready(model);
  const std::string statements = Statements(job);
  EXPECT_EQ(statements.find("$collisionjoints \""), 0u);
  const size_t name = statements.find('"') + 1;
  const auto pieces = PiecesOf(ReadSmd(job.File(statements.substr(name, statements.find('"', name) - name))));
  ASSERT_EQ(pieces.size(), 1u);
  const PhySolid solid = BoxSolid({box});
  EXPECT_LT(FarthestFrom(solid, solid.Pieces[0], pieces[0], RigidTransform::QuarterTurn()), 2e-6);
}

TEST(PhysicsExport, KeepsPiecesApartThatTouchEachOther) {
  ModelBuilder model;
  PhySolidDescription row{.Boxes = {}};
  for (int i = 0; i < 4; ++i)
    row.Boxes.push_back({{4.0f * static_cast<float>(i), 0, 0}, {4.0f * static_cast<float>(i + 1), 4, 4}});
  // Two boxes that share a corner and the line from it through both their middles.
  row.Boxes.push_back({{0, 0, 0}, {2, 2, 2}});
  row.Boxes.push_back({{0, 0, 0}, {4, 4, 4}});  // a copy of the first
  model.Physics = PhyBuilder{.Solids = {row}, .Values = {.IsConcave = true}};
  const DecompiledModel job = Ready(model);
  const std::vector<FoundPiece> pieces = PiecesOf(ReadSmd(job.File("phys.smd")));
  ASSERT_EQ(pieces.size(), 5u);
  for (const FoundPiece& piece : pieces) EXPECT_EQ(piece.Triangles.size(), 12u);
  EXPECT_THAT(Statements(job), HasSubstr("\t$concave\n"));
  EXPECT_THAT(job.Result.Lost, Contains(LostKind{"copies of physics pieces", 1}));
}

TEST(PhysicsExport, NamesTheFileByWhatTheSolidOrTheModelIsCalled) {
  ModelBuilder model{.BodyParts = {{.Models = {{.Name = "phys.smd"}}}}};
  model.Physics = PhyBuilder{};
  const DecompiledModel taken = Ready(model);
  EXPECT_THAT(Statements(taken), HasSubstr("$collisionmodel \"phys.phys\""));
  EXPECT_THAT(taken.Files(), Contains("phys.phys"));
  EXPECT_THAT(taken.Result.Lost, testing::IsEmpty());
  model.Physics->Solids[0].Values.Name = "..\\a b/c:d";
  const DecompiledModel hostile = Ready(model);
  EXPECT_THAT(Statements(hostile), HasSubstr("$collisionmodel \"c_d.smd\""));
  EXPECT_THAT(hostile.Files(), Contains("c_d.smd"));
}

TEST(PhysicsExport, PassesOtherBlocksThrough) {
  ModelBuilder model;
  model.Physics = PhyBuilder{};
  model.Physics->Tail =
      "break {\"model\" \"a b.mdl\" \"health\" \"5\"  }\neditparams {\n\"totalmass\" \"9\"\n}\nouter { inner { x y } }";
  const DecompiledModel job = Ready(model);
  EXPECT_THAT(Statements(job),
              HasSubstr("$collisiontext {\n\tbreak {\n\t\t\"model\" \"a b.mdl\"\n\t\t\"health\" \"5\"\n\t}\n"
                        "\teditparams {\n\t\t\"totalmass\" \"9\"\n\t}\n\touter {\n\t\tinner {\n"
                        "\t\t\t\"x\" \"y\"\n\t\t}\n\t}\n}\n"));
  EXPECT_THAT(Statements(job), HasSubstr("\t$mass 1\n"));
}

TEST(PhysicsExport, IsLeftOutOnWishAndInThePlainForm) {
  const ModelBuilder model = Crane();
  for (const uint32_t options : {0u, DecompileOptionReadyToCompile | DecompileOptionNoPhysics}) {
    const DecompiledModel job(model, options);
    EXPECT_EQ(Statements(job), "");
    EXPECT_THAT(job.Report.LogText, Not(HasSubstr(".phy")));
    EXPECT_THAT(job.Files(), Not(Contains("crane.smd")));
  }
}

TEST(PhysicsExport, WarnsOfAForeignFileAndOfBonesThatAreNotThere) {
  ModelBuilder model = Crane();
  model.Physics->Checksum = 77;
  model.Physics->Solids[2].Values.Name = "tail";
  const DecompiledModel job = Ready(model);
  EXPECT_TRUE(job.Result.Succeeded());
  std::vector<std::string> told;
  for (const core::Trouble& trouble : job.Result.Told(core::Severity::Warning)) told.push_back(trouble.Text);
  EXPECT_THAT(told, AllOf(Contains(HasSubstr("different checksums); the physics may be wrong")),
                          Contains(HasSubstr("belongs to \"tail\", a bone that the model has not"))));
  EXPECT_EQ(PiecesOf(ReadSmd(job.File("crane.smd"))).back().Bone, 0);
}

TEST(PhysicsExport, ADamagedSolidCostsThatSolidAndTheScriptSaysSo) {
  ModelFiles files = Crane().Build();
  const size_t second = files.Phy.find("VPHY", files.Phy.find("VPHY") + 1);
  files.Phy[second] = 'X';
  const DecompiledModel job(files, DecompileOptionReadyToCompile);
  EXPECT_FALSE(job.Result.Succeeded());
  EXPECT_THAT(job.Report.LogText, HasSubstr("solid 1: it has not the tag VPHY"));
  EXPECT_THAT(job.File("ravelback.qc"), HasSubstr("// physics solid 1 is left out, since it cannot be read\n"));
  EXPECT_THAT(Statements(job), AllOf(Not(HasSubstr("\"arm\" x")), HasSubstr("\"hook\" x")));
  EXPECT_EQ(PiecesOf(ReadSmd(job.File("crane.smd"))).size(), 2u);
  EXPECT_THAT(job.Result.Lost, Contains(LostKind{"physics solids that cannot be read", 1}));

  files.Phy.resize(20);
  const DecompiledModel cut(files, DecompileOptionReadyToCompile);
  EXPECT_FALSE(cut.Result.Succeeded());
  EXPECT_THAT(cut.File("ravelback.qc"), HasSubstr("// the physics file cannot be read\n"));
  EXPECT_EQ(Statements(cut), "");
}

TEST(PhysicsExport, CountsWhatNoStatementSays) {
  ModelBuilder model = Crane();
  PhyBuilder& physics = *model.Physics;
  physics.Solids[2].Values.Parent = "base";
  physics.Solids[1].Values.SurfaceProp = "wood";
  physics.Solids[0].Values.Mass = 50;
  physics.SharesMass = false;
  const DecompiledModel job = Ready(model);
  EXPECT_THAT(job.Result.Lost, testing::UnorderedElementsAre(
                                   LostKind{"parents of physics solids", 1},
                                   LostKind{"surface properties of physics solids that their bones do not have", 1},
                                   LostKind{"masses of physics solids that do not follow from their volumes", 2}));
}

}  // namespace
}  // namespace tarnwick::decompiler
