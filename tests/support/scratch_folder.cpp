#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>

namespace tarnwick::tests {

namespace fs = std::filesystem;

namespace {

/// `path` for a call of the library, which on Windows does not take UTF-8. On Linux a backslash stays part of a name.
fs::path Native(const std::string& path) {
#ifdef _WIN32
  return core::NativePath(path);
#else
  return path;
#endif
}

}  // namespace

ScratchFolder::ScratchFolder() {
  std::random_device random;
  do {
    m_path = fs::temp_directory_path() / ("tarnwick-test-" + std::to_string(random()));
  } while (!fs::create_directories(m_path));
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  fs::remove_all(m_path, ignored);
}

std::vector<std::string> ScratchFolder::Files() const {
  std::vector<std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(m_path)) {
    if (!entry.is_directory()) files.push_back(entry.path().lexically_relative(m_path).generic_string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string WithSlashes(std::string text) {
  if (core::PathSeparator != '/') std::replace(text.begin(), text.end(), core::PathSeparator, '/');
  return text;
}

std::string ReadText(const std::string& path) {
  std::ifstream file(Native(path), std::ios::binary);
  EXPECT_TRUE(file) << path << " cannot be read";
  return WithLineFeeds(std::string(std::istreambuf_iterator<char>(file), {}));
}

std::string WithLineFeeds(std::string text) {
#ifdef _WIN32
  std::string lines;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r' || i + 1 == text.size() || text[i + 1] != '\n') lines += text[i];
  }
  return lines;
#else
  return text;
#endif
}

void WriteText(const std::string& path, std::string_view text) {
  const fs::path native = Native(path);
  if (native.has_parent_path()) fs::create_directories(native.parent_path());
  std::ofstream file(native, std::ios::binary);
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
  EXPECT_TRUE(file.flush()) << path << " cannot be written";
}

void WriteShellProgram(const std::string& path, std::string_view commands) {
  WriteText(path, "#!/bin/sh\n" + std::string(commands));
  std::filesystem::permissions(path, std::filesystem::perms::owner_all);
}

}  // namespace tarnwick::tests
