#pragma once

#include <string>

#include "images/worker/decoded.h"

namespace tarnwick::images {

/// Lets the library tell what it has to say to the functions below.
void HearTheLibrary();
/// The last thing that the library had to say since a file was decoded or `ForgetMessages` was called.
std::string LibraryMessage();
void ForgetMessages();

/// Reads the image in `file`, which is of the format `format`. `flags` are the library's; 0 for none.
///
/// A file that is cut off or damaged often gives an image all the same, grey or black where nothing was read. What
/// speaks for that is in `Damage`: the size of the file against its header, a warning of the library, a decoder that
/// asked for more than there is.
Decoded Decode(FREE_IMAGE_FORMAT format, const ImageFile& file, int flags = 0);

}  // namespace tarnwick::images
