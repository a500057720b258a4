# Writes the header HEADER, which names the commit of the tree SOURCE; "unknown" outside a clone.
execute_process(COMMAND git -C ${SOURCE} rev-parse --short=10 HEAD
  OUTPUT_VARIABLE commit ERROR_QUIET RESULT_VARIABLE failed OUTPUT_STRIP_TRAILING_WHITESPACE)
if(failed)
  set(commit unknown)
endif()
set(text "#define TARNWICK_COMMIT \"${commit}\"\n")
set(before "")
if(EXISTS ${HEADER})
  file(READ ${HEADER} before)
endif()
if(NOT before STREQUAL text)
  file(WRITE ${HEADER} "${text}")
endif()
