#include "textures/vtf_info_text.h"

#include <cstdio>
#include <nlohmann/json.hpp>
#include <vector>

namespace tarnwick::textures {

namespace {

std::vector<std::string> NamesOf(uint32_t flags) {
  std::vector<std::string> names;
  for (const VtfFlagName& known : VtfFlagNames()) {
    if ((flags & known.Flag) != 0) names.emplace_back(known.Name);
  }
  return names;
}

std::string Number(float value) {
  char text[64];
  std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
  return text;
}

std::string Version(const VtfInfo& info) {
  return std::to_string(info.MajorVersion) + "." + std::to_string(info.MinorVersion);
}

std::string Flags(uint32_t flags) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08X", flags);
  std::string words;
  for (const std::string& name : NamesOf(flags)) words += (words.empty() ? "" : ", ") + name;
  return words.empty() ? text : std::string(text) + " (" + words + ")";
}

}  // namespace

std::string VtfInfoText(const std::string& file, const VtfInfo& info) {
  std::string text;
  const auto line = [&](std::string_view key, const std::string& value) {
    text.append(key).append(": ").append(value).append("\n");
  };
  line("file", file);
  line("version", Version(info));
  line("width", std::to_string(info.Width));
  line("height", std::to_string(info.Height));
  line("depth", std::to_string(info.Depth));
  line("format", PixelFormatName(info.Format));
  line("flags", Flags(info.Flags));
  line("frames", std::to_string(info.Frames));
  line("first frame", std::to_string(info.FirstFrame));
  line("faces", std::to_string(info.Faces));
  line("mip levels", std::to_string(info.MipLevels));
  line("reflectivity",
       Number(info.Reflectivity[0]) + " " + Number(info.Reflectivity[1]) + " " + Number(info.Reflectivity[2]));
  line("bump scale", Number(info.BumpScale));
  line("low resolution image", info.LowFormat == PixelFormat::None
                                   ? "none"
                                   : PixelFormatName(info.LowFormat) + " " + std::to_string(info.LowWidth) + " x " +
                                         std::to_string(info.LowHeight));
  return text;
}

std::string VtfInfoJson(const std::string& file, const VtfInfo& info) {
  nlohmann::ordered_json json;
  json["file"] = file;
  json["version"] = Version(info);
  json["width"] = info.Width;
  json["height"] = info.Height;
  json["depth"] = info.Depth;
  json["format"] = PixelFormatName(info.Format);
  json["flags"] = info.Flags;
  json["flagNames"] = NamesOf(info.Flags);
  json["frames"] = info.Frames;
  json["firstFrame"] = info.FirstFrame;
  json["faces"] = info.Faces;
  json["mipLevels"] = info.MipLevels;
  json["reflectivity"] = info.Reflectivity;
  json["bumpScale"] = info.BumpScale;
  json["lowResolutionImage"] = nullptr;
  if (info.LowFormat != PixelFormat::None) {
    json["lowResolutionImage"] = {
        {"format", PixelFormatName(info.LowFormat)}, {"width", info.LowWidth}, {"height", info.LowHeight}};
  }
  // A path may hold bytes that are no UTF-8; they are replaced rather than thrown about.
  return json.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

}  // namespace tarnwick::textures
