# Debian's mingw-w64: builds the logic rooms, their tests and the command line as 64-bit Windows programs.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# TARNWICK_WINDOWS_LIBRARIES: where scripts/windows_libraries.sh has put Qt and what else the window and the images need.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TARNWICK_WINDOWS_LIBRARIES)
set(CMAKE_FIND_ROOT_PATH ${TARNWICK_WINDOWS_LIBRARIES} /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The compiler's own libraries go into the programs, so that they run wherever Windows programs do.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
# The calls of this project are there since Windows 10.
add_compile_definitions(_WIN32_WINNT=0x0A00 NOMINMAX)

# What Debian does not build for Windows: header-only libraries, and GoogleTest's sources.
list(PREPEND CMAKE_MODULE_PATH ${CMAKE_CURRENT_LIST_DIR}/windows_cross)
