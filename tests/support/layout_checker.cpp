#include "support/layout_checker.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>

#include "support/layout_checks.h"

namespace tarnwick::tests {

namespace {

std::string ReadWhole(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

std::vector<std::string> LayoutChecks::Run() {
  if (!CheckHeader()) return m_problems;
  CheckBones();
  CheckTexts();
  CheckTables();
  CheckBodyParts();
  if (!m_parts.empty()) {
    CheckVvd();
    CheckVtx();
  }
  if (!m_files.Phy.empty()) CheckPhy();
  return m_problems;
}

void LayoutChecks::CheckPhy() {
  uint32_t words[4] = {};
  if (!Expect(m_files.Phy.size() >= sizeof words, "the .phy file is shorter than its header")) return;
  std::memcpy(words, m_files.Phy.data(), sizeof words);
  Expect(words[0] == 16 && words[1] == 0, "the .phy header is ", words[0], " bytes");
  Expect(words[3] == static_cast<uint32_t>(m_header.Checksum), "the .phy file's checksum differs");
  Expect(m_files.Phy.back() == '\0', "the .phy file does not end in a zero byte");
  const auto bones = Table<model::StudioBone>("bones", m_header.BoneOffset, m_header.BoneCount);
  int32_t highest = 0;
  for (const auto bone : bones) highest = std::max<int32_t>(highest, bone->PhysicsSolid);
  Expect(highest == static_cast<int32_t>(words[2]) - 1, "the bones name solid ", highest, " of ", words[2]);
}

std::vector<std::string> CheckLayout(const LayoutFiles& files) {
  return LayoutChecks(files).Run();
}

LayoutFiles ReadLayoutFiles(const std::string& path) {
  const std::string stem = path.substr(0, path.size() - 4);
  return {ReadWhole(path), ReadWhole(stem + ".vvd"), ReadWhole(stem + ".dx90.vtx"), ReadWhole(stem + ".phy")};
}

}  // namespace tarnwick::tests
