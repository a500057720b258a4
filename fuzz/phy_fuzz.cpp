// Reads any bytes as a .phy file. What is read is bounded by the file's size, and a solid that can be written comes
// back from its own bytes.

#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>

#include "model/phy_file.h"
#include "model/phy_values.h"
#include "model/phy_writer.h"

using namespace tarnwick;

namespace {

class Nowhere : public core::TroubleSink {
 public:
  void Tell(const core::Trouble&) override {}
};

/// Writes the piece alone, and compares what is read from that.
void WriteAndRead(const model::PhySolid& solid, const model::PhyPiece& piece) {
  const auto bytes = model::WritePhySolid({solid.Points, {piece}}, {});
  if (!bytes) return;
  Nowhere troubles;
  const std::string file = model::WritePhyFile(0, {*bytes}, "");
  const auto again = model::ReadPhyFile(core::ImageView(std::as_bytes(std::span(file))), "again.phy", troubles);
  if (!again || !again->Solids.front()) std::abort();
  const model::PhyPiece& read = again->Solids.front()->Pieces.front();
  if (read.Triangles.size() != piece.Triangles.size()) std::abort();
  for (size_t i = 0; i < read.Triangles.size(); ++i) {
    for (size_t k = 0; k < 3; ++k) {
      const model::Vec3 a = solid.Points[piece.Triangles[i][k]];
      const model::Vec3 b = again->Solids.front()->Points[read.Triangles[i][k]];
      if (a.x != b.x || a.y != b.y || a.z != b.z) std::abort();
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Nowhere troubles;
  const core::ImageView image(std::as_bytes(std::span(data, size)));
  const auto file = model::ReadPhyFile(image, "fuzz.phy", troubles);
  if (!file) return 0;
  size_t triangles = 0;
  for (const auto& solid : file->Solids) {
    if (!solid) continue;
    for (const model::PhyPiece& piece : solid->Pieces) {
      triangles += piece.Triangles.size();
      WriteAndRead(*solid, piece);
    }
  }
  if (triangles * 16 > size) std::abort();
  const auto values = model::TakePhyValues(file->Text, static_cast<int64_t>(file->Solids.size()), "fuzz.phy", troubles);
  model::FormatPhyText(values);
  return 0;
}
