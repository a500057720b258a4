#include "archives/unpacked_stream.h"

#include <gmock/gmock.h>

#include <random>

#include "archive_builder.h"
#include "archives/archive.h"

namespace tarnwick::archives {
namespace {

using testing::HasSubstr;
using tests::AppendValue;
using tests::MemorySource;
using tests::PackedInLzma;

std::string Noise(size_t size) {
  std::mt19937 random(7);
  std::string bytes(size, '\0');
  for (char& c : bytes) c = static_cast<char>(random() % 16);
  return bytes;
}

TEST(UnpackedStream, GivesAnyPlaceInAnyOrderWithLittleKept) {
  const std::string bytes = Noise(700'000);
  for (const uint64_t kept : {uint64_t{0}, uint64_t{300'000}, uint64_t{1} << 30}) {
    std::string reason;
    const auto stream = UnpackStream(std::make_unique<MemorySource>(PackedInLzma(bytes)), reason, kept);
    std::mt19937 random(3);
    for (int i = 0; i < 40; ++i) {
      const size_t offset = random() % (bytes.size() + 1000);
      std::string out(random() % 200'000, '\0');
      const auto got = stream->Read(offset, std::as_writable_bytes(std::span(out)), reason);
      ASSERT_TRUE(got) << reason;
      out.resize(*got);
      EXPECT_TRUE(out == (bytes.substr(std::min(offset, bytes.size()), out.size())));
      EXPECT_EQ(*got, offset < bytes.size() ? std::min(bytes.size() - offset, out.size()) : 0u);
    }
  }
}

/// Why a packed file cannot be read at all.
std::string WhyUnreadable(const std::string& packed) {
  std::string reason;
  const auto archive = Archive::Open("a.gma", std::make_unique<MemorySource>(packed), reason);
  return archive == nullptr ? reason : "opened";
}

TEST(UnpackedStream, RefusesDamageAndLies) {
  const std::string gma = tests::GmaBuilder{.Files = {{.Name = "a.txt", .Bytes = Noise(400'000)}}}.Build();
  const std::string sound = PackedInLzma(gma);
  EXPECT_EQ(WhyUnreadable(sound), "opened");
  EXPECT_THAT(WhyUnreadable(sound.substr(0, 40)), HasSubstr("its packed data ends too early"));
  EXPECT_THAT(WhyUnreadable("]"), HasSubstr("ends too early"));
  std::string dictionary = sound;
  dictionary.replace(1, 4, "\xFF\xFF\xFF\xFF");
  EXPECT_THAT(WhyUnreadable(dictionary), HasSubstr("a dictionary of more than 256 MiB"));

  // Cut behind the list: the archive opens, the file is told to be cut, time after time.
  std::string reason;
  const auto archive =
      Archive::Open("a.gma", std::make_unique<MemorySource>(sound.substr(0, sound.size() / 2)), reason);
  if (archive == nullptr) return;  // the first piece is unpacked whole
  for (int i = 0; i < 3; ++i) {
    EXPECT_FALSE(archive->Read(0, reason));
    EXPECT_THAT(reason, HasSubstr("ends too early"));
  }
}

TEST(UnpackedStream, RefusesWhatUnpacksToTerabytes) {
  // A list that promises 5 TB, and one that never ends.
  std::string bytes = "GMAD\3";
  bytes += std::string(16, '\0') + '\0' + std::string("n\0d\0a\0", 6);
  AppendValue(bytes, int32_t{1});
  std::string promise = bytes;
  for (uint32_t number = 1; number <= 5; ++number) {
    AppendValue(promise, number);
    promise += "file" + std::to_string(number) + '\0';
    AppendValue(promise, int64_t{1} << 40);
    AppendValue(promise, uint32_t{0});
  }
  AppendValue(promise, uint32_t{0});
  EXPECT_THAT(WhyUnreadable(PackedInLzma(promise)), HasSubstr("more than 4 GiB"));

  bytes += std::string(40'000'000, 'x');
  EXPECT_THAT(WhyUnreadable(PackedInLzma(bytes)), HasSubstr("a text is longer"));
}

}  // namespace
}  // namespace tarnwick::archives
