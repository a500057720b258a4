#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "core/file_store.h"
#include "core/paths.h"

namespace tarnwick::tests {

/// Writes a file into a store, with the folders above it; a test failure if it cannot.
inline void StoreFile(core::FileStore& store, const std::string& path, std::string_view bytes) {
  EXPECT_EQ(store.MakeFolder(std::string(core::DirectoryWithSeparator(path))), "");
  std::string reason;
  auto file = store.Create(path, &reason);
  EXPECT_TRUE(file && file->Write(bytes) && file->Commit()) << path << ": " << reason;
}

/// The bytes of a file; a test failure and "" if it cannot be read.
inline std::string StoredBytes(const core::FileSource& files, const std::string& path) {
  std::string reason;
  const auto image = files.Read(path, &reason);
  EXPECT_TRUE(image) << path << ": " << reason;
  if (!image) return {};
  return {reinterpret_cast<const char*>(image->Bytes().data()), image->Bytes().size()};
}

}  // namespace tarnwick::tests
