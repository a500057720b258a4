#ifndef _WIN32
#include "core/readable_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>

#include "core/file_source.h"
#include "support/scratch_folder.h"

namespace tarnwick::core {
namespace {

TEST(ReadableFile, RefusesWhatIsNoRegularFileAndWaitsForNobody) {
  const tests::ScratchFolder folder;
  const std::string pipe = folder.Path() + "/pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  std::array<std::byte, 4> start;
  EXPECT_FALSE(DiskFiles().ReadStart(pipe, start));
  for (const auto& [path, expected] : {std::pair{pipe, "it is not a regular file"},
                                       {folder.Path(), "it is a folder"},
                                       {folder.Path() + "/none", "No such file or directory"},
                                       {pipe + "/below", "Not a directory"},
                                       {"/dev/null", "it is not a regular file"}}) {
    std::string reason;
    EXPECT_FALSE(DiskFiles().Read(path, &reason)) << path;
    EXPECT_EQ(reason, expected) << path;
  }
}

}  // namespace
}  // namespace tarnwick::core
#endif
