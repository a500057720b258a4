#include "smd/smd_scan.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "core/number_parse.h"

namespace tarnwick::smd {

namespace {

constexpr std::string_view White = " \t\r";
constexpr int PoseTokens = 7;
constexpr int VertexTokens = 9;
constexpr int LinksExamined = 5;

/// Takes the next token off the front of `rest`; nothing if only separators are left. The separator behind it goes too.
std::optional<std::string_view> TakeToken(std::string_view& rest, std::string_view separators) {
  const size_t begin = rest.find_first_not_of(separators);
  if (begin == std::string_view::npos) {
    rest = {};
    return std::nullopt;
  }
  const size_t end = std::min(rest.find_first_of(separators, begin), rest.size());
  const std::string_view token = rest.substr(begin, end - begin);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return token;
}

/// Passes over up to `count` tokens at `next` that are separated by blanks; gives how many there were. This is where a
/// scan spends its time.
int PassTokens(const char*& next, const char* end, int count) {
  for (int passed = 0; passed < count; ++passed) {
    while (next != end && *next == ' ') ++next;
    if (next == end) return passed;
    while (next != end && *next != ' ') ++next;
  }
  return count;
}

/// Whether a vertex line has its nine tokens and, if a link count follows, a pair for each of the first links.
bool IsVertex(std::string_view line) {
  const char* next = line.data();
  const char* const end = next + line.size();
  if (PassTokens(next, end, VertexTokens) < VertexTokens) return false;
  while (next != end && *next == ' ') ++next;
  if (next == end) return true;
  const char* const count = next;
  PassTokens(next, end, 1);
  const int32_t links = core::ParseWhole({count, static_cast<size_t>(next - count)});
  const int needed = 2 * std::clamp(links, 0, LinksExamined);
  return PassTokens(next, end, needed) == needed;
}

}  // namespace

bool SmdScanner::Feed(std::string_view bytes) {
  while (!m_bad && !bytes.empty()) {
    const void* newline = std::memchr(bytes.data(), '\n', bytes.size());
    if (newline == nullptr) {
      m_begun.append(bytes);
      break;
    }
    const auto length = static_cast<size_t>(static_cast<const char*>(newline) - bytes.data());
    std::string_view line = bytes.substr(0, length);
    if (!m_begun.empty()) line = m_begun.append(line);
    if (line.ends_with('\r')) line.remove_suffix(1);
    m_bad = !Line(line);
    m_begun.clear();
    bytes.remove_prefix(length + 1);
  }
  return !m_bad;
}

bool SmdScanner::Finish() {
  if (!m_bad && !m_begun.empty()) {
    m_begun.pop_back();
    m_bad = !Line(m_begun);
    m_begun.clear();
  }
  return !m_bad;
}

bool SmdScanner::Line(std::string_view line) {
  ++m_lineNumber;
  line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
  if (m_section == Section::None) {
    if (line.starts_with("triangles")) {
      m_section = Section::Triangles;
    } else if (line.starts_with("nodes")) {
      m_section = Section::Nodes;
    } else if (line.starts_with("skeleton")) {
      m_section = Section::Skeleton;
    }
    return true;
  }
  if (line.starts_with("end")) {
    m_section = Section::None;
    return true;
  }
  if (m_section == Section::Nodes) return NodesLine(line);
  return m_section == Section::Skeleton ? SkeletonLine(line) : TrianglesLine(line);
}

bool SmdScanner::NodesLine(std::string_view line) {
  TakeToken(line, White);
  const std::optional<std::string_view> name = TakeToken(line, White);
  if (!name) return false;
  if (name->starts_with('"') && !name->ends_with('"')) {  // the name holds a blank and goes on to its closing quote
    const size_t end = line.find_first_of("\"\t\r");
    line.remove_prefix(end == std::string_view::npos ? line.size() : end + 1);
  }
  if (!TakeToken(line, White)) return false;
  ++m_summary.BoneCount;
  return true;
}

bool SmdScanner::SkeletonLine(std::string_view line) {
  if (line.starts_with("time")) {
    ++m_summary.FrameCount;
    return true;
  }
  const char* next = line.data();
  return PassTokens(next, next + line.size(), PoseTokens) == PoseTokens;
}

bool SmdScanner::TrianglesLine(std::string_view line) {
  if (m_position == 0) {
    const std::optional<std::string_view> material = TakeToken(line, White);
    if (!material) return false;
    AddFace(*material);
    ++m_summary.TriangleCount;
  } else if (!IsVertex(line)) {
    return false;
  }
  m_position = (m_position + 1) % 4;
  return true;
}

void SmdScanner::AddFace(std::string_view material) {
  std::vector<SmdMaterialCount>& materials = m_summary.Materials;
  // Triangles of one material mostly follow one another.
  if (m_lastMaterial >= materials.size() || materials[m_lastMaterial].Name != material) {
    const auto known = m_materials.find(material);
    if (known != m_materials.end()) {
      m_lastMaterial = known->second;
    } else {
      m_lastMaterial = materials.size();
      m_materials.emplace(material, m_lastMaterial);
      materials.push_back({std::string(material), 0});
    }
  }
  ++materials[m_lastMaterial].FaceCount;
}

bool ScanSmdFile(core::InputFile& file, SmdSummary& summary, int64_t* badLine) {
  SmdScanner scanner(summary);
  bool sound = true;
  for (std::string_view bytes = file.Read(); sound && !bytes.empty(); bytes = file.Read()) sound = scanner.Feed(bytes);
  if (!file.Error().empty()) return false;
  sound = scanner.Finish() && sound;
  if (!sound && badLine != nullptr) *badLine = scanner.LineNumber();
  return sound;
}

}  // namespace tarnwick::smd
