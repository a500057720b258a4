# The library that scripts/windows_libraries.sh has built, with the codecs that it needs.
foreach(codec Threads JPEG PNG TIFF ZLIB WebP)
  find_package(${codec} REQUIRED)
endforeach()
find_path(FREEIMAGE_INCLUDE FreeImage.h REQUIRED)
find_library(FREEIMAGE_LIBRARY freeimage REQUIRED)
if(NOT TARGET freeimage)
  add_library(freeimage STATIC IMPORTED)
  set_target_properties(freeimage PROPERTIES IMPORTED_LOCATION ${FREEIMAGE_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${FREEIMAGE_INCLUDE} INTERFACE_COMPILE_DEFINITIONS FREEIMAGE_LIB
    INTERFACE_LINK_LIBRARIES "TIFF::TIFF;JPEG::JPEG;PNG::PNG;WebP::libwebpmux;WebP::webp;ZLIB::ZLIB")
endif()
set(FreeImage_FOUND TRUE)
