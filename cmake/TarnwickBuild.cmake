# How every target of the project is built: language level, warnings, sanitizers, and rooms that can only include
# what they link.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
# A path under /usr/include that a package adds as a plain include would hide the compiler's own headers.
set(CMAKE_INCLUDE_DIRECTORIES_PROJECT_BEFORE ON)

# The third level makes the programs a quarter larger, and a tree of models, of which each runs through most of the code
# once, comes no sooner for it; loops that gain from it have it on their own (tarnwick_vector_files).
string(REPLACE "-O3" "-O2" CMAKE_CXX_FLAGS_RELEASE "${CMAKE_CXX_FLAGS_RELEASE}")

find_program(CCACHE ccache)
if(CCACHE)
  # What is compiled with a precompiled header goes into the cache only where it is told that this is meant.
  set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE})
endif()

# A quick linker where there is one: the sanitizers' programs are large.
find_program(MOLD mold)
if(MOLD AND NOT CMAKE_CROSSCOMPILING AND NOT MSVC)
  add_link_options(-fuse-ld=mold)
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

# What reads files from strangers ends on an overrun rather than going on with it.
add_compile_definitions(_GLIBCXX_ASSERTIONS)
if(NOT MSVC)
  add_compile_options(-fstack-protector-strong)
  add_link_options(-fstack-protector-strong)  # what watches is a library of its own on Windows
endif()
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
  # The sanitizers watch the plain library calls; without optimisation there is nothing to check the checked ones by.
  if(NOT TARNWICK_SANITIZE)
    add_compile_options("$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>")
  endif()
  # Programs may lie anywhere in memory; what the loader has linked is then read-only. A module needs -fPIC, which
  # would slow the rooms down: their functions could be replaced from outside.
  set(kind $<TARGET_PROPERTY:TYPE>)
  add_compile_options($<$<NOT:$<IN_LIST:${kind},MODULE_LIBRARY$<SEMICOLON>SHARED_LIBRARY>>:-fPIE>)
  add_link_options(-Wl,-z,now,-z,relro $<$<STREQUAL:${kind},EXECUTABLE>:-pie>)
endif()

# Adds the headers that follow as the precompiled header `name`, which `tarnwick_precompiled` then gives to targets; they
# are read with the options and libraries that follow LIKE. No file may rely on it: builds without TARNWICK_PRECOMPILE
# show what it does not include itself.
function(tarnwick_precompiled_header name)
  if(NOT TARNWICK_PRECOMPILE)
    return()
  endif()
  cmake_parse_arguments(PARSE_ARGV 1 header "" "" "OPTIONS;LIKE")
  file(WRITE ${CMAKE_BINARY_DIR}/${name}.cpp "")
  add_library(${name} OBJECT ${CMAKE_BINARY_DIR}/${name}.cpp)
  target_compile_options(${name} PRIVATE ${header_OPTIONS})
  target_link_libraries(${name} PRIVATE ${header_LIKE} tarnwick_options)
  set_target_properties(${name} PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
  target_precompile_headers(${name} PRIVATE ${header_UNPARSED_ARGUMENTS})
endfunction()

# Lets `target` use the precompiled header `name`.
function(tarnwick_precompiled target name)
  if(TARGET ${name})
    target_precompile_headers(${target} REUSE_FROM ${name})
    # GCC 12 no longer knows the library's headers as the system's once they are precompiled, and warns of them.
    target_compile_options(${target} PRIVATE
      "$<$<CXX_COMPILER_ID:GNU>:-Wno-array-bounds;-Wno-stringop-overflow;-Wno-stringop-overread>")
  endif()
endfunction()

# Lets a library without windows, which has no precompiled header yet, use that of the rooms.
function(tarnwick_precompiled_if_plain target)
  get_target_property(used ${target} PRECOMPILE_HEADERS_REUSE_FROM)
  get_target_property(meta ${target} AUTOMOC)
  get_target_property(type ${target} TYPE)
  if(NOT used AND NOT meta AND type STREQUAL "STATIC_LIBRARY")
    tarnwick_precompiled(${target} tarnwick_room_headers)
  endif()
endfunction()

# Applies the project's warnings to `target`.
function(tarnwick_target target)
  target_link_libraries(${target} PRIVATE tarnwick_options)
endfunction()

# Options for code that people wait for while it is compiled, never while it runs: options, tests.
if(TARNWICK_SANITIZE)
  set(TARNWICK_QUICK_COMPILE -O0)
else()
  set(TARNWICK_QUICK_COMPILE $<$<NOT:$<CONFIG:Debug>>:-O1>)
endif()
# The sanitizer of undefined behaviour and the fuzzer's counters watch what is tested, and the lines of that are what a
# report needs. In the tests themselves all three would add half to their time.
set(TARNWICK_TEST_COMPILE ${TARNWICK_QUICK_COMPILE})
if(TARNWICK_SANITIZE)
  list(APPEND TARNWICK_TEST_COMPILE -g0)
endif()
if(TARNWICK_SANITIZE MATCHES undefined)
  list(APPEND TARNWICK_TEST_COMPILE -fno-sanitize=undefined)
endif()
if(TARNWICK_SANITIZE MATCHES fuzzer)
  list(APPEND TARNWICK_TEST_COMPILE -fno-sanitize=fuzzer-no-link)
endif()

# Lets the compiler make vector code of the loops in these files, in every build but one for a debugger: see
# core/vector_code.h. Neither errno nor floating-point exceptions are looked at there, and a multiplication may be fused
# with an addition, so what they compute must not depend on that.
function(tarnwick_vector_files)
  if(NOT MSVC)
    set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS
      "$<$<NOT:$<CONFIG:Debug>>:-O3;-fno-math-errno;-fno-trapping-math;-ffp-contract=fast>"
      SKIP_PRECOMPILE_HEADERS ON)  # which is read with the other options
  endif()
