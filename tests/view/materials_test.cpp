#include <gmock/gmock.h>

#include <algorithm>
#include "support/recording_troubles.h"
#include "support/scratch_folder.h"
#include "support/vtf_builder.h"
#include "view/materials/material_loader.h"
#include "view/materials/material_text.h"

namespace tarnwick::view {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using tests::VtfBuilder;
using textures::PixelFormat;

/// A texture of one colour.
std::string Plain(int side, char red, char green, char blue, char alpha) {
  std::string pixels;
  for (int i = 0; i < side * side; ++i) pixels += {red, green, blue, alpha};
  return VtfBuilder().Size(side, side).Format(PixelFormat::Rgba8888).Pixels(pixels).Build();
}

class Materials : public testing::Test {
 protected:
  void Write(const std::string& name, const std::string& text) { tests::WriteText(m_folder.Path(name), text); }
  /// Loads the one material `name` of a model in `models/props`.
  Material Load(const std::string& name, const std::vector<std::string>& directories = {"models\\props\\"}) {
    const archives::ContentFiles content(m_game, m_troubles);
    m_set = LoadMaterials({name}, directories, {content, m_folder.Path("mod/models/props/crate.mdl")}, m_cache);
    for (MissingFile& missing : m_set.Missing) {
      for (std::string& path : missing.Tried) std::replace(path.begin(), path.end(), '\\', '/');
    }
    return m_set.Materials.at(0);
  }

