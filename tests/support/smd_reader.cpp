#include "support/smd_reader.h"

#include <cstdlib>
#include <optional>

namespace tarnwick::tests {

namespace {

/// The reader stands before a line; each Read function takes what belongs to it, and gives false, with the problem
/// noted, at the first bad line.
class SmdReader {
 public:
  SmdReader(std::string_view text, SmdFile& file) : m_text(text), m_file(file) { Next(); }

  bool Read() {
    if (!Expect("version 1") || !Expect("nodes") || !ReadNodes() || !Expect("skeleton") || !ReadSkeleton())
      return false;
    if (Take("triangles")) {
      if (!ReadTriangles()) return false;
    } else if (Take("vertexanimation")) {
      if (!ReadVertexFrames()) return false;
    }
    return m_atEnd || Bad("nothing");
  }

 private:
  bool ReadNodes() {
    for (; !Take("end"); Next()) {
      const size_t open = m_line.find('"'), close = m_line.rfind('"');
      if (m_atEnd || open == std::string_view::npos || open == close) return Bad("a node");
      const auto index = Numbers<1>(m_line.substr(0, open));
      const auto parent = Numbers<1>(m_line.substr(close + 1));
      const auto count = static_cast<double>(m_file.Nodes.size());
      if (!index || (*index)[0] != count || !parent || (*parent)[0] < -1) return Bad("the next node");
      m_file.Nodes.push_back({std::string(m_line.substr(open + 1, close - open - 1)), static_cast<int>((*parent)[0])});
    }
    for (const SmdNode& node : m_file.Nodes) {
      if (node.Parent >= static_cast<int>(m_file.Nodes.size())) return Bad("parents that exist, before this line");
    }
    return true;
  }

  bool ReadSkeleton() {
    while (!Take("end")) {
      if (!Expect("time " + std::to_string(m_file.Frames.size()))) return false;
      auto& frame = m_file.Frames.emplace_back();
      for (size_t bone = 0; bone < m_file.Nodes.size(); ++bone, Next()) {
        const auto pose = Numbers<7>(m_line);
        if (!pose || (*pose)[0] != static_cast<double>(bone)) return Bad("the next bone's pose");
        SmdPose values;
        for (size_t i = 0; i < 6; ++i) values[i] = (*pose)[i + 1];
        frame.push_back(values);
      }
    }
    return true;
  }

  bool ReadTriangles() {
    while (!Take("end")) {
      if (m_atEnd || m_line.empty() || m_line.front() == ' ') return Bad("a material");
      SmdTriangle& triangle = m_file.Triangles.emplace_back();
      triangle.Material = m_line;
      Next();
      for (SmdVertex& corner : triangle.Corners) {
        if (!ReadCorner(corner)) return false;
      }
    }
    return true;
  }

  bool ReadCorner(SmdVertex& corner) {
    const std::vector<double> values = AllNumbers(m_line);
    const bool hasWeights = values.size() > 9;
    if (values.size() < 9 || !IsBone(values[0])) return Bad("a vertex");
    if (hasWeights && values.size() != 10 + 2 * static_cast<size_t>(values[9])) return Bad("as many weights as told");
    corner.Bone = static_cast<int>(values[0]);
    for (size_t i = 0; i < 8; ++i) corner.Values[i] = values[i + 1];
    for (size_t i = 10; i < values.size(); i += 2) {
      if (!IsBone(values[i])) return Bad("weights of bones that exist");
      corner.Weights.push_back({static_cast<int>(values[i]), values[i + 1]});
    }
    Next();
    return true;
  }

  bool ReadVertexFrames() {
    while (!Take("end")) {
      if (!m_line.starts_with("time ")) return Bad("the time of a vertex frame");
      const auto time = Numbers<1>(m_line.substr(5, m_line.find(" //") - 5));
      if (!time) return Bad("a number of a vertex frame");
      VtaFrame& frame = m_file.VertexFrames.emplace_back(VtaFrame{static_cast<int>((*time)[0]), {}});
      Next();
      for (; !m_atEnd && m_line.starts_with("    "); Next()) {
        const auto values = Numbers<7>(m_line);
        if (!values) return Bad("a vertex");
        VtaVertex vertex{static_cast<int>((*values)[0]), {}};
        for (size_t i = 0; i < 6; ++i) vertex.Values[i] = (*values)[i + 1];
        frame.Vertices.push_back(vertex);
        if (vertex.Vertex >= static_cast<int>(m_file.VertexFrames[0].Vertices.size())) return Bad("a known vertex");
      }
    }
    return true;
  }

  bool IsBone(double index) const { return index >= 0 && index < static_cast<double>(m_file.Nodes.size()); }

  /// The numbers of a line that holds nothing else; fewer than there are tokens if one is no number.
  static std::vector<double> AllNumbers(std::string_view line) {
    const std::string text(line);
    std::vector<double> numbers;
    const char* at = text.c_str();
    while (true) {
      char* end = nullptr;
      const double number = std::strtod(at, &end);
      if (end == at) break;
      numbers.push_back(number);
      at = end;
    }
    return std::string_view(at).find_first_not_of(' ') == std::string_view::npos ? numbers : std::vector<double>();
  }
  template <size_t Count>
  static std::optional<std::array<double, Count>> Numbers(std::string_view line) {
    const std::vector<double> all = AllNumbers(line);
    if (all.size() != Count) return std::nullopt;
    std::array<double, Count> numbers;
    for (size_t i = 0; i < Count; ++i) numbers[i] = all[i];
    return numbers;
  }

  void Next() {
    ++m_number;
    m_atEnd = m_text.empty();
    const size_t end = m_text.find('\n');
    m_line = m_text.substr(0, end);
    m_text = end == std::string_view::npos ? std::string_view() : m_text.substr(end + 1);
  }
  bool Take(std::string_view line) {
    if (m_atEnd || m_line != line) return false;
    Next();
    return true;
  }
  bool Expect(std::string_view line) { return Take(line) || Bad(line); }
  bool Bad(std::string_view expected) {
    m_file.Problem = "line " + std::to_string(m_number) + " should be " + std::string(expected) + ": " +
                     std::string(m_atEnd ? "(end of the file)" : m_line);
    return false;
  }

  std::string_view m_text;
  std::string_view m_line;
  int m_number = 0;
  bool m_atEnd = false;
  SmdFile& m_file;
};

}  // namespace

SmdFile ReadSmd(std::string_view text) {
  SmdFile file;
  SmdReader(text, file).Read();
  return file;
}

}  // namespace tarnwick::tests
