# What a program has inside itself on Windows: its icon, its version for the file's properties, and its manifest.

if(WIN32)
  find_program(RSVG_CONVERT rsvg-convert)
  find_program(ICOTOOL icotool)
endif()

# Makes pictures of the SVG file `svg`, named <size>.png in `folder`, of these widths in pixels; gives `result` the files.
function(tarnwick_pictures result svg folder)
  set(made "")
  foreach(size ${ARGN})
    set(file ${folder}/${size}.png)
    add_custom_command(OUTPUT ${file}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
      COMMAND ${RSVG_CONVERT} --width ${size} --keep-aspect-ratio --output ${file} ${svg}
      DEPENDS ${svg} VERBATIM)
    list(APPEND made ${file})
  endforeach()
  set(${result} ${made} PARENT_SCOPE)
endfunction()

# Gives `target`, on Windows, what it has inside. `description` is what the task manager calls it.
function(tarnwick_program target description)
  if(NOT WIN32)
    return()
  endif()
  set(folder ${CMAKE_BINARY_DIR}/resources)
  set(TARNWICK_PROGRAM ${target})
  set(TARNWICK_DESCRIPTION ${description})
  string(REPLACE . , TARNWICK_NUMBERS ${PROJECT_VERSION}.0)
  set(TARNWICK_ICON "// no icon: it is made by rsvg-convert and icotool")
  if(RSVG_CONVERT AND ICOTOOL)
    if(NOT TARGET tarnwick_icon)
      tarnwick_pictures(pictures ${CMAKE_SOURCE_DIR}/platform/resources/icons/tarnwick.svg ${folder}/icon
        16 20 24 32 40 48 64 256)
      list(GET pictures -1 large)
      list(REMOVE_AT pictures -1)
      add_custom_command(OUTPUT ${folder}/tarnwick.ico
        COMMAND ${ICOTOOL} --create --output ${folder}/tarnwick.ico --raw=${large} ${pictures}
        DEPENDS ${pictures} ${large} VERBATIM)
      add_custom_target(tarnwick_icon DEPENDS ${folder}/tarnwick.ico)
    endif()
    add_dependencies(${target} tarnwick_icon)
    set(TARNWICK_ICON "1 ICON \"${folder}/tarnwick.ico\"")
  endif()
  configure_file(${CMAKE_SOURCE_DIR}/cmake/windows/program.rc.in ${folder}/${target}.rc @ONLY)
  configure_file(${CMAKE_SOURCE_DIR}/cmake/windows/program.manifest ${folder}/program.manifest COPYONLY)
  # By hand: the compiler's options, which every language of the project gets, are none of this one's.
  add_custom_command(OUTPUT ${folder}/${target}.obj
    COMMAND ${CMAKE_RC_COMPILER} --output-format=coff ${folder}/${target}.rc ${folder}/${target}.obj
    DEPENDS ${folder}/${target}.rc ${folder}/program.manifest VERBATIM)
  target_sources(${target} PRIVATE ${folder}/${target}.obj)
  set_source_files_properties(${folder}/${target}.obj PROPERTIES EXTERNAL_OBJECT ON GENERATED ON)
endfunction()
