#include "support/model_builder.h"

#include <algorithm>

#include "support/model_writer.h"
#include "support/scratch_folder.h"

namespace tarnwick::tests {

std::string ModelFiles::Write(const std::string& folder, const std::string& stem) const {
  const std::string base = folder + "/" + stem;
  WriteText(base + ".mdl", Mdl.Bytes());
  if (Vtx.Size() > 0) WriteText(base + ".dx90.vtx", Vtx.Bytes());
  if (Vvd.Size() > 0) WriteText(base + ".vvd", Vvd.Bytes());
  if (Ani.Size() > 0) WriteText(base + ".ani", Ani.Bytes());
  if (!Phy.empty()) WriteText(base + ".phy", Phy);
  return base + ".mdl";
}

ModelFiles ModelBuilder::Build() const {
  ModelFiles files;
  FileBuilder& mdl = files.Mdl;
  const auto header = mdl.Reserve<model::StudioHeader>(1, "header");
  std::copy_n("IDST", 4, header[0].Id);
  header[0].Version = Version;
  header[0].Contents = 1;  // as all real models have it, in their bones too
  Name.copy(header[0].Name, sizeof(header[0].Name) - 1);
  header[0].EyePosition = EyePosition;
  header[0].IllumPosition = IllumPosition;
  header[0].Flags = Flags;

  WriteBones(*this, mdl);
  WriteMaterials(*this, mdl);
  WriteBodyParts(*this, mdl);
  WriteFace(*this, mdl);
  WriteAnimations(*this, mdl, files.Ani);
  WriteSequences(*this, mdl);
  WriteScriptRecords(*this, mdl);
  header[0].Mass = 1;
  header[0].Length = static_cast<int32_t>(mdl.Size());

  if (!BodyParts.empty()) {
    WriteVtx(*this, files.Vtx);
    WriteVvd(*this, files.Vvd);
  }
  if (Physics) {
    header[0].Mass = Physics->Values.TotalMass;
    files.Phy = Physics->Build();
  }
  return files;
}

}  // namespace tarnwick::tests
