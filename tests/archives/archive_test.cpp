#include "archives/archive.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <functional>

#include "archive_builder.h"
#include "archives/vpk_table.h"
#include "support/scratch_folder.h"

namespace tarnwick::archives {
namespace {

using testing::HasSubstr;
using tests::GmaBuilder;
using tests::MemorySource;
using tests::PackedFile;
using tests::ScratchFolder;
using tests::VpkBuilder;
using tests::WriteText;

std::string Bytes(size_t size) {
  std::string bytes;
  for (size_t i = 0; i < size; ++i) bytes += static_cast<char>(i * 7 + i / 251);
  return bytes;
}

std::vector<PackedFile> AllShapes(bool split) {
  const uint16_t first = split ? 0 : OwnPart;
  const uint16_t second = split ? 12 : OwnPart;
  return {{.Name = "models/props/crate.mdl", .Bytes = Bytes(5000), .Preload = 0, .Part = first},
          {.Name = "models/props/crate.vvd", .Bytes = Bytes(700'000), .Preload = 1000, .Part = second},
          {.Name = "materials/crate.vmt", .Bytes = Bytes(90), .Preload = 90},
          {.Name = "readme", .Bytes = "no folder, no extension", .Preload = 0, .Part = first},
          {.Name = "scripts/empty.txt", .Bytes = "", .Preload = 0, .Part = second},
          {.Name = "scripts/two.dots.txt", .Bytes = "x", .Preload = 0, .Part = first}};
}

std::string TextOf(const core::FileImage& image) {
  return {reinterpret_cast<const char*>(image.Bytes().data()), image.Bytes().size()};
}

/// Every file comes out by its name, whole and in pieces.
void ExpectContent(const Archive& archive, const std::vector<PackedFile>& files) {
  EXPECT_EQ(archive.Files().Count(), files.size());
  for (const PackedFile& file : files) {
    const auto number = archive.Find(file.Name);
    ASSERT_TRUE(number) << file.Name;
    std::string reason;
    const auto image = archive.Read(*number, reason);
    ASSERT_TRUE(image) << file.Name << ": " << reason;
    EXPECT_TRUE(TextOf(*image) == file.Bytes) << file.Name;
    EXPECT_EQ(image->Path(), archive.Path() + ':' + file.Name);
    std::string pieces;
    EXPECT_TRUE(archive.ReadPieces(
        *number, [&](std::string_view piece) { return !pieces.append(piece).empty(); }, reason));
    EXPECT_TRUE(pieces == file.Bytes) << file.Name;
  }
}

void WriteVpk(const std::string& stem, const VpkBuilder& vpk) {
  WriteText(stem + "_dir.vpk", vpk.Directory);
  for (const auto& [part, bytes] : vpk.Parts) {
    const std::string number = std::to_string(part);
    WriteText(stem + '_' + std::string(3 - number.size(), '0') + number + ".vpk", bytes);
  }
}

TEST(Archive, ReadsBothVersionsOfVpkSplitAndSingle) {
  for (const uint32_t version : {1u, 2u}) {
    for (const bool split : {false, true}) {
      ScratchFolder folder;
      VpkBuilder vpk{.Version = version, .Files = AllShapes(split)};
      WriteVpk(folder.Path("pak01"), vpk.Build());
      std::string reason;
      const auto archive = Archive::Open(folder.Path("pak01_dir.vpk"), reason);
      ASSERT_TRUE(archive) << reason;
      EXPECT_EQ(archive->Version(), version);
      ExpectContent(*archive, vpk.Files);
      EXPECT_EQ(archive->Files().Name(*archive->Find("MODELS\\Props/CRATE.mdl")), "models/props/crate.mdl");
      EXPECT_EQ(archive->Find("/models//props/./crate.mdl"), archive->Find("models/props/crate.mdl"));
      for (const char* none : {"", "models", "models/props", "models/props/", "crate.mdl", "readme.", " /readme"}) {
        EXPECT_FALSE(archive->Find(none)) << none;
      }
    }
  }
}

TEST(Archive, ReadsASingleFileWithoutDirInItsName) {
  ScratchFolder folder;
  VpkBuilder vpk{.Files = AllShapes(false)};
  WriteText(folder.Path("mod.vpk"), vpk.Build().Directory);
  std::string reason;
  const auto archive = Archive::Open(folder.Path("mod.vpk"), reason);
  ASSERT_TRUE(archive) << reason;
  ExpectContent(*archive, vpk.Files);
}

TEST(Archive, ReadsAddonsPlainAndPacked) {
  for (const uint8_t version : {uint8_t{1}, uint8_t{2}, uint8_t{3}}) {
    for (const bool packed : {false, true}) {
      GmaBuilder gma{.Version = version, .Files = AllShapes(false)};
      std::string bytes = gma.Build();
      if (packed) bytes = tests::PackedInLzma(bytes);
      std::string reason;
      const auto archive = Archive::Open("a.gma", std::make_unique<MemorySource>(bytes), reason);
      ASSERT_TRUE(archive) << reason;
      EXPECT_EQ(archive->Kind(), ArchiveKind::Gma);
      EXPECT_EQ(archive->IsPacked(), packed);
      EXPECT_EQ(archive->Addon().Name, "An addon");
      EXPECT_EQ(archive->Addon().Author, "Somebody");
      ExpectContent(*archive, gma.Files);
      EXPECT_TRUE(archive->CheckWhole({}, reason)) << reason;
    }
  }
}

TEST(Archive, TellsWhereACrcIsWrong) {
  ScratchFolder folder;
  VpkBuilder vpk{.Files = {{.Name = "good.txt", .Bytes = "good", .Preload = 0, .Part = 3},
                           {.Name = "bad.txt", .Bytes = "damaged", .Preload = 2, .Part = 3, .WrongCrc = true}}};
  WriteVpk(folder.Path("pak01"), vpk.Build());
  std::string reason;
  const auto archive = Archive::Open(folder.Path("pak01_dir.vpk"), reason);
  ASSERT_TRUE(archive);
  EXPECT_TRUE(archive->Read(*archive->Find("good.txt"), reason));
  EXPECT_FALSE(archive->Read(*archive->Find("bad.txt"), reason));
  EXPECT_THAT(reason, HasSubstr("its CRC-32 is"));
  EXPECT_THAT(reason, HasSubstr("(5 bytes at byte 4 of " + folder.Path("pak01_003.vpk") + ")"));
  std::string pieces;
  EXPECT_FALSE(archive->ReadPieces(
      *archive->Find("bad.txt"), [](std::string_view) { return true; }, reason));
  EXPECT_THAT(reason, HasSubstr("its CRC-32 is"));

  std::string gma = GmaBuilder{.Files = {{.Name = "a", .Bytes = "some bytes"}}}.Build();
  gma[gma.size() - 1] ^= 1;
  const auto addon = Archive::Open("a.gma", std::make_unique<MemorySource>(gma), reason);
  ASSERT_TRUE(addon);
  EXPECT_FALSE(addon->CheckWhole({}, reason));
  EXPECT_THAT(reason, HasSubstr("the CRC-32 of the whole addon"));
}

TEST(Archive, TellsOfPartsThatAreMissingOrTooShort) {
  ScratchFolder folder;
  VpkBuilder vpk{.Files = {{.Name = "a.txt", .Bytes = "0123456789", .Preload = 0, .Part = 0},
                           {.Name = "b.txt", .Bytes = "0123456789", .Preload = 0, .Part = 1000},
                           {.Name = "c.txt", .Bytes = "whole", .Preload = 5, .Part = 2}}};
  vpk.Build();
  WriteText(folder.Path("pak01_dir.vpk"), vpk.Directory);
  WriteText(folder.Path("pak01_000.vpk"), "01234");
  std::string reason;
  const auto archive = Archive::Open(folder.Path("pak01_dir.vpk"), reason);
  ASSERT_TRUE(archive);
  EXPECT_FALSE(archive->Read(*archive->Find("a.txt"), reason));
  EXPECT_THAT(reason, HasSubstr("run past the end of " + folder.Path("pak01_000.vpk") + " (5 bytes)"));
  EXPECT_FALSE(archive->Read(*archive->Find("b.txt"), reason));
  EXPECT_THAT(reason, HasSubstr("its bytes are in " + folder.Path("pak01_1000.vpk")));
  EXPECT_TRUE(archive->Read(*archive->Find("c.txt"), reason)) << reason;
}

TEST(Archive, TellsThatItChangedOnTheDisk) {
  ScratchFolder folder;
  const std::string path = folder.Path("pak01_dir.vpk");
  VpkBuilder vpk{.Files = {{.Name = "a.txt", .Bytes = std::string(100000, 'a')},
                           {.Name = "b.txt", .Bytes = "in a part", .Preload = 0, .Part = 1}}};
  WriteVpk(folder.Path("pak01"), vpk.Build());
  std::string reason;
  const auto archive = Archive::Open(path, reason);
  ASSERT_TRUE(archive);
  EXPECT_TRUE(archive->Read(*archive->Find("b.txt"), reason)) << reason;
  EXPECT_FALSE(archive->HasChanged());
#ifdef _WIN32  // where a file that is open goes from its folder when the last one closes it
  WriteText(folder.Path("pak01_001.vpk"), "another part");
#else
  std::filesystem::remove(folder.Path("pak01_001.vpk"));
#endif
  EXPECT_TRUE(archive->HasChanged()) << "a part that was read from is gone, or another one";

  // Cut short under the one who reads it: told, and no signal ends the program.
  const auto whole = Archive::Open(path, reason);
  std::filesystem::resize_file(path, 200);
  EXPECT_FALSE(whole->Read(*whole->Find("a.txt"), reason));
  EXPECT_THAT(reason, HasSubstr("too early; the archive on the disk has changed"));
  EXPECT_FALSE(whole->ReadPieces(
      *whole->Find("a.txt"), [](std::string_view) { return true; }, reason));
  EXPECT_TRUE(whole->HasChanged());
  std::filesystem::remove(path);
  EXPECT_TRUE(whole->HasChanged());
  EXPECT_FALSE(whole->Read(*whole->Find("a.txt"), reason));
}

/// A damage of the sound archive of the test, and what is said of it.
struct Damage {
  const char* Name;
  std::function<void(std::string&)> Do;
  const char* Reason;
};

std::string WhyRefused(const std::string& bytes) {
  std::string reason;
  const auto archive = Archive::Open("a.vpk", std::make_unique<MemorySource>(bytes), reason);
  return archive == nullptr ? reason : "opened";
}

void Overwrite(std::string& bytes, size_t place, uint32_t value) {
  bytes.replace(place, 4, std::string(reinterpret_cast<const char*>(&value), 4));
}

TEST(Archive, RefusesDamagedVpkDirectories) {
  VpkBuilder vpk{.Files = {{.Name = "models/crate.mdl", .Bytes = "0123456789", .Preload = 4}}};
  const std::string sound = vpk.Build().Directory;
  const size_t entry = sizeof(VpkHeader) + sizeof("mdl") + sizeof("models") + sizeof("crate");
  const Damage damages[] = {
      {"another signature", [](std::string& b) { b[0] = 'x'; }, "no VPK directory file"},
      {"nothing", [](std::string& b) { b.clear(); }, "no VPK directory file"},
      {"a version of another day", [](std::string& b) { b[4] = 3; }, "of version 3"},
      {"a tree larger than the file", [](std::string& b) { Overwrite(b, 8, 0xFFFFFFFF); }, "runs past the end"},
      {"a tree cut in an entry", [&](std::string& b) { Overwrite(b, 8, static_cast<uint32_t>(entry)); },
       "ends inside an entry"},
      {"a tree cut in a name", [](std::string& b) { Overwrite(b, 8, 6); }, "at byte 16: the directory ends inside"},
      {"a tree without end", [](std::string& b) { b = b.substr(0, 8) + std::string("\1\0\0\0\0", 5); }, "opened"},
      {"no tree", [](std::string& b) { Overwrite(b, 8, 0); }, "ends inside a list of names"},
      {"an entry without its end", [&](std::string& b) { b[entry + 16] = 0; }, "does not end in 0xFFFF"},
      {"bytes behind an entry that are not there", [&](std::string& b) { b[entry + 5] = '\x7F'; },
       "run past the directory"},
      {"a name without end",
       [&](std::string& b) {
         b.replace(12, 4, std::string(4000, 'x'));
         Overwrite(b, 8, 3000);
       },
       "ends inside a list of names"},
      {"a name too long",
       [](std::string& b) {
         b.replace(12, 3, std::string(4000, 'x'));
         Overwrite(b, 8, 4040);
       },
       "a name is too long"},
  };
  for (const Damage& damage : damages) {
    std::string bytes = sound;
    damage.Do(bytes);
    EXPECT_THAT(WhyRefused(bytes), HasSubstr(damage.Reason)) << damage.Name;
  }
}

TEST(Archive, RefusesDamagedAddons) {
  const std::string sound = GmaBuilder{.Files = {{.Name = "models/crate.mdl", .Bytes = "0123456789"}}}.Build();
  const size_t list = sound.find("models/crate.mdl") - 4;
  const size_t size = list + 4 + sizeof("models/crate.mdl");
  const Damage damages[] = {
      {"cut in its head", [](std::string& b) { b.resize(12); }, "at byte 12: it ends before its list"},
      {"cut in its list", [&](std::string& b) { b.resize(size + 3); }, "it ends before its list"},
      {"a negative size", [&](std::string& b) { b[size + 7] = '\xFF'; }, "a file has -"},
      {"a size beyond all disks", [&](std::string& b) { b[size + 6] = '\x7F'; }, "a file has 357"},
      {"a name too long", [&](std::string& b) { b.insert(list + 4, std::string(5000, 'x')); }, "a text is longer"},
      {"no name", [&](std::string& b) { b[list + 4] = 0; }, "a file has no name"},
      {"endless needed content",
       [](std::string& b) {
         b.insert(21, [] {
           std::string texts;
           for (int i = 0; i < 5000; ++i) texts += std::string("x\0", 2);
           return texts;
         }());
       },
       "has no end"},
  };
  for (const Damage& damage : damages) {
    std::string bytes = sound;
    damage.Do(bytes);
    EXPECT_THAT(WhyRefused(bytes), HasSubstr(damage.Reason)) << damage.Name;
    EXPECT_THAT(WhyRefused(tests::PackedInLzma(bytes)), HasSubstr(damage.Reason)) << damage.Name;
  }
}

}  // namespace
}  // namespace tarnwick::archives
