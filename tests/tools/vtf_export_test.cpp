#include "tools/vtf_export.h"

#include <gtest/gtest.h>

#include "tools/sdk_tools.h"

namespace tarnwick::tools {
namespace {

TEST(VtfExport, SuggestsATgaFileBesideTheInput) {
  EXPECT_EQ(SuggestOutputName(R"(C:\art\wall.vtf)"), R"(C:\art\wall.tga)");
  EXPECT_EQ(SuggestOutputName("/v1.5/wall"), "/v1.5/wall.tga");
}

TEST(VtfExport, NamesTextureAndTgaFileToTheTool) {
  EXPECT_EQ(Vtf2tgaCommand("C:\\sdk", "in put.vtf", "out.tga").Line(),
            "C:/sdk/vtf2tga.exe -nopause -i \"in put.vtf\" -o \"out.tga\"");
}

}  // namespace
}  // namespace tarnwick::tools
