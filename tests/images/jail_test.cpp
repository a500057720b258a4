#include "images/worker/jail.h"

#include <cstdlib>

#include "conversion_fixture.h"

namespace tarnwick::tests {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// Puts a hostile decoder into every worker that is started while this object lives.
class TakenOverWorker {
 public:
  TakenOverWorker() {
    setenv("LD_PRELOAD", HOSTILE_DECODER, 1);
    setenv("ASAN_OPTIONS", "verify_asan_link_order=0", 1);
  }
  ~TakenOverWorker() {
    unsetenv("LD_PRELOAD");
    unsetenv("ASAN_OPTIONS");
  }
};

class JailTest : public ConversionTest {
 protected:
  /// What the log says after a hostile image with these orders was converted.
  std::string LogOf(const std::string& orders) {
    WriteText(Folder.Path("bad.png"), orders);
    const TakenOverWorker takenOver;
    EXPECT_EQ(ToTga(Folder.Path("bad.png")), "");
    EXPECT_THAT(Report.Boxes,
                ElementsAre(RecordedBox{core::BoxIcon::Stop, "Unable to create TGA file " + Out("bad.tga") + "\n",
                                        "TGA Error"}));
    EXPECT_THAT(Folder.Files(), ElementsAre("bad.png"));
    return Report.LogText;
  }
};

TEST_F(JailTest, LetsATakenOverDecoderReachNothing) {
  EXPECT_THAT(LogOf("escape"), HasSubstr("bad.png: escaped:\r\n"));
}

TEST_F(JailTest, TurnsACrashIntoTheOrdinaryFailure) {
  EXPECT_THAT(LogOf("crash"), HasSubstr("bad.png: "));
  Report = {};
  WriteImage(Folder.Path("good.png"), Gradient(8, 8));
  EXPECT_EQ(ToTga(Folder.Path("good.png")), Out("good.tga")) << "the next conversion goes on";
}

TEST_F(JailTest, EndsAWorkerThatFloods) {
  EXPECT_THAT(LogOf("flood"), HasSubstr("it answered too much"));
}

TEST_F(JailTest, LimitsTheMemoryOfTheWholeProcess) {
  if (!images::LimitsMemory) GTEST_SKIP() << "a sanitizer keeps the address space for itself";
  EXPECT_THAT(LogOf("memory"), testing::Not(HasSubstr("escaped")));
}

}  // namespace

}  // namespace tarnwick::tests
