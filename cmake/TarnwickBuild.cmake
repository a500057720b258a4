# How every target of the project is built: language level, warnings, sanitizers, and rooms that can only include
# what they link.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
# A path under /usr/include that a package adds as a plain include would hide the compiler's own headers.
set(CMAKE_INCLUDE_DIRECTORIES_PROJECT_BEFORE ON)

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

add_library(tarnwick_options INTERFACE)
if(MSVC)
  target_compile_options(tarnwick_options INTERFACE /W4 /WX /permissive- /utf-8)
else()
  target_compile_options(tarnwick_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wnon-virtual-dtor
    -Woverloaded-virtual -Wcast-align -Wformat=2 -Wno-format-nonliteral -Wimplicit-fallthrough -Werror
    # GCC 12 sees overlapping copies in ordinary concatenations of std::string (GCC bug 105651).
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
    # Results must not depend on whether the machine can fuse a multiplication with an addition.
    -ffp-contract=off)
endif()
if(TARNWICK_SANITIZE)
  add_compile_options(-fsanitize=${TARNWICK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${TARNWICK_SANITIZE})
endif()

# Applies the project's warnings to `target`.
function(tarnwick_target target)
  target_link_libraries(${target} PRIVATE tarnwick_options)
endfunction()

# Adds each named room that exists. A room's headers are reached as "room/file.h" through a folder that holds nothing
# but a link to that room, and only by targets that link it: an include that the room's row does not allow does not
# compile.
macro(tarnwick_rooms)
  foreach(room ${ARGN})
    if(EXISTS ${CMAKE_SOURCE_DIR}/${room}/CMakeLists.txt)
      add_subdirectory(${room})
      tarnwick_expose_room(${room})
    endif()
  endforeach()
endmacro()

# A room with windows may keep its plain logic in a library of its own, tarnwick_<room>_text, which stands before the
# room and sees neither Qt nor the room's own rows.
function(tarnwick_expose_room room)
  if(NOT TARGET tarnwick_${room})
    return()
  endif()
  set(door ${CMAKE_BINARY_DIR}/include/${room})
  file(MAKE_DIRECTORY ${door})
  file(CREATE_LINK ${CMAKE_SOURCE_DIR}/${room} ${door}/${room} RESULT failed SYMBOLIC)
  if(failed)  # no right to make links (Windows): the room is still found, only the enforcement is lost
    set(door ${CMAKE_SOURCE_DIR})
  endif()
  foreach(library tarnwick_${room} tarnwick_${room}_text)
    if(TARGET ${library})
      target_include_directories(${library} PUBLIC ${door})
      tarnwick_target(${library})
    endif()
  endforeach()
endfunction()
