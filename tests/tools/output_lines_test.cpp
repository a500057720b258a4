#include "tools/output_lines.h"

#include <gtest/gtest.h>

namespace tarnwick::tools {
namespace {

TEST(OutputLines, TellsErrorsAndWarningsFromNamesAndCounts) {
  for (const char* line :
       {"ERROR: Can't find \"box.smd\"", "box.qc(12): error: unknown command", "1 error(s)",
        "************ ERROR ************", "Aborted Processing on 'box.mdl'", "  Fatal error.", "Can't find ref.smd",
        "box.qc(3): Couldn't open box.smd", "Unable to load x.tga", "2 errors, 0 warnings"}) {
    EXPECT_EQ(ClassifyLine(line), LineKind::Error) << line;
  }
  for (const char* line :
       {"WARNING: no gameinfo.txt", "box.qc(1): warning, x", "WARNING: error in the bone table ignored",
        "a.qc(3): warning: error-prone", "3 warnings", "0 errors, 2 warnings"}) {
    EXPECT_EQ(ClassifyLine(line), LineKind::Warning) << line;
  }
  for (const char* line :
       {"", "Working on \"error.qc\"", "writing models/props/error.mdl:", "SMD MODEL error_sign", "0 errors",
        "no errors, no warnings", "Errors: 0", "0 error(s), 0 warning(s)", "qdir: \"c:\\errors\\\"", "terror",
        "Completed \"box.qc\"", "/fatal error/vtex.exe -nopause -shader X \"/an error/a.tga\"",
        "Z:/warning /studiomdl.exe -game \"Z:/g\" \"an error .qc\""}) {
    EXPECT_EQ(ClassifyLine(line), LineKind::Plain) << line;
  }
}

}  // namespace
}  // namespace tarnwick::tools
