include(${CMAKE_CURRENT_LIST_DIR}/header_only_library.cmake)
header_only_library(CLI11::CLI11 CLI)
set(CLI11_FOUND TRUE)
