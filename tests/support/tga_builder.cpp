#include "support/tga_builder.h"

namespace tarnwick::tests {

std::string TgaFile(const textures::TgaHeader& header, std::string_view pixels, std::string_view between) {
  std::string file(reinterpret_cast<const char*>(&header), sizeof header);
  return file.append(between).append(pixels);
}

textures::TgaHeader TgaHeaderOf(uint8_t type, int bits, int width, int height) {
  textures::TgaHeader header{};
  header.ImageType = type;
  header.PixelBits = static_cast<uint8_t>(bits);
  header.Width = static_cast<uint16_t>(width);
  header.Height = static_cast<uint16_t>(height);
  header.Descriptor = textures::TgaTopToBottom;
  return header;
}

std::string TgaOf(const textures::Picture& picture) {
  textures::TgaHeader header = TgaHeaderOf(textures::TgaTrueColour, 32, picture.Width, picture.Height);
  header.Descriptor |= 8;
  return TgaFile(header, {reinterpret_cast<const char*>(picture.Pixels.data()), picture.Pixels.size() * 4});
}

}  // namespace tarnwick::tests
