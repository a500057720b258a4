// One pass over the text. A line is read number by number where it stands; nothing is copied but names.

#include "smd/smd_reader.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <unordered_map>

#include "core/paths.h"

namespace tarnwick::smd {

namespace {

constexpr size_t MostMessages = 50;
constexpr std::array<double, 23> PowersOfTen = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                                1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

constexpr uint64_t BitOf(char c) {
  return uint64_t{1} << c;
}
constexpr uint64_t Blanks = BitOf(' ') | BitOf('\t') | BitOf('\v') | BitOf('\f') | BitOf('\0');
constexpr uint64_t LineEnds = BitOf('\n') | BitOf('\r');

/// Whether `c` is one of a set of letters up to the blank.
bool IsOneOf(uint64_t set, char c) {
  const auto code = static_cast<unsigned char>(c);
  return code <= ' ' && (set >> code & 1) != 0;
}
bool IsBlank(char c) {
  return IsOneOf(Blanks, c);
}
bool IsLineEnd(char c) {
  return IsOneOf(LineEnds, c);
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

/// Whether a double lies exactly between two floats, so that rounding it would round twice.
bool BetweenFloats(double value) {
  constexpr uint64_t Below = (uint64_t{1} << 29) - 1;
  return (std::bit_cast<uint64_t>(value) & Below) == uint64_t{1} << 28;
}

// Eight letters at once, the first in the lowest byte.

constexpr uint64_t EveryByte = 0x0101010101010101;

/// Whether all bytes are 0 to 9.
bool AreDigits(uint64_t bytes) {
  return (((bytes + 0x76 * EveryByte) | bytes) & 0x80 * EveryByte) == 0;
}
/// The number of eight decimal digits: neighbours are joined to pairs, pairs to fours, fours to the whole.
uint64_t NumberOf(uint64_t digits) {
  constexpr uint64_t FirstOfFour = 0x000000FF000000FF;
  const uint64_t pairs = digits * 10 + (digits >> 8);
  return ((pairs & FirstOfFour) * (100 + (uint64_t{1000000} << 32)) +
          (pairs >> 16 & FirstOfFour) * (1 + (uint64_t{10000} << 32))) >>
         32;
}

/// The quick way, for what nearly all files are full of: up to seven digits, a point, six digits. Gives where the
/// number ends; nothing where it is written otherwise or too near to the text's end.
inline const char* ParseSixDecimals(const char* p, const char* end, float& value) {
  constexpr ptrdiff_t Longest = 24;
  if (std::endian::native != std::endian::little || end - p < Longest) return nullptr;
  const bool minus = *p == '-';
  p += minus ? 1 : 0;
  uint64_t letters = 0, decimals = 0;
  std::memcpy(&letters, p, sizeof letters);
  const uint64_t points = letters ^ '.' * EveryByte;
  const uint64_t found = (points - EveryByte) & ~points & 0x80 * EveryByte;
  const auto whole = static_cast<size_t>(std::countr_zero(found)) / 8;  // digits ahead of the point
  if (found == 0 || whole == 0) return nullptr;
  std::memcpy(&decimals, p + whole + 1, sizeof decimals);
  const uint64_t ahead = (letters ^ '0' * EveryByte) << (64 - 8 * whole);
  const uint64_t behind = (decimals ^ '0' * EveryByte) << 16;
  const char* after = p + whole + 7;
  if (!AreDigits(ahead) || !AreDigits(behind) || !IsOneOf(Blanks | LineEnds, *after)) return nullptr;
  const double wide = static_cast<double>(NumberOf(ahead) * 1000000 + NumberOf(behind)) / 1e6;
  if (BetweenFloats(wide)) return nullptr;
  // Signs follow no pattern; a branch on them would mostly be guessed wrong.
  const auto bits = std::bit_cast<uint32_t>(static_cast<float>(wide));
  value = std::bit_cast<float>(bits | static_cast<uint32_t>(minus) << 31);
  return after;
}

/// The slow way, for numbers of many digits.
const char* ParseLongFloat(const char* at, const char* end, float& value) {
  const char* begin = at;
  if (begin < end && *begin == '+') ++begin;
  double wide = 0;
  const auto read = std::from_chars(begin, end, value);
  if (read.ec == std::errc()) return read.ptr;
  if (read.ec != std::errc::result_out_of_range) return at;
  // Too small or too large for a float: a double, or else the exponent's sign, tells which.
  const auto again = std::from_chars(begin, end, wide);
  const std::string_view text(begin, static_cast<size_t>(read.ptr - begin));
  const size_t exponent = text.find_first_of("eE");
  const bool smallText = exponent == std::string_view::npos ? text.find_first_of("123456789") > text.find('.')
                                                            : text.substr(exponent + 1).starts_with('-');
  const bool inDouble = again.ec == std::errc();
  if (inDouble && std::abs(wide) <= double{std::numeric_limits<float>::max()}) {
    value = static_cast<float>(wide);
  } else if (!inDouble && smallText) {
    value = 0;
  } else {
    value = std::numeric_limits<float>::infinity();
  }
  if (text.starts_with('-')) value = -std::abs(value);
  return read.ptr;
}

class Reader {
 public:
  Reader(std::string_view text, SmdSource& source, std::vector<SourceMessage>& messages)
      : m_at(text.data()), m_end(text.data() + text.size()), m_source(source), m_messages(messages) {}

  void Run() {
    bool seenVersion = false;
    while (NextLine()) {
      const std::string_view word = Word();
      if (word.empty()) continue;
      if (core::EqualIgnoringCase(word, "version")) {
        if (Word() != "1") Tell(false, "the version is not 1");
        seenVersion = true;
      } else if (core::EqualIgnoringCase(word, "nodes")) {
        Nodes();
      } else if (core::EqualIgnoringCase(word, "skeleton")) {
        Skeleton();
      } else if (core::EqualIgnoringCase(word, "triangles")) {
        Triangles();
      } else if (core::EqualIgnoringCase(word, "vertexanimation")) {
        Shapes();
      } else if (!core::EqualIgnoringCase(word, "end")) {
        if (!seenVersion && m_source.Nodes.empty()) {
          Tell(true, "this is no SMD file: it does not begin with \"version 1\"");
          return;
        }
        Tell(false, "a line of no block is passed over");
      }
    }
    FinishSkeleton();
  }

 private:
  // Lines and words

  /// Goes to the next line; false at the text's end.
  bool NextLine() {
    if (m_begun) {
      while (m_at < m_end && !IsLineEnd(*m_at)) ++m_at;
      if (m_at == m_end) return false;
      const char first = *m_at++;
      if (first == '\r' && m_at < m_end && *m_at == '\n') ++m_at;
    }
    m_begun = true;
    if (m_at == m_end) return false;
    ++m_line;
    SkipBlanks();
    return true;
  }
  void SkipBlanks() {
    while (m_at < m_end && IsBlank(*m_at)) ++m_at;
  }
  /// Whether the line, or what is not a comment of it, ends here.
  bool AtEnd() {
    SkipBlanks();
    if (m_at == m_end || IsLineEnd(*m_at) || *m_at == '#' || *m_at == ';') return true;
    return *m_at == '/' && m_at + 1 < m_end && m_at[1] == '/';
  }
  std::string_view Word() {
    if (AtEnd()) return {};
    const char* begin = m_at;
    while (m_at < m_end && !IsBlank(*m_at) && !IsLineEnd(*m_at)) ++m_at;
    return {begin, static_cast<size_t>(m_at - begin)};
  }
  std::string_view Name() {
    if (AtEnd() || *m_at != '"') return Word();
    const char* begin = ++m_at;
    while (m_at < m_end && *m_at != '"' && !IsLineEnd(*m_at)) ++m_at;
    const std::string_view name(begin, static_cast<size_t>(m_at - begin));
    if (m_at < m_end && *m_at == '"') ++m_at;
    return name;
  }
  /// The rest of the line without blanks at its ends.
  std::string_view Rest() {
    const char* begin = m_at;
    while (m_at < m_end && !IsLineEnd(*m_at)) ++m_at;
    const char* end = m_at;
    while (end > begin && IsBlank(end[-1])) --end;
    return {begin, static_cast<size_t>(end - begin)};
  }
  bool IsEndLine(std::string_view word) const { return core::EqualIgnoringCase(word, "end"); }

  /// A whole number, also one with a fraction. False where the line ends.
  bool Int(int32_t& value) {
    if (AtEnd()) return false;
    const char* p = m_at;
    const bool minus = *p == '-';
    if (minus || *p == '+') ++p;
    int64_t number = 0;
    const char* digits = p;
    while (p < m_end && IsDigit(*p) && p - digits < 10) number = number * 10 + (*p++ - '0');
    if (p > digits && (p == m_end || IsBlank(*p) || IsLineEnd(*p))) {
      number = minus ? -number : number;
      value = static_cast<int32_t>(std::max<int64_t>(std::min<int64_t>(number, INT32_MAX), INT32_MIN));
      m_at = p;
      return true;
    }
    float wide = 0;
    if (!Float(wide)) return false;
    value = wide >= -2147483648.0f && wide < 2147483648.0f ? static_cast<int32_t>(wide) : -1;
    return true;
  }
  /// False where the line ends.
  bool Float(float& value) {
    SkipBlanks();
    const char* after = ParseFloat(m_at, m_end, value);
    if (after != m_at && (after == m_end || IsBlank(*after) || IsLineEnd(*after)) && std::isfinite(value)) {
      m_at = after;
      return true;
    }
    if (AtEnd()) return false;
    const std::string_view word = Word();
    const std::string shown = "\"" + std::string(word.substr(0, 40)) + "\"";
    // Some programs write what is no number as "-1.#IND" and its like.
    if (after == word.data() || !std::isfinite(value) || word.find(".#") != std::string_view::npos) {
      value = 0;
      Tell(false, shown + " is no finite number and counts as 0");
    } else if (after < word.data() + word.size()) {
      const auto rest = static_cast<size_t>(after - word.data());
      Tell(false, "the number " + shown + " is read up to \"" + std::string(word.substr(rest, 40)) + "\"");
    }
    return true;
  }
  /// So many numbers, the quick way as far as it goes.
  template <size_t Count>
  bool Floats(float (&values)[Count]) {
    const char* at = m_at;
    size_t i = 0;
    for (; i < Count; ++i) {
      while (at < m_end && *at == ' ') ++at;
      const char* after = ParseSixDecimals(at, m_end, values[i]);
      if (after == nullptr) break;
      at = after;
    }
    m_at = at;
    for (; i < Count; ++i) {
      if (!Float(values[i])) return false;
    }
    return true;
  }

  void Tell(bool error, std::string text) {
    // Errors are never hidden by warnings.
    size_t same = 0;
    for (const SourceMessage& message : m_messages) same += message.IsError == error ? 1 : 0;
    if (same < MostMessages) m_messages.push_back({m_line, error, std::move(text)});
  }

  // Blocks

  void Nodes() {
    if (m_source.FrameCount > 0 || !m_source.Corners.empty()) Tell(true, "nodes stand behind what names them");
    while (NextLine()) {
      if (AtEnd()) continue;
      const char* begin = m_at;
      if (IsEndLine(Word())) return;
      m_at = begin;
      int32_t id = 0, parent = -1;
      const bool haveId = Int(id);
      const std::string_view name = Name();
      if (!haveId || !Int(parent)) {
        Tell(true, "a node needs a number, a name and the number of its parent");
        continue;
      }
      if (m_source.FrameCount > 0 || !m_source.Corners.empty()) continue;
      if (m_source.Nodes.size() >= MostSourceNodes) {
        Tell(true, "more than " + std::to_string(MostSourceNodes) + " nodes");
        continue;
      }
      if (!m_nodes.try_emplace(id, static_cast<int32_t>(m_source.Nodes.size())).second) {
        Tell(false, "node " + std::to_string(id) + " stands twice; the first counts");
        continue;
      }
      m_source.Nodes.push_back({std::string(name), -1});
      m_parents.push_back(parent);
    }
  }

  /// The place of node `id`, -1 if there is none.
  int32_t NodeAt(int32_t id) {
    if (id >= 0 && static_cast<size_t>(id) < m_quick.size()) return m_quick[static_cast<size_t>(id)];
    const auto found = m_nodes.find(id);
    return found == m_nodes.end() ? -1 : found->second;
  }
  void MakeQuick() {
    m_quick.assign(MostSourceNodes, -1);
    for (const auto& [id, place] : m_nodes) {
      if (id >= 0 && static_cast<size_t>(id) < m_quick.size()) m_quick[static_cast<size_t>(id)] = place;
    }
  }

  void FinishSkeleton() {
    for (size_t i = 0; i < m_parents.size(); ++i) {
      const int32_t parent = m_parents[i] < 0 ? -1 : NodeAt(m_parents[i]);
      m_source.Nodes[i].Parent = parent;
      if (m_parents[i] >= 0 && parent < 0) {
        Tell(false, "the parent of \"" + m_source.Nodes[i].Name + "\" is no node");
      }
    }
    // A ring of parents has no root: its first bone is made one.
    for (size_t i = 0; i < m_source.Nodes.size(); ++i) {
      int32_t at = static_cast<int32_t>(i);
      for (size_t steps = 0; at >= 0; ++steps) {
        if (steps > m_source.Nodes.size()) {
          Tell(true, "\"" + m_source.Nodes[i].Name + "\" hangs from itself");
          m_source.Nodes[i].Parent = -1;
          break;
        }
        at = m_source.Nodes[static_cast<size_t>(at)].Parent;
      }
    }
  }

  void Skeleton() {
    MakeQuick();
    const size_t nodes = m_source.Nodes.size();
    m_source.NodePosed.resize(nodes, 0);
    std::vector<SourcePose>& poses = m_source.Poses;
    bool full = false;
    while (NextLine()) {
      if (AtEnd()) continue;
      if (!IsDigit(*m_at) && *m_at != '-') {
        const std::string_view word = Word();
        if (IsEndLine(word)) return;
        if (!core::EqualIgnoringCase(word, "time")) {
          Tell(true, "a line of the skeleton is neither a frame nor a bone's place");
          continue;
        }
        full = full || poses.size() + nodes > MostSourcePoses;
        if (full) {
          Tell(true, "more frames than can be held");
          continue;
        }
        const size_t before = poses.size();
        poses.resize(before + nodes);
        if (before >= nodes && nodes > 0) {
          std::memcpy(&poses[before], &poses[before - nodes], nodes * sizeof(SourcePose));
        }
        ++m_source.FrameCount;
        continue;
      }
      int32_t id = 0;
      SourcePose pose;
      float v[6];
      if (!Int(id) || !Floats(v)) {
        Tell(true, "a bone's place needs its number and six numbers");
        continue;
      }
      pose.Position = {v[0], v[1], v[2]};
      pose.Rotation = {v[3], v[4], v[5]};
      const int32_t node = NodeAt(id);
      if (node < 0) {
        Tell(false, "node " + std::to_string(id) + " is not there");
        continue;
      }
      if (m_source.FrameCount == 0) {
        Tell(true, "a bone's place stands ahead of the first frame");
        continue;
      }
      if (full) continue;
      poses[poses.size() - nodes + static_cast<size_t>(node)] = pose;
      m_source.NodePosed[static_cast<size_t>(node)] = 1;
    }
  }

  int32_t MaterialAt(std::string_view name) {
    if (!m_source.Materials.empty() && m_source.Materials[m_lastMaterial] == name) {
      return static_cast<int32_t>(m_lastMaterial);
    }
    const auto [found, added] = m_materials.try_emplace(std::string(name), m_source.Materials.size());
    if (added) m_source.Materials.emplace_back(name);
    m_lastMaterial = found->second;
    return static_cast<int32_t>(m_lastMaterial);
  }

  void Triangles() {
    MakeQuick();
    const auto left = static_cast<size_t>(m_end - m_at);
    m_source.Corners.reserve(m_source.Corners.size() + left / 80);
    m_source.Links.reserve(m_source.Links.size() + left / 80);
    while (NextLine()) {
      const std::string_view material = Rest();
      if (material.starts_with("//")) continue;
      if (material.empty()) {
        PassNameless();
        continue;
      }
      if (IsEndLine(material)) return;
      const size_t corners = m_source.Corners.size(), links = m_source.Links.size();
      bool sound = true;
      for (int corner = 0; corner < 3 && sound; ++corner) sound = NextCornerLine() && Corner();
      if (!sound) {
        Tell(true, "a corner of a triangle needs a bone, a place, a normal and two texture coordinates");
        m_source.Corners.resize(corners);
        m_source.Links.resize(links);
        continue;
      }
      m_source.TriangleMaterials.push_back(MaterialAt(material));
    }
  }
  /// Behind an empty line: a triangle, if its corners follow at once, belongs to no mesh for want of a material.
  void PassNameless() {
    const char* at = m_at;
    const int64_t line = m_line;
    if (!NextLine() || !IsCornerAhead()) {
      m_at = at;
      m_line = line;
      return;
    }
    Tell(false, "a triangle has no material and is left out");
    for (int corner = 1; corner < 3 && NextCornerLine(); ++corner) continue;
  }
  /// Whether the line begins with as many numbers as a corner has.
  bool IsCornerAhead() const {
    constexpr int Numbers = 9;
    const char* at = m_at;
    for (int i = 0; i < Numbers; ++i) {
      while (at < m_end && IsBlank(*at)) ++at;
      float value = 0;
      const char* after = ParseFloat(at, m_end, value);
      if (after == at) return false;
      at = after;
      if (at < m_end && !IsBlank(*at) && !IsLineEnd(*at)) return false;
    }
    return true;
  }
  bool NextCornerLine() {
    while (NextLine()) {
      if (!AtEnd()) return true;
    }
    return false;
  }

  bool Corner() {
    SourceCorner corner;
    int32_t bone = 0;
    float v[8];
    if (!Int(bone) || !Floats(v)) return false;
    corner.Position = {v[0], v[1], v[2]};
    corner.Normal = {v[3], v[4], v[5]};
    corner.U = v[6];
    corner.V = v[7];
    corner.Bone = Bone(bone);
    corner.FirstLink = static_cast<uint32_t>(m_source.Links.size());
    int32_t links = 0;
    if (Int(links)) {
      float sum = 0;
      for (int32_t i = 0; i < links; ++i) {
        Link link;
        float weight[1];
        if (!Int(link.Bone) || !Floats(weight)) break;
        link.Weight = weight[0];
        link.Bone = Bone(link.Bone);
        m_source.Links.push_back(link);
        sum += link.Weight;
      }
      corner.LinkCount = static_cast<uint32_t>(m_source.Links.size()) - corner.FirstLink;
      // What the links leave belongs to the corner's own bone.
      constexpr float Rounding = 0.001f;
      if (corner.LinkCount > 0 && sum > 0 && sum < 1 - Rounding) {
        m_source.Links.push_back({corner.Bone, 1 - sum});
        ++corner.LinkCount;
      }
    }
    m_source.Corners.push_back(corner);
    return true;
  }
  int32_t Bone(int32_t id) {
    const int32_t node = NodeAt(id);
    if (node >= 0) return node;
    if (m_source.Nodes.empty()) {
      if (!m_toldNodes) Tell(true, "there are triangles and no nodes");
      m_toldNodes = true;
    } else {
      Tell(false, "a corner follows bone " + std::to_string(id) + ", which is not there; it follows the first");
    }
    return 0;
  }

  void Shapes() {
    while (NextLine()) {
      if (AtEnd()) continue;
      if (!IsDigit(*m_at) && *m_at != '-') {
        const std::string_view word = Word();
        if (IsEndLine(word)) return;
        int32_t time = 0;
        if (!core::EqualIgnoringCase(word, "time") || !Int(time)) {
          Tell(true, "a line of the shapes is neither a shape nor a vertex");
          continue;
        }
        m_source.Shapes.push_back({time, {}});
        continue;
      }
      ShapeVertex vertex;
      float v[6];
      if (!Int(vertex.Number) || !Floats(v)) {
        Tell(true, "a vertex of a shape needs its number, a place and a normal");
        continue;
      }
      vertex.Position = {v[0], v[1], v[2]};
      vertex.Normal = {v[3], v[4], v[5]};
      if (m_source.Shapes.empty()) {
        Tell(true, "a vertex stands ahead of the first shape");
        continue;
      }
      m_source.Shapes.back().Vertices.push_back(vertex);
    }
  }

  const char* m_at;
  const char* m_end;
  SmdSource& m_source;
  std::vector<SourceMessage>& m_messages;
  int64_t m_line = 0;
  bool m_begun = false;
  bool m_toldNodes = false;
  size_t m_lastMaterial = 0;
  std::vector<int32_t> m_parents;  // by number, as the file names them
  std::vector<int32_t> m_quick;
  std::unordered_map<int32_t, int32_t> m_nodes;
  std::unordered_map<std::string, size_t> m_materials;
};

}  // namespace

const char* ParseFloat(const char* at, const char* end, float& value) {
  constexpr int MostDigits = 15;
  const char* p = at;
  const bool minus = p < end && *p == '-';
  if (p < end && (minus || *p == '+')) ++p;
  uint64_t mantissa = 0;
  const char* whole = p;
  while (p < end && IsDigit(*p)) mantissa = mantissa * 10 + static_cast<uint64_t>(*p++ - '0');
  auto digits = static_cast<int>(std::min<ptrdiff_t>(p - whole, 100));
  int fraction = 0;
  if (p < end && *p == '.') {
    const char* point = ++p;
    while (p < end && IsDigit(*p)) mantissa = mantissa * 10 + static_cast<uint64_t>(*p++ - '0');
    fraction = static_cast<int>(std::min<ptrdiff_t>(p - point, 100));
    digits += fraction;
  }
  if (digits == 0) return at;
  if (digits > MostDigits || (p < end && (*p == 'e' || *p == 'E'))) return ParseLongFloat(at, end, value);
  const double wide = static_cast<double>(mantissa) / PowersOfTen[static_cast<size_t>(fraction)];
  if (BetweenFloats(wide)) return ParseLongFloat(at, end, value);
  value = static_cast<float>(minus ? -wide : wide);
  return p;
}

std::vector<SourceMessage> ReadSource(std::string_view text, std::string path, SmdSource& source) {
  constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(ByteOrderMark)) text.remove_prefix(ByteOrderMark.size());
  std::vector<SourceMessage> messages;
  source = {};
  source.Path = std::move(path);
  Reader(text, source, messages).Run();
  return messages;
}

}  // namespace tarnwick::smd
