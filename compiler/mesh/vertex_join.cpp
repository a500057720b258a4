#include "compiler/mesh/vertex_join.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <tuple>

namespace tarnwick::compiler {

namespace {

/// Normals that are looked through at one place. No smooth mesh has more; what does is joined less often.
constexpr int MostNormals = 256;
/// Vertices with the same texture coordinates that are looked through for the nearest.
constexpr int64_t MostNear = 64;

uint32_t Bits(float value, bool exact) {
  return std::bit_cast<uint32_t>(exact || value != 0 ? value : 0.0f);
}

class Hash {
 public:
  void Add(uint64_t word) {
    m_value = (m_value ^ word) * 0x9E3779B97F4A7C15u;
    m_value ^= m_value >> 29;
  }
  void Add(uint32_t one, uint32_t other) { Add(uint64_t{one} << 32 | other); }
  uint64_t Value() const { return m_value ^ (m_value >> 32); }

 private:
  uint64_t m_value = 0x243F6A8885A308D3u;
};

/// The bytes of a vertex ahead of its weights, which is all of the rest.
constexpr size_t BytesOfPlace = offsetof(MeshVertex, Weights);
static_assert(BytesOfPlace == 2 * sizeof(model::Vec3) + 2 * sizeof(float) && BytesOfPlace % sizeof(uint64_t) == 0);

bool SameWeights(const CornerWeights& a, const CornerWeights& b) {
  if (a.Count != b.Count) return false;
  for (int32_t i = 0; i < a.Count; ++i) {
    if (a.Bones[i] != b.Bones[i] || Bits(a.Weights[i], true) != Bits(b.Weights[i], true)) return false;
  }
  return true;
}

bool SameVector(const model::Vec3& a, const model::Vec3& b) {
  return Bits(a.x, false) == Bits(b.x, false) && Bits(a.y, false) == Bits(b.y, false) &&
         Bits(a.z, false) == Bits(b.z, false);
}

bool SamePlace(const MeshVertex& a, const MeshVertex& b) {
  return SameVector(a.Position, b.Position) && Bits(a.U, false) == Bits(b.U, false) &&
         Bits(a.V, false) == Bits(b.V, false) && SameWeights(a.Weights, b.Weights);
}

double Dot(const model::Vec3& a, const model::Vec3& b) {
  return double{a.x} * double{b.x} + double{a.y} * double{b.y} + double{a.z} * double{b.z};
}

/// Of all that `IsSame` compares, and no more.
uint64_t HashOf(const MeshVertex& vertex, bool exact) {
  Hash hash;
  if (exact) {
    std::array<uint64_t, BytesOfPlace / sizeof(uint64_t)> words;
    std::memcpy(words.data(), &vertex, BytesOfPlace);
    for (const uint64_t word : words) hash.Add(word);
  } else {
    hash.Add(Bits(vertex.Position.x, false), Bits(vertex.Position.y, false));
    hash.Add(Bits(vertex.Position.z, false), Bits(vertex.U, false));
    hash.Add(Bits(vertex.V, false));
  }
  for (int32_t i = 0; i < vertex.Weights.Count; ++i) {
    hash.Add(static_cast<uint32_t>(vertex.Weights.Bones[i]), Bits(vertex.Weights.Weights[i], exact));
  }
  return hash.Value();
}

/// Whether two vertices are one; if not `exact`, their normals aside.
bool IsSame(const MeshVertex& a, const MeshVertex& b, bool exact) {
  if (!exact) return SamePlace(a, b);
  return std::memcmp(&a, &b, BytesOfPlace) == 0 && SameWeights(a.Weights, b.Weights);
}

std::tuple<uint32_t, uint32_t> Coordinates(const MeshVertex& vertex) {
  return {Bits(vertex.U, false), Bits(vertex.V, false)};
}

}  // namespace

VertexJoiner::VertexJoiner(const JoinRule& rule)
    : m_angle(rule.NormalAngle),
      m_leastCosine(std::cos(std::clamp(double{rule.NormalAngle}, 0.0, 180.0) * 3.14159265358979323846 / 180)),
      m_table(64) {}

uint32_t VertexJoiner::Add(const MeshVertex& corner) {
  const bool exact = !(m_angle > 0);
  const uint64_t hash = HashOf(corner, exact);
  if ((m_heads + 1) * 2 > m_table.size()) Grow();
  const size_t mask = m_table.size() - 1;
  size_t slot = hash & mask;
  uint32_t last = 0;
  while (m_table[slot] != 0) {
    const uint32_t head = m_table[slot] - 1;
    if (m_hashes[head] != hash || !IsSame(Vertices[head], corner, exact)) {
      slot = (slot + 1) & mask;
      continue;
    }
    if (exact) return head;
    int met = 0;
    for (uint32_t at = head + 1; at != 0 && met < MostNormals; at = m_next[at - 1], ++met) {
      const model::Vec3& normal = Vertices[at - 1].Normal;
      if (SameVector(normal, corner.Normal) || Dot(normal, corner.Normal) > m_leastCosine) return at - 1;
      last = at;
    }
    break;
  }
  const auto number = static_cast<uint32_t>(Vertices.size());
  Vertices.push_back(corner);
  m_hashes.push_back(hash);
  if (last == 0) {
    m_table[slot] = number + 1;
    m_next.push_back(0);
    ++m_heads;
  } else {
    // Behind the last that was looked at; those beyond are no longer found.
    m_next.push_back(0);
    m_next[last - 1] = number + 1;
  }
  return number;
}

void VertexJoiner::Grow() {
  std::vector<uint32_t> old = std::move(m_table);
  m_table.assign(old.size() * 2, 0);
  const size_t mask = m_table.size() - 1;
  for (const uint32_t head : old) {
    if (head == 0) continue;
    size_t slot = m_hashes[head - 1] & mask;
    while (m_table[slot] != 0) slot = (slot + 1) & mask;
    m_table[slot] = head;
  }
}

int64_t VertexJoiner::FindNear(const MeshVertex& corner, uint32_t count, double reach) {
  if (m_nearCount != count) {
    m_nearCount = count;
    m_near.resize(std::min<size_t>(count, Vertices.size()));
    for (uint32_t i = 0; i < m_near.size(); ++i) m_near[i] = i;
    std::stable_sort(m_near.begin(), m_near.end(),
                     [&](uint32_t a, uint32_t b) { return Coordinates(Vertices[a]) < Coordinates(Vertices[b]); });
  }
  const auto wanted = Coordinates(corner);
  auto at = std::lower_bound(m_near.begin(), m_near.end(), wanted,
                             [&](uint32_t a, const auto& key) { return Coordinates(Vertices[a]) < key; });
  int64_t best = -1;
  double least = reach;
  for (int64_t met = 0; at != m_near.end() && met < MostNear && Coordinates(Vertices[*at]) == wanted; ++at, ++met) {
    const MeshVertex& vertex = Vertices[*at];
    if (!SameWeights(vertex.Weights, corner.Weights)) continue;
    const double x = double{vertex.Position.x} - double{corner.Position.x};
    const double y = double{vertex.Position.y} - double{corner.Position.y};
    const double z = double{vertex.Position.z} - double{corner.Position.z};
    const double cosine = Dot(vertex.Normal, corner.Normal);
    if (!SameVector(vertex.Normal, corner.Normal) && !(cosine > m_leastCosine)) continue;
    // Of those in one place the one that looks the same way.
    const double distance = std::sqrt(x * x + y * y + z * z);
    if (distance > reach) continue;
    const double miss = distance + reach * (1 - cosine);
    if (best < 0 || miss < least) {
      least = miss;
      best = *at;
    }
  }
  return best;
}

}  // namespace tarnwick::compiler
