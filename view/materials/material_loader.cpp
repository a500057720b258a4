#include "view/materials/material_loader.h"

#include <algorithm>
#include <map>
#include <utility>

#include "archives/folded_text.h"
#include "core/paths.h"
#include "view/materials/material_text.h"

namespace tarnwick::view {

namespace {

constexpr textures::Bgra White{255, 255, 255, 255};

std::string WithoutEnding(std::string name, std::initializer_list<std::string_view> endings) {
  const std::string lower = core::LowerAscii(name);
  for (const std::string_view ending : endings) {
    if (lower.ends_with(ending)) return name.substr(0, name.size() - ending.size());
  }
  return name;
}

class Loader {
 public:
  Loader(const std::vector<std::string>& directories, const MaterialFiles& files, TextureCache& cache,
         MaterialSet& result)
      : m_directories(directories), m_files(files), m_cache(cache), m_result(result) {}

  Material Load(const std::string& name) {
    Material material;
    material.Name = name;
    material.Base = MissingPattern();
    const auto file = FindFile(material);
    if (!file) {
      material.Missing = true;
      return material;
    }
    const std::string_view text(reinterpret_cast<const char*>(file->Bytes().data()), file->Bytes().size());
    if (text.size() > LargestMaterialText) {
      return Unusable(std::move(material), "it is larger than 1 MiB, which no material is", {});
    }
    const MaterialText said =
        ReadMaterialText(text, m_name, [this](const std::string& included) { return m_files.Read(included); });
    if (said.Shader.empty()) return Unusable(std::move(material), said.Problem, said.Tried);
    if (!said.Problem.empty()) Miss(material.Path, name, said.Problem, said.Tried);
    Take(said, material);
    return material;
  }

 private:
  /// The .vmt file of a material. Nothing, told in the list, if there is none.
  std::optional<core::FileImage> FindFile(Material& material) {
    const std::string stem = WithoutEnding(material.Name, {".vmt", ".vtf", ".bmp", ".tga", ".png", ".psd"});
    std::vector<std::string> names;
    for (const std::string& directory : m_directories) {
      std::string name = directory;
      name += '/';
      name += stem;
      AddName(name += ".vmt", names);
    }
    AddName(stem + ".vmt", names);
    std::vector<std::string> tried;
    std::string reason = "it was not found";
    for (const std::string& name : names) {
      MaterialFile file = m_files.Read(name);
      if (file.Image) {
        material.Path = file.Image->Path();
        m_name = name;
        return std::move(file.Image);
      }
      reason = file.Reason;
      tried.insert(tried.end(), file.Tried.begin(), file.Tried.end());
    }
    Miss(material.Name, "", reason, std::move(tried));
    return std::nullopt;
  }

  static void AddName(const std::string& name, std::vector<std::string>& names) {
    std::string plain = archives::PlainName(name);
    const bool known = std::any_of(names.begin(), names.end(),
                                   [&](const std::string& other) { return archives::EqualFolded(other, plain); });
    if (!known) names.push_back(std::move(plain));
  }

  Material Unusable(Material material, std::string reason, std::vector<std::string> tried) {
    Miss(material.Path, "", std::move(reason), std::move(tried));
    material.Missing = true;
    return material;
  }

  void Miss(const std::string& name, const std::string& neededBy, std::string reason, std::vector<std::string> tried) {
    m_result.Missing.push_back({name, neededBy, std::move(reason), std::move(tried)});
  }

