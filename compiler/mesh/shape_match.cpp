#include "compiler/mesh/shape_match.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>

namespace tarnwick::compiler {

namespace {

constexpr double Reach = 0.01;
/// Points that are looked through for the nearest normal, and for the nearest place in a cell.
constexpr size_t MostTried = 64;

using Key = std::array<float, 3>;
using Cell = std::array<int64_t, 3>;

Key KeyOf(const model::Vec3& v) {
  return {v.x + 0.0f, v.y + 0.0f, v.z + 0.0f};  // zeros of both signs are one
}

/// A total order also where a value is no number.
int Compare(const Key& a, const Key& b) {
  for (size_t k = 0; k < 3; ++k) {
    if (a[k] < b[k]) return -1;
    if (a[k] > b[k]) return 1;
    if (std::isnan(a[k]) != std::isnan(b[k])) return std::isnan(a[k]) ? 1 : -1;
  }
  return 0;
}

Cell CellOf(const model::Vec3& v) {
  Cell cell{};
  const Key key = KeyOf(v);
  for (size_t k = 0; k < 3; ++k) {
    const double place = std::floor(double{key[k]} / (2 * Reach));
    cell[k] = std::abs(place) < 1e15 ? static_cast<int64_t>(place) : 0;
  }
  return cell;
}

double Dot(const model::Vec3& a, const model::Vec3& b) {
  return double{a.x} * double{b.x} + double{a.y} * double{b.y} + double{a.z} * double{b.z};
}

}  // namespace

ShapeMatch::ShapeMatch(const std::vector<ShapePoint>& points)
    : m_points(points), m_sorted(points.size()), m_cells(points.size()), m_given(points.size()), m_used(points.size()) {
  std::iota(m_sorted.begin(), m_sorted.end(), 0U);
  m_cells = m_sorted;
  std::sort(m_sorted.begin(), m_sorted.end(), [&](uint32_t a, uint32_t b) {
    const int place = Compare(KeyOf(points[a].Position), KeyOf(points[b].Position));
    if (place != 0) return place < 0;
    const int normal = Compare(KeyOf(points[a].Normal), KeyOf(points[b].Normal));
    return normal != 0 ? normal < 0 : a < b;
  });
  std::sort(m_cells.begin(), m_cells.end(), [&](uint32_t a, uint32_t b) {
    const Cell first = CellOf(points[a].Position), second = CellOf(points[b].Position);
    return first != second ? first < second : a < b;
  });
}

int32_t ShapeMatch::Find(const model::Vec3& position, const model::Vec3& normal) {
  const Key place = KeyOf(position), direction = KeyOf(normal);
  const auto before = [&](uint32_t point, int) { return Compare(KeyOf(m_points[point].Position), place) < 0; };
  const auto at = static_cast<size_t>(std::lower_bound(m_sorted.begin(), m_sorted.end(), 0, before) - m_sorted.begin());
  if (at == m_sorted.size() || Compare(KeyOf(m_points[m_sorted[at]].Position), place) != 0) {
    const int32_t found = FindAround(position, normal);
    if (found >= 0) m_used[static_cast<size_t>(found)] = 1;
    return found;
  }
  const auto samePlace = [&](size_t i) {
    return i < m_sorted.size() && Compare(KeyOf(m_points[m_sorted[i]].Position), place) == 0;
  };
  const auto exact =
      static_cast<size_t>(std::lower_bound(m_sorted.begin(), m_sorted.end(), 0,
                                           [&](uint32_t point, int) {
                                             const int order = Compare(KeyOf(m_points[point].Position), place);
                                             if (order != 0) return order < 0;
                                             return Compare(KeyOf(m_points[point].Normal), direction) < 0;
                                           }) -
                          m_sorted.begin());
  size_t best = at;
  if (samePlace(exact) && Compare(KeyOf(m_points[m_sorted[exact]].Normal), direction) == 0) {
    best = exact;
  } else {
    double most = -std::numeric_limits<double>::infinity();
    for (size_t i = at; i < at + MostTried && samePlace(i); ++i) {
      const double cosine = Dot(m_points[m_sorted[i]].Normal, normal);
      if (cosine > most) {
        most = cosine;
        best = i;
      }
    }
  }
  const Key chosen = KeyOf(m_points[m_sorted[best]].Normal);
  const auto last =
      std::partition_point(m_sorted.begin() + static_cast<std::ptrdiff_t>(best), m_sorted.end(), [&](uint32_t point) {
        return Compare(KeyOf(m_points[point].Position), place) == 0 &&
               Compare(KeyOf(m_points[point].Normal), chosen) == 0;
      });
  return Take(best, static_cast<size_t>(last - m_sorted.begin()));
}

int32_t ShapeMatch::Take(size_t first, size_t last) {
  const size_t number = std::min<size_t>(first + m_given[first], last - 1);
  if (first + m_given[first] + 1 < last) ++m_given[first];
  m_used[m_sorted[number]] = 1;
  return static_cast<int32_t>(m_sorted[number]);
}

int32_t ShapeMatch::FindAround(const model::Vec3& position, const model::Vec3& normal) const {
  int32_t best = -1;
  double least = Reach;
  const Cell middle = CellOf(position);
  for (int i = 0; i < 27; ++i) {
    const Cell cell = {middle[0] + i % 3 - 1, middle[1] + i / 3 % 3 - 1, middle[2] + i / 9 - 1};
    auto at = std::lower_bound(m_cells.begin(), m_cells.end(), cell, [&](uint32_t point, const Cell& wanted) {
      return CellOf(m_points[point].Position) < wanted;
    });
    for (size_t tried = 0; at != m_cells.end() && tried < MostTried; ++at, ++tried) {
      const ShapePoint& point = m_points[*at];
      if (CellOf(point.Position) != cell) break;
      const double x = double{point.Position.x} - double{position.x};
      const double y = double{point.Position.y} - double{position.y};
      const double z = double{point.Position.z} - double{position.z};
      const double distance = std::sqrt(x * x + y * y + z * z);
      if (!(distance <= Reach)) continue;
      const double miss = distance + Reach * (1 - Dot(point.Normal, normal)) * 0.1;
      if (best < 0 || miss < least) {
        least = miss;
        best = static_cast<int32_t>(*at);
      }
    }
  }
  return best;
}

int64_t ShapeMatch::CountLonely() const {
  int64_t lonely = 0;
  for (size_t first = 0, end = 0; first < m_sorted.size(); first = end) {
    const Key place = KeyOf(m_points[m_sorted[first]].Position);
    bool used = false;
    for (end = first; end < m_sorted.size() && Compare(KeyOf(m_points[m_sorted[end]].Position), place) == 0; ++end) {
      used |= m_used[m_sorted[end]] != 0;
    }
    if (!used) lonely += static_cast<int64_t>(end - first);
  }
  return lonely;
}

}  // namespace tarnwick::compiler
