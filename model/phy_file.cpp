#include "model/phy_file.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string_view>

#include "model/phy_records.h"

namespace tarnwick::model {

namespace {

/// What a reader has found wrong: where (from the start of what it was given), and what.
struct Damage {
  int64_t Offset;
  std::string Problem;
};

/// Reads the surface of one solid.
class SurfaceReader {
 public:
  explicit SurfaceReader(core::ImageView surface) : m_surface(surface) {}

  std::optional<PhySolid> Read() {
    const auto head = m_surface.At<PhySurface>(0);
    if (!head) return Fail(0, "its surface is shorter than its header");
    if (std::string_view((*head)->Tag, 4) != "IVPS") return Fail(0x2C, "its surface has not the tag IVPS");
    if (!Walk((*head)->RootOffset) || !ReadPoints()) return std::nullopt;
    m_solid.MassCentre = (*head)->MassCentre;
    return std::move(m_solid);
  }

  const Damage& Why() const { return m_damage; }

 private:
  /// Whether `size` bytes at `offset` lie in the surface, behind its header.
  bool Holds(int64_t offset, int64_t size) const {
    return offset >= static_cast<int64_t>(sizeof(PhySurface)) && m_surface.Fits(offset, size, 1);
  }

  /// Walks the tree without recursion and reads the piece of each leaf.
  bool Walk(int64_t root) {
    std::vector<int64_t> open = {root};
    std::vector<int64_t> entered;
    const int64_t most = m_surface.Size() / static_cast<int64_t>(sizeof(PhyNode));
    while (!open.empty()) {
      const int64_t place = open.back();
      open.pop_back();
      if (!Holds(place, sizeof(PhyNode))) return Tell(place, "a tree node lies outside its surface");
      if (static_cast<int64_t>(entered.size()) == most) return Tell(place, "its tree leads to nodes more than once");
      entered.push_back(place);
      const auto node = *m_surface.At<PhyNode>(place);
      if (node->RightOffset == 0) {
        if (!ReadLedge(place + node->LedgeOffset)) return false;
        continue;
      }
      open.push_back(place + node->RightOffset);
      open.push_back(place + static_cast<int64_t>(sizeof(PhyNode)));
    }
    if (!HasNoTwice(entered)) return Tell(root, "its tree leads to nodes more than once");
    PutInOrder();
    return HasNoTwice(m_pieces) || Tell(root, "its tree leads to pieces more than once");
  }

  /// Which pieces a tree pairs up is free; their order is that in which they stand in the file.
  void PutInOrder() {
    std::vector<size_t> order(m_pieces.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::sort(order.begin(), order.end(), [&](size_t a, size_t b) { return m_pieces[a] < m_pieces[b]; });
    std::vector<PhyPiece> ordered;
    ordered.reserve(order.size());
    for (const size_t i : order) ordered.push_back(std::move(m_solid.Pieces[i]));
    m_solid.Pieces = std::move(ordered);
  }

  bool ReadLedge(int64_t place) {
    if (!Holds(place, sizeof(PhyLedge))) return Tell(place, "a piece lies outside its surface");
    const auto ledge = *m_surface.At<PhyLedge>(place);
    const int64_t count = ledge->TriangleCount;
    const int64_t first = place + static_cast<int64_t>(sizeof(PhyLedge));
    m_pieces.push_back(place);
    if (count < 2) return Tell(place, "a piece has fewer than two triangles");
    const auto triangles = m_surface.Array<PhyTriangle>(first, count);
    if (!triangles) return Tell(first, "the triangles of a piece run past the end of their surface");
    // Pieces do not overlap, so all together are no longer than the surface; else many small nodes could name one
    // large piece again and again.
    m_pieceBytes += static_cast<int64_t>(sizeof(PhyLedge)) + count * static_cast<int64_t>(sizeof(PhyTriangle));
    if (m_pieceBytes > m_surface.Size()) return Tell(place, "its tree leads to pieces more than once");
    const int64_t points = place + ledge->PointOffset;
    if (m_points.value_or(points) != points) return Tell(place, "its pieces do not share their points");
    m_points = points;

    PhyPiece piece{.BoneNumber = ledge->BoneOrNode};
    piece.Triangles.reserve(static_cast<size_t>(count));
    for (const auto triangle : *triangles) {
      const PhyCorners corners = {triangle->Edges[0].Point(), triangle->Edges[1].Point(), triangle->Edges[2].Point()};
      if (corners[0] == corners[1] || corners[1] == corners[2] || corners[2] == corners[0]) {
        return Tell(triangle.Offset(), "a triangle has one point twice");
      }
      m_highest = std::max({m_highest, corners[0], corners[1], corners[2]});
      piece.Triangles.push_back(corners);
    }
    m_solid.Pieces.push_back(std::move(piece));
    return true;
  }

  bool ReadPoints() {
    const int64_t place = m_points.value_or(0);
    const int64_t count = int64_t{m_highest} + 1;
    if (!Holds(place, count * static_cast<int64_t>(sizeof(PhyPoint)))) {
      return Tell(place, "its points (" + std::to_string(count) + ") run past the end of their surface");
    }
    const auto points = *m_surface.Array<PhyPoint>(place, count);
    m_solid.Points.reserve(static_cast<size_t>(count));
    for (const auto point : points) {
      const Vec3 position = point->Position;
      for (const float value : {float{position.x}, float{position.y}, float{position.z}}) {
        if (!(std::fabs(value) <= FarthestPhyCoordinate)) {
          return Tell(point.Offset(), "a point is not finite or far outside the world");
        }
      }
      m_solid.Points.push_back(position);
    }
    return true;
  }

  static bool HasNoTwice(std::vector<int64_t> places) {
    std::sort(places.begin(), places.end());
    return std::adjacent_find(places.begin(), places.end()) == places.end();
  }

  bool Tell(int64_t offset, std::string problem) {
    m_damage = {offset, std::move(problem)};
    return false;
  }
  std::nullopt_t Fail(int64_t offset, std::string problem) {
    Tell(offset, std::move(problem));
    return std::nullopt;
  }

  core::ImageView m_surface;
  PhySolid m_solid;
  std::optional<int64_t> m_points;
  uint16_t m_highest = 0;
  std::vector<int64_t> m_pieces;  // where they begin
  int64_t m_pieceBytes = 0;
  Damage m_damage{};
};

class FileReader {
 public:
  FileReader(core::ImageView image, const std::string& file, core::TroubleSink& troubles)
      : m_image(image), m_file(file), m_troubles(troubles) {}

