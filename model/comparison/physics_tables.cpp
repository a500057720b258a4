#include <array>
#include <limits>

#include "core/number_parse.h"
#include "core/paths.h"
#include "model/comparison/compared_tables.h"
#include "model/comparison/record_fields.h"
#include "model/phy_file.h"

namespace tarnwick::model {

namespace {

/// Points are turned, written in inches, made a hull of and turned back.
constexpr double PointGrain = 1e-3;
/// The mass centre follows from all of them.
constexpr double CentreGrain = 1e-2;
/// The same as a part of how far away a point is.
constexpr double PointPart = 5e-6;
/// Values that are computed of points: masses, volumes.
constexpr double ValueGrain = 1e-3;

/// The .phy file beside a model, and its bytes.
struct LoadedPhysics {
  std::optional<core::FileImage> Image;
  std::optional<PhyFile> File;
};

LoadedPhysics LoadPhysics(ModelReader& reader) {
  const std::string& mdl = reader.Model.Mdl.Path();
  const auto path = FindPhyFile(reader.Files(), mdl);
  if (!path) return {};
  std::string reason;
  LoadedPhysics physics{reader.Files().Read(*path, &reason), {}};
  if (!physics.Image) {
    reader.Tell({.Kind = core::TroubleKind::Unreadable,
                 .File = *path,
                 .Text = "Unable to read " + *path + ": " + reason,
                 .Alike = "Unable to read physics"});
    return {};
  }
  physics.File = ReadPhyFile(physics.Image->View(), *path, reader.Troubles());
  return physics;
}

bool IsNumber(std::string_view text) {
  size_t length = 0;
  core::ParseReal(text, &length);
  return length != 0 && length == text.size();
}

void CompareValues(DifferenceList& differences, const std::string& key, std::string_view a, std::string_view b,
                   const std::string& place) {
  const auto where = [&] { return std::string(place); };
  if (a != b && IsNumber(a) && IsNumber(b)) {
    const auto first = static_cast<float>(core::ParseReal(a));
    const auto second = static_cast<float>(core::ParseReal(b));
    differences.Numbers(ModelTable::Physics, key, where, {&first, 1}, {&second, 1}, ValueGrain);
  } else {
    differences.Text(ModelTable::Physics, key, where, a, b);
  }
}

/// Blocks within blocks have been counted by the reader of the text, which bounds them.
void CompareEntries(DifferenceList& differences, const std::vector<PhyEntry>& first,
                    const std::vector<PhyEntry>& second, const std::string& place) {
  differences.Whole(
      ModelTable::Physics, "number of entries", [&] { return std::string(place); }, static_cast<int64_t>(first.size()),
      static_cast<int64_t>(second.size()));
  for (size_t i = 0; i < std::min(first.size(), second.size()); ++i) {
    const std::string here =
        place + (place == "text" ? ", " : ".") + std::string(first[i].Key) + " " + std::to_string(i);
    differences.Text(
        ModelTable::Physics, "key", [&] { return std::string(here); }, first[i].Key, second[i].Key);
    if (first[i].Key != second[i].Key) continue;
    CompareValues(differences, "value of " + std::string(first[i].Key), first[i].Value, second[i].Value, here);
    CompareEntries(differences, first[i].Entries, second[i].Entries, here);
  }
}

/// The points of a piece's corners in the model's axes, each once, sorted: pieces are the same whatever order their
/// points and triangles have.
std::vector<std::array<float, 3>> PointsOf(const PhySolid& solid, const PhyPiece& piece) {
  std::vector<std::array<float, 3>> points;
  for (const PhyCorners& triangle : piece.Triangles) {
    for (const uint16_t corner : triangle) {
      const Vec3 p = PhyToModel(solid.Points[corner]);
      points.push_back({p.x, p.y, p.z});
    }
  }
  std::sort(points.begin(), points.end());
  points.erase(std::unique(points.begin(), points.end()), points.end());
  return points;
}

/// How far the point of `points` nearest to `point` lies off.
double Distance(const std::array<float, 3>& point, const std::vector<std::array<float, 3>>& points) {
  double nearest = std::numeric_limits<double>::infinity();
  for (const auto& other : points) {
    const double x = double{point[0]} - other[0];
    const double y = double{point[1]} - other[1];
    const double z = double{point[2]} - other[2];
    nearest = std::min(nearest, x * x + y * y + z * z);
  }
  return std::sqrt(nearest);
}

void ComparePieces(const ComparedModels& models, const PhySolid& firstSolid, const PhyPiece& first,
                   const PhySolid& secondSolid, const PhyPiece& second, const std::string& place) {
  DifferenceList& differences = models.Differences;
  const auto where = [&] { return std::string(place); };
  differences.Whole(ModelTable::Physics, "bone of a piece", where, first.BoneNumber, second.BoneNumber);
  const auto a = PointsOf(firstSolid, first);
  const auto b = PointsOf(secondSolid, second);
  differences.Whole(ModelTable::Physics, "points of a piece", where, static_cast<int64_t>(a.size()),
                    static_cast<int64_t>(b.size()));
  if (a == b || b.empty()) return;
  const auto most = static_cast<int64_t>(a.size()) * static_cast<int64_t>(b.size());
  if (!models.First.Spend(most)) return;
  for (const auto& point : a) {
    const double amount = Distance(point, b);
    if (amount > 0) {
      differences.Add(ModelTable::Physics, "point", place, DifferenceList::NumberText(point), "none there", amount,
                      amount <= PointGrain + PointPart * std::hypot(point[0], point[1], point[2]));
    }
  }
}

void CompareSolids(const ComparedModels& models, const PhyFile& first, const PhyFile& second) {
  DifferenceList& differences = models.Differences;
  differences.Whole(
      ModelTable::Physics, "number of solids", [] { return std::string(); }, static_cast<int64_t>(first.Solids.size()),
      static_cast<int64_t>(second.Solids.size()));
  for (size_t s = 0; s < std::min(first.Solids.size(), second.Solids.size()); ++s) {
    if (!first.Solids[s] || !second.Solids[s]) continue;
    const std::string place = "solid " + std::to_string(s);
    const PhySolid& a = *first.Solids[s];
    const PhySolid& b = *second.Solids[s];
    differences.Whole(
        ModelTable::Physics, "number of pieces", [&] { return std::string(place); },
        static_cast<int64_t>(a.Pieces.size()), static_cast<int64_t>(b.Pieces.size()));
    if (a.MassCentre && b.MassCentre && a.Pieces.size() == b.Pieces.size()) {
      const Vec3 one = PhyToModel(*a.MassCentre), other = PhyToModel(*b.MassCentre);
      differences.Numbers(
          ModelTable::Physics, "mass centre", [&] { return std::string(place); },
          std::array<float, 3>{one.x, one.y, one.z}, std::array<float, 3>{other.x, other.y, other.z}, CentreGrain);
    }
    for (size_t i = 0; i < std::min(a.Pieces.size(), b.Pieces.size()); ++i) {
      if (models.IsStopped()) return;
      ComparePieces(models, a, a.Pieces[i], b, b.Pieces[i], place + ", piece " + std::to_string(i));
    }
  }
}

}  // namespace

std::optional<std::string> FindPhyFile(const core::FileSource& files, const std::string& mdl) {
  return files.FindCompanion(mdl.substr(0, mdl.size() - std::min<size_t>(4, mdl.size())) + ".phy");
}

void ComparePhysics(const ComparedModels& models) {
  const LoadedPhysics first = LoadPhysics(models.First);
  const LoadedPhysics second = LoadPhysics(models.Second);
  const auto there = [](const LoadedPhysics& physics) { return physics.Image ? "is there" : "is not there"; };
  models.Differences.Text(
      ModelTable::Physics, "the file", [] { return std::string(); }, there(first), there(second));
  if (!first.File || !second.File) return;
  CompareSolids(models, *first.File, *second.File);
  CompareEntries(models.Differences, first.File->Text, second.File->Text, "text");
}

}  // namespace tarnwick::model