  tests::ScratchFolder m_folder;
  tests::RecordingTroubles m_troubles;
  std::string m_game;
  TextureCache m_cache;
  MaterialSet m_set;
};

TEST_F(Materials, SaysWhatTheFileSaysWithTheFilesOfAnyCase) {
  Write("mod/Materials/Models/Props/CRATE.vmt", R"("VertexLitGeneric" {
    $baseTexture "models\\PROPS/Wood"   "$alphatest" 1  $AlphaTestReference .25
    "$nocull" "1" $selfillum 1 "$color" "{255 0 51}" $color2 "[.5 1 1]" $phong 1 $phongexponent 9
    "$translucent" "1" [$X360]
    ">=DX90" { "$bumpmap" "models/props/wood_n" }
    Proxies { Sine { "$additive" 1 } } )");
  Write("mod/Materials/models/props/wood.vtf", Plain(4, 10, 20, 30, 40));
  Write("mod/Materials/models/props/wood_n.vtf", Plain(4, 127, 127, -1, -1));
  const Material crate = Load("crate.bmp");
  EXPECT_THAT(m_set.Missing, IsEmpty());
  EXPECT_FALSE(crate.Missing);
  EXPECT_EQ(DecodedLevel(crate.Base->Levels[0]).Pixels[0], (textures::Bgra{30, 20, 10, 40}));
  ASSERT_NE(crate.Bump, nullptr);
  EXPECT_TRUE(crate.AlphaTest && crate.NoCull && crate.SelfIllum && crate.Phong);
  EXPECT_FALSE(crate.Translucent || crate.Additive || crate.Blended());
  EXPECT_EQ(crate.AlphaTestReference, 0.25f);
  EXPECT_EQ(crate.PhongExponent, 9);
  EXPECT_THAT(crate.Colour, ElementsAre(0.5f, 0, 0.2f));
}

TEST_F(Materials, AreSoughtBesideTheModelsFolderThenInTheGame) {
  m_game = m_folder.Path("game");
  Write("game/gameinfo.txt", "GameInfo { FileSystem { SearchPaths { game |gameinfo_path|. } } }");
  Write("mod/materials/models/props/a.vmt", "UnlitGeneric { $basetexture tex/a }");
  Write("game/materials/b.vmt", "UnlitGeneric { $basetexture tex/a }");
  Write("mod/materials/tex/a.vtf", Plain(1, 1, 1, 1, -1));
  Write("game/materials/tex/a.vtf", Plain(1, 2, 2, 2, -1));
  EXPECT_EQ(DecodedLevel(Load("a").Base->Levels[0]).Pixels[0].R, 1) << "the game knows nothing of this folder";
  EXPECT_TRUE(m_set.Materials[0].Unlit);
  EXPECT_THAT(std::filesystem::path(Load("b", {"models/other/", ""}).Path).generic_string(),
              EndsWith("game/materials/b.vmt"));

  const Material none = Load("none", {"models/x/", "models/y"});
  EXPECT_TRUE(none.Missing);
  EXPECT_EQ(none.Base, MissingPattern());
  ASSERT_THAT(m_set.Missing, SizeIs(1));
  EXPECT_EQ(m_set.Missing[0].Name, "none");
  EXPECT_THAT(
      m_set.Missing[0].Tried,
      ElementsAre(EndsWith("mod/materials/models/x/none.vmt"), EndsWith("mod/models/props/materials/models/x/none.vmt"),
                  EndsWith("game/materials/models/x/none.vmt"), EndsWith("mod/materials/models/y/none.vmt"),
                  EndsWith("mod/models/props/materials/models/y/none.vmt"),
                  EndsWith("game/materials/models/y/none.vmt"), EndsWith("mod/materials/none.vmt"),
                  EndsWith("mod/models/props/materials/none.vmt"), EndsWith("game/materials/none.vmt")));

  // Where the game searches the model's folder itself, its order counts.
  Write("game/gameinfo.txt",
        "GameInfo { FileSystem { SearchPaths { game |gameinfo_path|. game |gameinfo_path|../mod } } }");
  m_cache.Clear();
  EXPECT_EQ(DecodedLevel(Load("a").Base->Levels[0]).Pixels[0].R, 2);
  EXPECT_TRUE(Load("none").Missing);
  EXPECT_THAT(m_set.Missing[0].Tried[0], EndsWith("game/materials/models/props/none.vmt"));
  EXPECT_THAT(m_set.Missing[0].Tried[1], EndsWith("mod/materials/models/props/none.vmt"));

  // A name that leads out of the folders finds nothing.
  Write("secret.vmt", "UnlitGeneric { }");
  EXPECT_TRUE(Load("secret", {"../../"}).Missing);
}

TEST_F(Materials, OfAPatchAreWhatItIncludesWithItsChanges) {
  Write("mod/materials/base.vmt", "VertexLitGeneric { $alpha .5 $nocull 1 $basetexture tex }");
  Write("mod/materials/tex.vtf", Plain(1, 7, 7, 7, -1));
  Write("mod/materials/middle.vmt", R"(patch { include "materials/BASE.vmt" replace { $alpha 0.75 $additive 1 } })");
  Write("mod/materials/top.vmt", R"(Patch { Include materials\middle.vmt insert { "$translucent" 1 $nocull 0 } })");
  const Material top = Load("top");
  EXPECT_THAT(m_set.Missing, IsEmpty());
  EXPECT_EQ(top.Shader, "VertexLitGeneric");
  EXPECT_EQ(top.Alpha, 0.75f);
  EXPECT_TRUE(top.Translucent);
  EXPECT_FALSE(top.NoCull || top.Additive) << "replace takes keys alone that are there";
  EXPECT_EQ(DecodedLevel(top.Base->Levels[0]).Pixels[0].R, 7);
}

TEST_F(Materials, ThatLeadBackToThemselvesAreTold) {
  Write("mod/materials/a.vmt", "patch { include materials/b.vmt }");
  Write("mod/materials/b.vmt", "patch { include materials/A.vmt insert { $basetexture x } }");
  Write("mod/materials/lost.vmt", "patch { include materials/nowhere.vmt }");
  std::string many;
  for (int i = 0; i < 100; ++i) many += "#include x" + std::to_string(i) + ".vmt\n";
  Write("mod/materials/many.vmt", many + "UnlitGeneric { $basetexture x }");
  for (int i = 0; i < 100; ++i) Write("mod/materials/x" + std::to_string(i) + ".vmt", "UnlitGeneric { }");
  for (const auto& [name, reason] : std::vector<std::pair<std::string, std::string>>{
           {"a", "includes itself"}, {"lost", "nowhere.vmt: it was not found"}, {"many", "more than 16 files"}}) {
    EXPECT_TRUE(Load(name).Missing) << name;
    ASSERT_FALSE(m_set.Missing.empty()) << name;
    EXPECT_THAT(m_set.Missing[0].Reason, HasSubstr(reason));
  }
}

TEST_F(Materials, ThatAreHostileGiveThePatternAndAReason) {
  const std::string good = Plain(8, 1, 2, 3, -1);
  VtfBuilder huge = VtfBuilder().Size(4, 4).Format(PixelFormat::Dxt1).Pixels("few");
  huge.Header().Width = huge.Header().Height = 0xFFFF;
  const std::vector<std::pair<std::string, std::string>> files{{"empty", ""},
                                                               {"cut", good.substr(0, good.size() - 1)},
                                                               {"head", good.substr(0, 70)},
                                                               {"huge", huge.Build()},
                                                               {"sky", VtfBuilder().EnvironmentMap(0xFFFF).Build()},
                                                               {"noise", std::string(5000, '\x80')}};
  for (const auto& [name, bytes] : files) {
    Write("mod/materials/" + name + ".vtf", bytes);
    Write("mod/materials/" + name + ".vmt", "VertexLitGeneric { $basetexture " + name + " $bumpmap " + name + " }");
    const Material material = Load(name);
    EXPECT_TRUE(material.Missing) << name;
    EXPECT_EQ(material.Base, MissingPattern()) << name;
    ASSERT_THAT(m_set.Missing, SizeIs(2)) << name;
    EXPECT_EQ(m_set.Missing[0].NeededBy, name);
    EXPECT_NE(m_set.Missing[0].Reason, "") << name;
    EXPECT_THAT(m_set.Missing[0].Tried, ElementsAre(EndsWith(name + ".vtf")));
  }
  const std::vector<std::string> texts{"",
                                       "}",
                                       "{",
                                       "\"",
                                       "patch { }",
                                       "patch { include { } }",
                                       "a b",
                                       std::string(99, '{'),
                                       "x " + std::string(2'000'000, ' ') + "{ }",
                                       std::string("\0\xFF\x01", 3)};
  for (const std::string& text : texts) {
    Write("mod/materials/bad.vmt", text);
    EXPECT_TRUE(Load("bad").Missing) << text.substr(0, 20);
    ASSERT_FALSE(m_set.Missing.empty());
    EXPECT_NE(m_set.Missing[0].Reason, "");
  }
  // Numbers that no shader could use are taken for others.
  Write("mod/materials/odd.vmt", "V { $alpha nan $color \"[inf -5 1e30]\" $phongexponent -1e300 $color2 \"[1 2]\" }");
  const Material odd = Load("odd");
  EXPECT_EQ(odd.Alpha, 1);
  EXPECT_THAT(odd.Colour, ElementsAre(1, 1, 1));
  EXPECT_EQ(odd.PhongExponent, 20);
}

TEST_F(Materials, KeepBlocksAsTheFileHasThem) {
  constexpr size_t Blocks = 4 + 1 + 1 + 1;  // of levels of 8, 4, 2 and 1 pixels
  const auto read = [](VtfBuilder builder, int largest) {
    const std::string bytes = builder.Build();
    std::string reason;
    return *ReadTexture(core::FileImage::FromBytes("x.vtf", std::as_bytes(std::span(bytes))), largest, reason);
  };
  const VtfBuilder chain = VtfBuilder().Size(8, 8).Mips(4).Format(PixelFormat::Dxt5);
  const Texture whole = read(chain, 0);
  ASSERT_THAT(whole.Levels, SizeIs(4));
  EXPECT_EQ(whole.Levels[0].Format, PixelFormat::Dxt5);
  EXPECT_EQ(whole.Levels[0].Pixels.size(), 64u);
  EXPECT_EQ(whole.Levels[3].Pixels[0], std::byte{0}) << "the smallest level lies first";
  EXPECT_TRUE(whole.Kept.has_value());

  // What is passed over, further frames among it, takes no memory.
  for (const Texture& part : {read(chain, 4), read(VtfBuilder(chain).Frames(3), 0)}) {
    EXPECT_FALSE(part.Kept.has_value());
    EXPECT_LE(part.Bytes(), Blocks * 16);
    EXPECT_EQ(part.Levels.back().Pixels[1], std::byte{1});
  }
  const Texture made = read(VtfBuilder().Size(8, 8).Format(PixelFormat::Dxt5), 0);
  EXPECT_THAT(made.Levels, SizeIs(4));
  EXPECT_EQ(made.Levels[0].Format, PixelFormat::Bgra8888) << "levels that are missing are made of pixels";
}

TEST_F(Materials, DecodeTheLevelsThatArePicturedAndKeepThem) {
  std::string pixels;
  for (const auto& [side, value] : {std::pair{1, 1}, {2, 2}, {4, 4}, {8, 8}}) {
    pixels += std::string(static_cast<size_t>(side * side), static_cast<char>(value));
  }
  const std::string file = VtfBuilder().Size(8, 8).Mips(4).Pixels(pixels).Build();
  const auto sizes = [&](const std::string& bytes, int largest) {
    std::string reason;
    auto image = core::FileImage::FromBytes("x.vtf", std::as_bytes(std::span(bytes)));
    const auto texture = ReadTexture(std::move(image), largest, reason);
    std::vector<std::pair<int, int>> found;  // width, value
    for (const textures::StoredImage& level : texture->Levels) {
      found.emplace_back(level.Width, DecodedLevel(level).Pixels[0].R);
    }
    return found;
  };
  using P = std::pair<int, int>;
  EXPECT_THAT(sizes(file, 0), ElementsAre(P(8, 8), P(4, 4), P(2, 2), P(1, 1)));
  EXPECT_THAT(sizes(file, 4), ElementsAre(P(4, 4), P(2, 2), P(1, 1)));
  const std::string single = VtfBuilder().Size(12, 8).Pixels(std::string(96, '\x05')).Build();
  EXPECT_THAT(sizes(single, 8), ElementsAre(P(6, 5), P(3, 5), P(1, 5))) << "levels that are missing are made";

  const auto image = [](const std::string& path, const std::string& bytes) {
    return core::FileImage::FromBytes(path, std::as_bytes(std::span(bytes)));
  };
  std::string reason;
  TextureCache cache(400);
  const SharedTexture first = cache.Get(image("a", file), reason);
  EXPECT_EQ(cache.Get(image("a", file), reason), first);
  EXPECT_NE(cache.Get(image("a", single), reason), first) << "the file has changed";
  const std::weak_ptr<const Texture> kept = cache.Get(image("a", file), reason);
  EXPECT_FALSE(kept.expired());
  EXPECT_NE(cache.Get(image("b", single), reason), nullptr);
  EXPECT_TRUE(kept.expired()) << "there was no room for both";
  const SharedTexture used = cache.Get(image("a", file), reason);
  EXPECT_NE(cache.Get(image("b", single), reason), nullptr);
  EXPECT_EQ(cache.Get(image("a", file), reason), used) << "what is in use is not read twice";
}

}  // namespace
}  // namespace tarnwick::view
