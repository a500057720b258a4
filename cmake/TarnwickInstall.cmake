# What `cmake --install` writes, and the packages that CPack makes of it: scripts/package.sh runs both.
#
# Programs lie together in one folder, since they find each other and the folder sdk beside themselves; bin/ holds links
# to those that a person starts. With TARNWICK_PORTABLE the programs lie in the folder itself, where the archive that
# runs from anywhere has its libraries too.

option(TARNWICK_PORTABLE "Install for the archive that runs from any folder" OFF)

include(GNUInstallDirs)
set(CMAKE_INSTALL_DOCDIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/tarnwick)
set(home ${CMAKE_INSTALL_LIBEXECDIR}/tarnwick)
if(TARNWICK_PORTABLE OR WIN32)
  set(home .)
endif()
if(WIN32)  # one folder, with all that a person looks for straight in it
  set(CMAKE_INSTALL_DOCDIR .)
endif()

foreach(program tarnwick tarnwick-cli tarnwick-imageworker tarnwick-minder)
  if(TARGET ${program})
    install(TARGETS ${program} RUNTIME DESTINATION ${home})
  endif()
endforeach()
foreach(tool vtex vtf2tga studiomdl hlmv)
  if(TARGET ${tool})
    install(TARGETS ${tool} RUNTIME DESTINATION ${home}/sdk)
  endif()
endforeach()
install(DIRECTORY ${CMAKE_SOURCE_DIR}/samples/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/samples
  FILES_MATCHING PATTERN "walker.*" PATTERN "*.vmt" PATTERN "*.vtf" PATTERN "walker.cpp" EXCLUDE
  PATTERN "walker.h" EXCLUDE)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/docs DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${CMAKE_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})

if(WIN32)
  install(FILES ${CMAKE_SOURCE_DIR}/cmake/windows/READ_ME_FIRST.txt DESTINATION .)
  install(FILES ${CMAKE_SOURCE_DIR}/LICENSE DESTINATION . RENAME LICENSE.txt)
  return()
endif()
if(TARNWICK_PORTABLE)
  # Unlike a run path this one also serves the libraries that the program's own libraries need.
  foreach(program tarnwick tarnwick-cli tarnwick-imageworker tarnwick-minder)
    if(TARGET ${program})
      target_link_options(${program} PRIVATE -Wl,--disable-new-dtags)
      set_target_properties(${program} PROPERTIES INSTALL_RPATH "$ORIGIN/lib")
    endif()
  endforeach()
  foreach(tool vtex vtf2tga studiomdl hlmv)
    if(TARGET ${tool})
      target_link_options(${tool} PRIVATE -Wl,--disable-new-dtags)
      set_target_properties(${tool} PROPERTIES INSTALL_RPATH "$ORIGIN/../lib")
    endif()
  endforeach()
  install(FILES ${CMAKE_SOURCE_DIR}/cmake/package/qt.conf DESTINATION ${home})
  install(FILES ${CMAKE_SOURCE_DIR}/cmake/package/sdk/qt.conf DESTINATION ${home}/sdk)  # of the model viewer
  return()
endif()

foreach(program tarnwick tarnwick-cli)
  if(TARGET ${program})
    file(RELATIVE_PATH target ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBEXECDIR}/tarnwick/${program})
    file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/links)
    file(CREATE_LINK ${target} ${CMAKE_BINARY_DIR}/links/${program} SYMBOLIC)
    install(FILES ${CMAKE_BINARY_DIR}/links/${program} DESTINATION ${CMAKE_INSTALL_BINDIR})
  endif()
endforeach()
if(TARGET tarnwick)
  set(package ${CMAKE_SOURCE_DIR}/cmake/package)
  install(FILES ${package}/tarnwick.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES ${package}/tarnwick.mime.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages RENAME tarnwick.xml)
  install(FILES ${package}/org.tarnwick.Tarnwick.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  install(FILES ${CMAKE_SOURCE_DIR}/platform/resources/icons/tarnwick.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
endif()
# Made by scripts/package.sh, which asks the built programs for them.
set(made ${CMAKE_BINARY_DIR}/package)
install(DIRECTORY ${made}/man/ DESTINATION ${CMAKE_INSTALL_MANDIR} OPTIONAL)
install(FILES ${made}/completions/tarnwick-cli.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
  RENAME tarnwick-cli OPTIONAL)
install(FILES ${made}/completions/_tarnwick-cli DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions OPTIONAL)
install(FILES ${made}/completions/tarnwick-cli.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
  OPTIONAL)
install(FILES ${made}/changelog.gz DESTINATION ${CMAKE_INSTALL_DOCDIR} OPTIONAL)
install(FILES ${CMAKE_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tarnwick)
set(CPACK_PACKAGE_VENDOR Tarnwick)
set(CPACK_PACKAGE_CONTACT "The owners of Tarnwick <maintainers@tarnwick.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "tools for content of games on the Source engine")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Decompiles compiled models into editable sources, compiles models
and materials, exports textures and reads archives, in one window and on
the command line.")
# A tilde sorts before the release itself.
string(REPLACE - "~" CPACK_DEBIAN_PACKAGE_VERSION ${TARNWICK_VERSION})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libgl1-mesa-dri")  # draws models where the graphics card has no driver of its own
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6svg6, qt6-qpa-plugins, sensible-utils")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libegl1, libgl1-mesa-dri, wine | wine64")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
include(CPack)
