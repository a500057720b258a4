#pragma once

#include <span>
#include <string_view>

namespace tarnwick::images {

/// A file format with its number in the image library, the word that the log uses for it, and the endings of its
/// files (small letters, separated by commas; the library's own name of the format counts as one).
struct ImageFormat {
  int Number;
  std::string_view Word;
  std::string_view Endings;
};

inline constexpr int FormatTga = 17;
inline constexpr int FormatDds = 24;

/// The formats that the log names, in the order of their numbers. The worker knows more.
extern const std::span<const ImageFormat> NamedFormats;

/// The named format of a file by its name alone, as the library decides it: the text behind the last dot, or the whole
/// name where there is no dot, in any case. Null for any other.
const ImageFormat* FormatOfFileName(std::string_view name);

}  // namespace tarnwick::images
