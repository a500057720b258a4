#include "smd/smd_info.h"

#include <optional>

#include "core/input_file.h"
#include "smd/smd_scan.h"

namespace tarnwick::smd {

namespace {

std::string FiguresText(const SmdSummary& summary) {
  std::string text = "Bones:\t" + std::to_string(summary.BoneCount) + "\r\nTriangles:\t" +
                     std::to_string(summary.TriangleCount) + "\r\n";
  for (const SmdMaterialCount& material : summary.Materials) {
    text += "Material \"" + material.Name + "\"\tfaces: " + std::to_string(material.FaceCount) + "\r\n";
  }
  return text;
}

}  // namespace

SmdInfo InspectSmd(const std::string& path) {
  SmdInfo info;
  if (path.empty()) {
    info.Text = "No Reference SMD File Specified\r\n";
    info.Error = "no file is named";
    return info;
  }
  std::optional<core::InputFile> file = core::InputFile::Open(path, &info.Error);
  if (!file) {
    info.Text = "Unable to open " + path + "\r\n";
    return info;
  }
  info.Opened = true;
  ScanSmdFile(*file, info.Summary, &info.BadLine);
  info.Error = file->Error();
  info.Text = FiguresText(info.Summary);
  return info;
}

}  // namespace tarnwick::smd
