#pragma once

#include <functional>
#include <optional>
#include <string>

#include "core/report.h"
#include "images/image_worker.h"

namespace tarnwick::images {

/// The box of a conversion that failed because the destination's directory does not exist.
struct MissingDirectory {
  std::string Text;       // of the ordinary failure box
  std::string Caption;    // of the ordinary failure box
  std::string Directory;  // that does not exist
};

/// An image that seems to be damaged.
struct DamagedImage {
  std::string Source;
  std::string Reason;   // without the file's name
  std::string Text;     // of the ordinary failure box
  std::string Caption;  // of the ordinary failure box
};

/// What the conversions need beside their paths. A conversion that the worker's stop ends fails without a word.
struct ConversionContext {
  core::Report& Report;       // gets the log's lines and the failure boxes
  const ImageWorker& Worker;  // does the work
  /// Shows the failure box with a second choice: to create the directory. True: the directory and those above it are
  /// made and the conversion goes on. Without this function a missing directory gives the plain box.
  std::function<bool(const MissingDirectory&)> MayCreate = {};
  /// Asks whether a damaged image is to be used all the same, with what can be read of it. False: the conversion fails,
  /// and the question was its box. Without this function a damaged image gives the plain box.
  std::function<bool(const DamagedImage&)> MayUseDamaged = {};
};

/// Converts the image at `source` into `directory` as an uncompressed TGA file whose width and height are rounded up to
/// powers of two, for vtex reads nothing else. Returns the path of the TGA file ("<directory>/<name in small
/// letters>.tga"); `source` with forward slashes, with a warning in the log and no image read, if it is that file
/// already; an empty text, with the box "TGA Error" and the reason in the log, on failure. A file that stood at the
/// destination is replaced only by a whole new one.
///
/// The format is what the first bytes of the source tell, and where they tell none, its name. A source that is damaged
/// or cut off is no image, unless the context allows it; then a warning tells what is wrong with it. Images that a TGA
/// file cannot hold (16 bits a channel, floats, fewer than 8 bits) are brought to 24 or 32 bits.
std::string ConvertToTga(const std::string& source, const std::string& directory, const ConversionContext& context);

/// The same, but first the greyscale of the image at `alpha` is fitted to the source's size (bilinear) and becomes its
/// alpha channel. The alpha image is taken to have the source's format; if it cannot be read as that the source's own
/// alpha stays, and a warning without a box tells why. An empty `alpha` is none.
std::string ConvertToTgaWithAlpha(const std::string& source, const std::string& alpha, const std::string& directory,
                                  const ConversionContext& context);

/// `ConvertToTgaWithAlpha` if an image for the alpha channel is named, else `ConvertToTga`.
std::string ConvertMapToTga(const std::string& source, const std::optional<std::string>& alpha,
                            const std::string& directory, const ConversionContext& context);

/// Writes the TGA file at `tga` to `destination` in the format that the destination's name asks for, in its own size.
/// True if a file was written. A destination that is a TGA file by its name gives false and no word: there is nothing
/// to convert. On failure: the box "TGA Error", with the reason in the log.
///
/// A DDS file gets blocks of DXT1, or of DXT5 where there is alpha. EXR and HDR files get linear light.
///
/// Depths that the format cannot hold are brought to the nearest that it can: JPEG loses the alpha channel, GIF gets a
/// palette with one transparent entry if the image has transparent pixels.
bool ConvertTgaToImage(const std::string& tga, const std::string& destination, const ConversionContext& context);

}  // namespace tarnwick::images