endfunction()

# Adds each named room that exists. A room's headers are reached as "room/file.h" through a folder that holds nothing
# but a link to that room, and only by targets that link it: an include that the room's row does not allow does not
# compile.
macro(tarnwick_rooms)
  foreach(room ${ARGN})
    if(EXISTS ${CMAKE_SOURCE_DIR}/${room}/CMakeLists.txt)
      set_property(GLOBAL APPEND PROPERTY TARNWICK_ROOMS ${room})
      add_subdirectory(${room})
      tarnwick_expose_room(${room})
    endif()
  endforeach()
endmacro()

# A room with windows may keep its plain logic in a library of its own, tarnwick_<room>_text, which stands before the
# room and sees neither Qt nor the room's own rows.
function(tarnwick_expose_room room)
  if(NOT TARGET tarnwick_${room} AND NOT TARGET tarnwick_${room}_text)
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
      tarnwick_precompiled_if_plain(${library})
    endif()
  endforeach()
endfunction()

# Adds a floor of a large room: the folder `floor` in it as the library tarnwick_<room>_<floor>, made of the files that
# follow. Like a room it sees only the floors and rooms that it links.
function(tarnwick_floor room floor)
  list(TRANSFORM ARGN PREPEND ${floor}/)
  add_library(tarnwick_${room}_${floor} STATIC ${ARGN})
  set(door ${CMAKE_BINARY_DIR}/include/${room}_${floor})
  file(MAKE_DIRECTORY ${door}/${room})
  file(CREATE_LINK ${CMAKE_SOURCE_DIR}/${room}/${floor} ${door}/${room}/${floor} RESULT failed SYMBOLIC)
  if(failed)
    set(door ${CMAKE_SOURCE_DIR})
  endif()
  target_include_directories(tarnwick_${room}_${floor} PUBLIC ${door})
  tarnwick_target(tarnwick_${room}_${floor})
  tarnwick_precompiled_if_plain(tarnwick_${room}_${floor})
endfunction()

# Gives `result` all targets of a room and of the folders in it.
function(tarnwick_room_targets result room)
  set(folders ${CMAKE_SOURCE_DIR}/${room})
  set(all "")
  while(folders)
    list(POP_FRONT folders folder)
    get_property(targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
    list(APPEND all ${targets})
    get_property(inner DIRECTORY ${folder} PROPERTY SUBDIRECTORIES)
    list(APPEND folders ${inner})
  endwhile()
  set(${result} ${all} PARENT_SCOPE)
endfunction()

# Gives `result` all programs of the rooms.
function(tarnwick_programs result)
  get_property(rooms GLOBAL PROPERTY TARNWICK_ROOMS)
  set(programs "")
  foreach(room ${rooms})
    tarnwick_room_targets(targets ${room})
    foreach(target ${targets})
      get_target_property(type ${target} TYPE)
      if(type STREQUAL "EXECUTABLE")
        list(APPEND programs ${target})
      endif()
    endforeach()
  endforeach()
  set(${result} ${programs} PARENT_SCOPE)
endfunction()

# Writes a line for each room into `file`: its name and the rooms that it links, as scripts/check_rooms.sh reads them.
function(tarnwick_write_room_links file)
  get_property(rooms GLOBAL PROPERTY TARNWICK_ROOMS)
  set(lines "")
  foreach(room ${rooms})
    set(linked "")
    tarnwick_room_targets(targets ${room})
    foreach(target ${targets})
      get_target_property(libraries ${target} LINK_LIBRARIES)
      foreach(library ${libraries})
        string(REGEX REPLACE "^tarnwick_([a-z]+).*" "\\1" name "${library}")
        if(name IN_LIST rooms AND NOT name STREQUAL room)
          list(APPEND linked ${name})
        endif()
      endforeach()
    endforeach()
    list(REMOVE_DUPLICATES linked)
    list(JOIN linked " " linked)
    string(APPEND lines "${room} ${linked}\n")
  endforeach()
  file(WRITE ${file} "${lines}")
endfunction()
