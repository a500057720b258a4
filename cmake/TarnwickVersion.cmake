# The commit that a build is made of, for --version. It is asked for at every build, so that it is never an old one; the
# header is written anew only when it changed, so that a build without changes stays quick.

set(TARNWICK_COMMIT_HEADER ${CMAKE_BINARY_DIR}/generated/tarnwick_commit.h)
add_custom_target(tarnwick_commit
  COMMAND ${CMAKE_COMMAND} -D SOURCE=${CMAKE_SOURCE_DIR} -D HEADER=${TARNWICK_COMMIT_HEADER}
    -P ${CMAKE_SOURCE_DIR}/cmake/write_commit.cmake
  BYPRODUCTS ${TARNWICK_COMMIT_HEADER}
  VERBATIM)
