# Makes `target` from the headers in /usr/include/<folder>. The folder is reached through one that holds nothing else,
# since /usr/include itself holds the headers of another system.
function(header_only_library target folder)
  if(TARGET ${target})
    return()
  endif()
  set(door ${CMAKE_BINARY_DIR}/include/${folder}_headers)
  file(MAKE_DIRECTORY ${door})
  file(CREATE_LINK /usr/include/${folder} ${door}/${folder} SYMBOLIC)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} INTERFACE ${door})
endfunction()
