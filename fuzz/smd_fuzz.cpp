// Scans any bytes as an SMD file, cut into pieces in two ways, against a scan by words, and replaces a name in them,
// against a walk by character.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "smd/smd_scan.h"
#include "smd/text_replacer.h"

using namespace tarnwick;

namespace {

template <typename Take>
void InPieces(std::string_view text, size_t piece, Take take) {
  for (; !text.empty(); text.remove_prefix(std::min(piece, text.size()))) take(text.substr(0, piece));
}

struct Scan {
  smd::SmdSummary Summary;
  bool Sound = false;
  int64_t Line = 0;

  bool operator==(const Scan&) const = default;
};

Scan ScanInPieces(std::string_view text, size_t piece) {
  Scan scan;
  smd::SmdScanner scanner(scan.Summary);
  InPieces(text, piece, [&](std::string_view bytes) { scanner.Feed(bytes); });
  scan.Sound = scanner.Finish();
  scan.Line = scanner.LineNumber();
  return scan;
}

using Words = std::vector<std::string>;

/// The words of `line` that stand apart by any of `separators`.
Words WordsOf(const std::string& line, std::string_view separators) {
  Words words;
  bool inWord = false;
  for (const char c : line) {
    const bool apart = separators.find(c) != std::string_view::npos;
    if (!apart && !inWord) words.emplace_back();
    if (!apart) words.back() += c;
    inWord = !apart;
  }
  return words;
}

/// The same scan without any thought of speed: the text's lines first, then each line's words.
class PlainScan {
 public:
  static Scan Of(std::string_view text) {
    PlainScan plain;
    plain.m_scan.Sound = true;
    std::string line;
    for (const char c : text) {
      if (c != '\n') {
        line += c;
        continue;
      }
      if (!line.empty() && line.back() == '\r') line.pop_back();
      plain.Take(line);
      line.clear();
    }
    if (!line.empty()) {
      line.pop_back();  // a last line without an end
      plain.Take(line);
    }
    return plain.m_scan;
  }

 private:
  void Take(std::string line) {
    if (!m_scan.Sound) return;
    ++m_scan.Line;
    while (!line.empty() && line.front() == ' ') line.erase(0, 1);
    const bool ends = line.substr(0, 3) == "end";
    if (m_section.empty()) {
      for (const std::string section : {"nodes", "skeleton", "triangles"}) {
        if (line.substr(0, section.size()) == section) m_section = section;
      }
    } else if (ends) {
      m_section.clear();
    } else if (m_section == "nodes") {
      Judge(IsNode(line), m_scan.Summary.BoneCount);
    } else if (m_section == "triangles") {
      TakeTriangleLine(line);
    } else if (line.substr(0, 4) == "time") {
      ++m_scan.Summary.FrameCount;
    } else {
      m_scan.Sound = WordsOf(line, " ").size() >= 7;
    }
  }

  void TakeTriangleLine(const std::string& line) {
    if (m_corner == 0) {
      const Words words = WordsOf(line, " \t\r");
      Judge(!words.empty(), m_scan.Summary.TriangleCount);
      if (!words.empty()) AddFace(words[0]);
    } else {
      const Words words = WordsOf(line, " ");
      // Saturates where a number is too large, as atoi need not.
      const long links = words.size() > 9 ? std::strtol(words[9].c_str(), nullptr, 10) : 0;
      m_scan.Sound =
          words.size() >= 9 && (links <= 0 || words.size() >= 10 + 2 * static_cast<size_t>(std::min(5L, links)));
    }
    if (m_scan.Sound) m_corner = (m_corner + 1) % 4;
  }

  /// Index, name, parent; a name in quotes goes on to the next quote, tab or carriage return.
  static bool IsNode(const std::string& line) {
    const Words words = WordsOf(line, " \t\r");
    if (words.size() < 2 || words[1].front() != '"' || words[1].back() == '"') return words.size() > 2;
    const size_t index = line.find(words[0]);
    const size_t name = line.find(words[1], index + words[0].size());
    // The character behind the name's first word parts it from the rest, and ends no name.
    const size_t rest = name + words[1].size() + 1;
    const size_t end = rest < line.size() ? line.find_first_of("\"\t\r", rest) : std::string::npos;
    return end != std::string::npos && !WordsOf(line.substr(end + 1), " \t\r").empty();
  }

  void AddFace(const std::string& name) {
    for (smd::SmdMaterialCount& material : m_scan.Summary.Materials) {
      if (material.Name != name) continue;
      ++material.FaceCount;
      return;
    }
    m_scan.Summary.Materials.push_back({name, 1});
  }

  template <typename Count>
  void Judge(bool good, Count& count) {
    if (good) {
      ++count;
    } else {
      m_scan.Sound = false;
    }
  }

  Scan m_scan;
  std::string m_section;
  int m_corner = 0;
};

std::string ReplaceInPieces(std::string_view text, const std::string& from, size_t piece) {
  std::string result;
  smd::TextReplacer replacer(from, "<" + from + ">", [&](std::string_view bytes) { result += bytes; });
  InPieces(text, piece, [&](std::string_view bytes) { replacer.Feed(bytes); });
  replacer.Finish();
  return result;
}

std::string ReplacePlainly(std::string_view text, const std::string& from) {
  std::string result;
  while (!text.empty()) {
    const bool here = text.starts_with(from);
    result += here ? "<" + from + ">" : std::string(text.substr(0, 1));
    text.remove_prefix(here ? from.size() : 1);
  }
  return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (text.empty()) return 0;
  const size_t piece = 1 + data[0] % 16;
  const Scan whole = ScanInPieces(text, text.size());
  if (!(ScanInPieces(text, piece) == whole)) std::abort();
  if (text.find('\0') == std::string_view::npos && !(PlainScan::Of(text) == whole)) std::abort();
  int64_t faces = 0;
  for (const smd::SmdMaterialCount& material : whole.Summary.Materials) faces += material.FaceCount;
  if (faces != whole.Summary.TriangleCount) std::abort();

  const std::string from(text.substr(0, 1 + data[size - 1] % 8));
  if (ReplaceInPieces(text, from, piece) != ReplacePlainly(text, from)) std::abort();
  return 0;
}
