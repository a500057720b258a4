#include <chrono>
#include <stop_token>
#include <thread>

#include "conversion_fixture.h"
#include "support/shell_programs.h"

namespace tarnwick::tests {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ConversionFailureTest : public ConversionTest {
 protected:
  /// Expects exactly the box of a failed conversion, and a reason in the log.
  void ExpectFailure(const std::string& destination, const std::string& reason) {
    EXPECT_THAT(Report.Boxes, ElementsAre(RecordedBox{core::BoxIcon::Stop,
                                                      "Unable to create TGA file " + destination + "\n", "TGA Error"}));
    EXPECT_THAT(Report.LogText, HasSubstr(reason));
    Report = {};
  }
};

TEST_F(ConversionFailureTest, TellsWhyASourceCannotBeReadAndLeavesNoFile) {
  WriteText(Folder.Path("text.bmp"), "not an image");
  WriteText(Folder.Path("noname"), "x");
  WriteText(Folder.Path("empty.tga"), "");
  const struct {
    const char* Name;
    const char* Tga;
    const char* Reason;
  } cases[] = {
      {"missing.png", "missing.tga", "missing.png: the file cannot be opened: No such file or directory\r\n"},
      {"text.bmp", "text.tga", "text.bmp: the file cannot be read as a BMP image"},
      {"noname", "noname.tga", "noname: its name tells no image format"},
      {"empty.tga", "empty.tga", "from \r\nempty.tga: the file cannot be read as a TGA image"},
      {"out", "out.tga", "out: the file cannot be opened: Is a directory"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.Name);
    EXPECT_EQ(ToTga(Folder.Path(test.Name)), "");
    ExpectFailure(Out(test.Tga), test.Reason);
  }
  EXPECT_THAT(Folder.Files(), ElementsAre("empty.tga", "noname", "text.bmp"));
}

TEST_F(ConversionFailureTest, KeepsTheOlderFileWhenTheNewOneCannotBeMade) {
  WriteText(Out("old.tga"), "precious");
  WriteText(Folder.Path("old.png"), "no image");
  EXPECT_EQ(ToTga(Folder.Path("old.png")), "");
  EXPECT_EQ(ReadText(Out("old.tga")), "precious");
  EXPECT_THAT(Folder.Files(), ElementsAre("old.png", "out/old.tga"));
}

TEST_F(ConversionFailureTest, RefusesDestinationsThatNoFormatFits) {
  WriteImage(Folder.Path("t.tga"), Gradient(512, 8));
  for (const char* name : {"t.vmt", "t.ico", "t"}) {
    SCOPED_TRACE(name);
    EXPECT_FALSE(ToImage(Folder.Path("t.tga"), Out(name)));
    ExpectFailure(Out(name), "t.tga: ");
  }
  EXPECT_FALSE(ToImage(Folder.Path("gone.tga"), Out("gone.png")));
  ExpectFailure(Out("gone.png"), "gone.tga: the file cannot be opened");
  EXPECT_THAT(Folder.Files(), ElementsAre("t.tga"));
}

TEST_F(ConversionFailureTest, CreatesAMissingDirectoryOnlyWhenAllowed) {
  WriteImage(Folder.Path("a.png"), Gradient(8, 8));
  const std::string missing = Folder.Path("game/materialsrc/props");
  images::ConversionContext context = Context();
  EXPECT_EQ(images::ConvertToTga(Folder.Path("a.png"), missing, context), "");
  ExpectFailure(missing + "/a.tga", "cannot be created: No such file or directory");

  std::vector<std::string> asked;
  bool allowed = false;
  context.MayCreate = [&](const images::MissingDirectory& question) {
    asked = {question.Caption, question.Text, question.Directory};
    return allowed;
  };
  EXPECT_EQ(images::ConvertToTga(Folder.Path("a.png"), missing, context), "");
  EXPECT_THAT(asked, ElementsAre("TGA Error", "Unable to create TGA file " + missing + "/a.tga\n", missing));
  EXPECT_THAT(Report.Boxes, IsEmpty()) << "the question was the box";
  EXPECT_THAT(Folder.Files(), ElementsAre("a.png"));

  allowed = true;
  EXPECT_EQ(images::ConvertToTga(Folder.Path("a.png"), missing, context), missing + "/a.tga");
  EXPECT_THAT(Folder.Files(), ElementsAre("a.png", "game/materialsrc/props/a.tga"));
}

TEST_F(ConversionFailureTest, RefusesByTheHeaderWhatIsTooLarge) {
  // A GIF has no end of its own: 65,535 by 65,535 takes 13 bytes of header and a picture of that size.
  const std::string gif("GIF89a\xFF\xFF\xFF\xFF\0\0\0,\0\0\0\0\xFF\xFF\xFF\xFF\0\2\0;", 26);
  WriteText(Folder.Path("bomb.gif"), gif);
  EXPECT_EQ(ToTga(Folder.Path("bomb.gif")), "");
  ExpectFailure(Out("bomb.tga"), "bomb.gif: an image of 65535 by 65535 pixels is larger than 16384 on a side");

  // An uncompressed TGA header of 16,000 by 16,000 by 32 bits: each side is in bounds, but rescaled it is 1 GiB more.
  std::string tga(18, '\0');
  tga[2] = 2;
  tga[12] = tga[14] = static_cast<char>(16000 & 255);
  tga[13] = tga[15] = static_cast<char>(16000 >> 8);
  tga[16] = 32;
  WriteText(Folder.Path("wide.tga"), tga);
  EXPECT_EQ(ToTga(Folder.Path("wide.tga")), "");
  ExpectFailure(Out("wide.tga"), "wide.tga: the conversion needs 2000 MiB of pixels, more than 1024");
}

TEST_F(ConversionFailureTest, NamesTheWorkerThatCannotBeStarted) {
  WriteImage(Folder.Path("a.png"), Gradient(8, 8));
  Worker = images::ImageWorker(Folder.Path("no-worker"));
  EXPECT_EQ(ToTga(Folder.Path("a.png")), "");
  ExpectFailure(Out("a.tga"), "no-worker cannot be started: ");
#ifdef _WIN32
  const std::string other = "C:/windows/system32/hostname.exe";
#else
  const std::string other = "/bin/echo";
#endif
  Worker = images::ImageWorker(other);
  EXPECT_EQ(ToTga(Folder.Path("a.png")), "");
  ExpectFailure(Out("a.tga"), other + " ended without an answer");
}

TEST_F(ConversionFailureTest, AStopEndsAConversionAtOnceWithoutAWord) {
  TARNWICK_NEEDS_SHELL_PROGRAMS();
  WriteImage(Folder.Path("a.png"), Gradient(8, 8));
  WriteText(Out("a.tga"), "older");
  WriteShellProgram(Folder.Path("worker"), "echo begun >'" + Folder.Path("begun") + "'\nsleep 60\n");
  Worker = images::ImageWorker(Folder.Path("worker"));
  std::stop_source stop;
  Worker.StopWith(stop.get_token());
  std::jthread user([&] {
    while (!std::filesystem::exists(Folder.Path("begun"))) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    stop.request_stop();
  });
  EXPECT_EQ(ToTga(Folder.Path("a.png")), "");
  EXPECT_EQ(ToTga(Folder.Path("a.png")), "") << "and begins no other";
  EXPECT_THAT(Report.Troubles, IsEmpty());
  EXPECT_EQ(ReadText(Out("a.tga")), "older");
  EXPECT_THAT(Folder.Files(), ElementsAre("a.png", "begun", "out/a.tga", "worker"));
}

}  // namespace

}  // namespace tarnwick::tests
