#include <gtest/gtest.h>

#include "qc/script.h"
#include "support/scratch_folder.h"

namespace tarnwick::qc {
namespace {

using tests::ScratchFolder;
using tests::WriteText;

TEST(QcModelName, IsFoundWhereverTheScriptHasIt) {
  const ScratchFolder folder;
  WriteText(folder.Path("sub/Name.qci"), "$ModelName \"props\\my box.mdl\"\n");
  const std::pair<std::string, std::optional<std::string>> cases[] = {
      {"// $modelname x.mdl\n# $modelname y\n/* $modelname z */ $cd \"c:\\a b\"\n$ModelName \"a\\b c.mdl\"\n",
       "a\\b c.mdl"},
      {"$modelname first.mdl\n$body a b.smd\n$modelname last.mdl", "last.mdl"},
      {"$include \"SUB\\name.qci\"", "props\\my box.mdl"},
      {"$include \"" + folder.Path("sub/name.QCI") + "\"", "props\\my box.mdl"},
      {"$definevariable n crate\n$modelname props/$n$.mdl", "props/crate.mdl"},
      {"$definemacro name n \\\\\n$modelname $n$\n$name crate", "crate"},
      {"$keyvalues { $modelname no }\n$wrong { a\n$modelname yes", "yes"},
      {"$include main.qc\n\"$modelname", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& [text, name] : cases) {
    WriteText(folder.Path("main.qc"), text);
    EXPECT_EQ(FindModelName(folder.Path("main.qc")), name) << text;
  }
  EXPECT_EQ(FindModelName(folder.Path("missing.qc")), std::nullopt);
}

}  // namespace
}  // namespace tarnwick::qc