  /// The texture that a key names; null if there is none. One that cannot be had is told; `missing` then says so.
  SharedTexture TextureOf(const MaterialText& said, std::string_view key, const Material& material,
                          bool* missing = nullptr) {
    const std::string name = WithoutEnding(archives::PlainName(said.Value(key)), {".vtf"});
    const std::string folded = archives::FoldedText(name);
    // What a game draws itself is in no file.
    if (name.empty() || folded.starts_with("_rt_") || folded == "env_cubemap") return nullptr;
    const std::string below = folded.starts_with("materials/") ? name.substr(10) : name;
    MaterialFile file = m_files.Read(below + ".vtf");
    SharedTexture texture;
    if (file.Image) {
      const std::string path = file.Image->Path();
      texture = m_cache.Get(std::move(*file.Image), file.Reason);
      if (texture == nullptr) file.Tried.push_back(path);
    }
    if (texture == nullptr) {
      Miss(name, material.Name, file.Reason, std::move(file.Tried));
      if (missing != nullptr) *missing = true;
    }
    return texture;
  }

  void Take(const MaterialText& said, Material& material) {
    material.Shader = said.Shader;
    const std::string shader = core::LowerAscii(said.Shader);
    TakeBase(said, shader, material);
    const std::string_view bump = said.Has("$bumpmap") ? "$bumpmap" : "$normalmap";
    if (!said.IsSet("$ssbump")) material.Bump = TextureOf(said, bump, material);

    material.Translucent = said.IsSet("$translucent") || said.IsSet("$vertexalpha");
    material.AlphaTest = said.IsSet("$alphatest");
    material.AlphaTestReference = std::clamp(said.Number("$alphatestreference", 0.5f), 0.0f, 1.0f);
    material.Additive = said.IsSet("$additive");
    material.NoCull = said.IsSet("$nocull");
    material.NoDraw = said.IsSet("$no_draw");
    material.Unlit = shader.starts_with("unlit") || shader.starts_with("sprite") || shader == "modulate";
    material.Alpha *= std::clamp(said.Number("$alpha", 1), 0.0f, 1.0f);

    const auto colour = said.Colour("$color"), second = said.Colour("$color2");
    for (size_t i = 0; i < 3; ++i) material.Colour[i] = colour[i] * second[i];
    material.ColourByBaseAlpha = said.IsSet("$blendtintbybasealpha");

    material.SelfIllum = said.IsSet("$selfillum");
    material.SelfIllumTint = said.Colour("$selfillumtint");
    if (material.SelfIllum) material.SelfIllumMask = TextureOf(said, "$selfillummask", material);

    material.Phong = said.IsSet("$phong");
    material.PhongExponent = std::clamp(said.Number("$phongexponent", 20), 1.0f, 255.0f);
    material.PhongBoost = std::clamp(said.Number("$phongboost", 1), 0.0f, 50.0f);
    material.PhongTint = said.Colour("$phongtint");
    material.PhongMaskInBase = said.IsSet("$basemapalphaphongmask");
  }

  void TakeBase(const MaterialText& said, const std::string& shader, Material& material) {
    const bool eye = shader.starts_with("eye") && !said.Has("$basetexture") && said.Has("$iris");
    const SharedTexture base = TextureOf(said, eye ? "$iris" : "$basetexture", material, &material.Missing);
    if (base != nullptr) {
      material.Base = base;
    } else if (!material.Missing) {
      material.Base = PlainTexture(White);
      if (shader.starts_with("refract")) material.Alpha = 0.25f;  // nothing but a bend in what lies behind it
    }
  }

  const std::vector<std::string>& m_directories;
  const MaterialFiles& m_files;
  TextureCache& m_cache;
  MaterialSet& m_result;
  std::string m_name;  // of the .vmt file, below `materials`
};

}  // namespace

MaterialSet LoadMaterials(const std::vector<std::string>& names, const std::vector<std::string>& directories,
                          const MaterialFiles& files, TextureCache& cache) {
  MaterialSet result;
  Loader loader(directories, files, cache, result);
  std::map<std::string, size_t> known;  // by folded name
  for (const std::string& name : names) {
    const auto [place, isNew] = known.emplace(archives::FoldedText(name), result.Materials.size());
    result.Materials.push_back(isNew ? loader.Load(name) : result.Materials[place->second]);
  }
  return result;
}

}  // namespace tarnwick::view
