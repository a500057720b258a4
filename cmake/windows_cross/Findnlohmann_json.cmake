include(${CMAKE_CURRENT_LIST_DIR}/header_only_library.cmake)
header_only_library(nlohmann_json::nlohmann_json nlohmann)
set(nlohmann_json_FOUND TRUE)
