#include "textures/material_place.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/paths.h"

namespace tarnwick::textures {
namespace {

TEST(PlaceOfMaterial, GoesFromMaterialsrcToMaterials) {
  struct Case {
    const char* Tga;
    const char* OutputFolder;
    const char* Folder;
    const char* Name;
  };
  const Case cases[] = {
      {"/g/materialsrc/models/props/brick.v2.tga", "", "/g/materials/models/props/", "models/props/brick.v2"},
      {"/g/materialsrc/brick.v2.tga", "", "/g/materials/", "brick.v2"},
      {"/g\\MaterialSrc\\models\\/brick.v2.tga", "", "/g/materials/models/", "models/brick.v2"},
      {"/materialsrc/g/materialsrc/a b/brick.v2.tga", "", "/materialsrc/g/materials/a b/", "a b/brick.v2"},
      {"/g/materialsrc/../x/brick.v2.tga", "/out/", "/out/", "brick.v2"},
      {"/art/brick.v2.tga", "/g/materials/props", "/g/materials/props/", "props/brick.v2"},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.Tga);
    std::string reason;
    const auto place = PlaceOfMaterial(each.Tga, each.OutputFolder, reason);
    ASSERT_TRUE(place) << reason;
    EXPECT_EQ(place->Folder, core::PathText(std::filesystem::absolute(core::NativePath(each.Folder)).make_preferred()));
    EXPECT_EQ(place->Stem, "brick.v2");
    EXPECT_EQ(place->Name, each.Name);
  }
  std::string reason;
  EXPECT_FALSE(PlaceOfMaterial("/art/materialsrc.tga", "", reason));
  EXPECT_FALSE(PlaceOfMaterial("/g/materialsrc/../brick.tga", "", reason));
}

}  // namespace
}  // namespace tarnwick::textures