  std::optional<PhyFile> Read() {
    const auto header = m_image.At<PhyHeader>(0);
    if (!header || (*header)->HeaderSize != static_cast<int32_t>(sizeof(PhyHeader))) {
      return Fail(0, "it does not begin as physics files do");
    }
    const int64_t count = (*header)->SolidCount;
    int64_t place = sizeof(PhyHeader);
    if (count < 0 || count > (m_image.Size() - place) / SmallestPhySolid) {
      return Fail(8, "it says that it has " + std::to_string(count) + " solids, more than its " +
                         std::to_string(m_image.Size()) + " bytes hold");
    }
    PhyFile result{.Checksum = (*header)->Checksum};
    for (int64_t i = 0; i < count; ++i) {
      const auto size = m_image.Value<int32_t>(place);
      if (!size || *size < SmallestPhySolid - 4 || !m_image.Fits(place + 4, *size, 1)) {
        return Fail(place, "solid " + std::to_string(i) + " runs past the end of the file");
      }
      result.Solids.push_back(ReadSolid(i, place));
      place += 4 + int64_t{*size};
    }
    const auto text = *m_image.Bytes(place, m_image.Size() - place);
    result.Text = ReadPhyText(std::string_view(reinterpret_cast<const char*>(text.data()), text.size()), m_file, place,
                              m_troubles);
    return result;
  }

 private:
  std::optional<PhySolid> ReadSolid(int64_t number, int64_t place) {
    const std::string what = "solid " + std::to_string(number) + ": ";
    const auto header = *m_image.At<PhySolidHeader>(place);
    if (std::string_view(header->Tag, 4) != "VPHY") return Fail(place + 4, what + "it has not the tag VPHY");
    if (header->Version != 0x0100 || header->Kind != 0) {
      return Fail(place + 8, what + "it is of the unknown version " + std::to_string(header->Version) + ", kind " +
                                 std::to_string(header->Kind));
    }
    const int64_t first = place + static_cast<int64_t>(sizeof(PhySolidHeader));
    if (header->SurfaceSize != header->Size - 28) return Fail(place + 12, what + "its two sizes contradict each other");
    SurfaceReader surface(core::ImageView(*m_image.Bytes(first, header->SurfaceSize)));
    auto solid = surface.Read();
    if (!solid) Fail(first + surface.Why().Offset, what + surface.Why().Problem);
    return solid;
  }

  std::nullopt_t Fail(int64_t offset, const std::string& problem) {
    m_troubles.Tell({.Kind = core::TroubleKind::Damaged,
                     .File = m_file,
                     .Offset = offset,
                     .Text = m_file + " is damaged at byte " + std::to_string(offset) + ": " + problem});
    return std::nullopt;
  }

  core::ImageView m_image;
  const std::string& m_file;
  core::TroubleSink& m_troubles;
};

}  // namespace

std::optional<PhyFile> ReadPhyFile(core::ImageView image, const std::string& file, core::TroubleSink& troubles) {
  return FileReader(image, file, troubles).Read();
}

}  // namespace tarnwick::model
