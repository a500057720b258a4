#include "settings/qt_settings_store.h"

#include <gmock/gmock.h>

#include <filesystem>

#ifdef _WIN32
#include <windows.h>
#endif

#include "core/settings_table.h"
#include "support/scratch_folder.h"

namespace tarnwick::settings {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class QtSettingsStoreTest : public testing::Test {
 protected:
  tests::ScratchFolder m_folder;
  std::string m_path = m_folder.Path("tarnwick.conf");
  std::vector<std::string> m_told;
  QtSettingsStore m_store{m_path, [this](const std::string& text) { m_told.push_back(text); }};
};

TEST_F(QtSettingsStoreTest, GivesBackWhatWasWrittenAndCreatesNothingByReading) {
  EXPECT_EQ(core::setting::Scale.Read(m_store), "1.0");
  EXPECT_EQ(core::setting::ModelPath.Read(m_store), 1);
  EXPECT_TRUE(m_folder.Files().empty());

  const std::string texts[] = {"", " C:\\game, \"mod\"; 100% ", "/home/räv/a=b", "@Invalid()", "one\ntwo"};
  for (const std::string& text : texts) {
    core::setting::GameDirectory.Write(m_store, text);
    EXPECT_EQ(core::setting::GameDirectory.Read(QtSettingsStore(m_path, {})), text);
  }
  core::setting::ModelPath.Write(m_store, -3);
  EXPECT_EQ(core::setting::ModelPath.Read(QtSettingsStore(m_path, {})), -3);
  EXPECT_FALSE(m_store.Holds("Tarnwick", "Scale"));
  EXPECT_TRUE(m_told.empty());
}

TEST_F(QtSettingsStoreTest, SeesWhatWasChangedInTheFileByHand) {
  core::setting::GameDirectory.Write(m_store, "/old");
  tests::WriteText(m_path, "[Tarnwick]\nGameDirectory=/games/half, life\nTabSelect=many\nCompile%20Mode=1\n");
  EXPECT_THAT(core::setting::GameDirectory.Read(m_store), HasSubstr("/games/half"));
  EXPECT_EQ(core::setting::TabSelect.Read(m_store), 0) << "text is no number";
  EXPECT_EQ(core::setting::CompileMode.Read(m_store), 1);
}

TEST_F(QtSettingsStoreTest, KeepsADamagedFileAndSaysSoOnce) {
  const std::string damaged = "\x7f\x45LF not settings\n[Tarnwick]\nTabSelect=2\nhalf a li";
  tests::WriteText(m_path, damaged);
  EXPECT_EQ(core::setting::TabSelect.Read(m_store), 2);
  EXPECT_EQ(tests::ReadText(m_path), damaged) << "reading changes nothing";

  core::setting::TabSelect.Write(m_store, 3);
  core::setting::CompileMode.Write(m_store, 1);
  EXPECT_EQ(core::setting::TabSelect.Read(m_store), 3);
  EXPECT_EQ(tests::ReadText(m_path + ".damaged"), damaged);
  EXPECT_THAT(m_told, ElementsAre(HasSubstr("was damaged")));
}

TEST_F(QtSettingsStoreTest, SaysThatItCannotSave) {
  std::filesystem::create_directory(m_path);  // a folder in the file's place: not even root can write it
  core::setting::TabSelect.Write(m_store, 3);
  EXPECT_THAT(m_told, ElementsAre(HasSubstr("cannot be saved")));
  EXPECT_EQ(core::setting::TabSelect.Read(m_store), 0);
}

#ifdef _WIN32
TEST(QtSettingsStoreInTheRegistry, HasTextsAndNumbersWhereOlderProgramsLookForThem) {
  constexpr wchar_t Section[] = L"Software\\Fennelworks\\tarnwick\\A test's own";
  QtSettingsStore store([](const std::string& text) { ADD_FAILURE() << text; });
  store.WriteString("A test's own", "Game Directory", "C:\\игра, \"mod\"");
  store.WriteInt("A test's own", "Tab", -3);
  wchar_t text[64];
  DWORD size = sizeof(text);
  EXPECT_EQ(RegGetValueW(HKEY_CURRENT_USER, Section, L"Game Directory", RRF_RT_REG_SZ, nullptr, text, &size), 0);
  EXPECT_EQ(std::wstring(text), L"C:\\игра, \"mod\"");
  int32_t number = 0;
  size = sizeof(number);
  EXPECT_EQ(RegGetValueW(HKEY_CURRENT_USER, Section, L"Tab", RRF_RT_REG_DWORD, nullptr, &number, &size), 0);
  EXPECT_EQ(number, -3);
  EXPECT_EQ(QtSettingsStore({}).GetString("A test's own", "Game Directory", ""), "C:\\игра, \"mod\"");
  EXPECT_EQ(QtSettingsStore({}).GetInt("A test's own", "Tab", 0), -3);
  EXPECT_EQ(RegDeleteTreeW(HKEY_CURRENT_USER, Section), 0);
}
#endif

}  // namespace

}  // namespace tarnwick::settings
