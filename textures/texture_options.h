#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::textures {

/// What the option file beside a TGA asks for: one option a line, its name and a value, either in quotes or not;
/// "//" starts a comment.
///
///     "nocompress" "1"
///     clamps 1
///     reduce 2          // half the size
///
/// An option without a value is on, with the value 0 off.
struct TextureOptions {
  bool NoCompress = false;   // nocompress: BGR888, or BGRA8888 with alpha
  bool Dxt5 = false;         // dxt5: DXT5 also without alpha, and for normal maps
  bool OneBitAlpha = false;  // onebitalpha: DXT1 with one-bit alpha in the place of DXT5
  bool StripAlpha = false;   // stripalphachannel: as if there were no alpha
  bool Normal = false;       // normal: a normal map
  bool InvertGreen = false;  // invertgreen: green is 255 less itself (normal maps whose Y axis points down)
  bool NoMip = false;        // nomip
  bool NoLod = false;        // nolod
  bool ClampS = false;       // clamps
  bool ClampT = false;       // clampt
  bool PointSample = false;  // pointsample
  bool Trilinear = false;    // trilinear
  bool Anisotropic = false;  // anisotropic
  int ReduceX = 1;           // reduce, reducex: the width is divided by this power of two
  int ReduceY = 1;           // reduce, reducey
  float BumpScale = 1;       // bumpscale
  int StartFrame = -1;       // startframe, endframe: an animation; frame N is read from <stem>NNN.tga
  int EndFrame = -1;
};

/// Reads the text of an option file. Lines that are not understood are passed over and told in `warnings`, such as
/// "line 3: unknown option \"nocompres\"".
TextureOptions ParseTextureOptions(std::string_view text, std::vector<std::string>& warnings);

}  // namespace tarnwick::textures
