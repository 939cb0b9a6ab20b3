# What `cmake --install` gives: headers, library, CMake package, pkg-config file, the command with
# its page, and the tuning files. Each component is a Debian package (Package.cmake).
include(CMakePackageConfigHelpers)

# An installed client finds the library beside it, and liblog where Debian keeps it; where the loader
# finds the library by itself, the first is left out.
function(vorel_install_rpath component file beside)
  install(CODE "
    if(CMAKE_INSTALL_PREFIX MATCHES \"^/usr/?$\")
      file(RPATH_CHANGE FILE \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${file}\"
        OLD_RPATH \"\\${beside}:${VOREL_LIBLOG_DIRECTORY}\" NEW_RPATH \"${VOREL_LIBLOG_DIRECTORY}\")
    endif()" COMPONENT ${component})
endfunction()

install(TARGETS vorel EXPORT vorel
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development)
install(DIRECTORY include/vorel DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(DIRECTORY tuning/samples/ DESTINATION ${CMAKE_INSTALL_DATADIR}/vorel/tuning
  COMPONENT command FILES_MATCHING PATTERN "*.json")
install(FILES tuning/vorel_tuning.schema.json DESTINATION ${CMAKE_INSTALL_DATADIR}/vorel
  COMPONENT command)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vorel)
install(EXPORT vorel NAMESPACE vorel:: FILE vorelTargets.cmake DESTINATION ${package_dir}
  COMPONENT development)
configure_package_config_file(cmake/vorelConfig.cmake.in ${CMAKE_BINARY_DIR}/vorelConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/vorelConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/vorelConfig.cmake ${CMAKE_BINARY_DIR}/vorelConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT development)

# The prefix follows from the file's own place, so that an installed tree can be moved.
file(RELATIVE_PATH VOREL_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" VOREL_PC_PREFIX "${VOREL_PC_PREFIX}")
configure_file(cmake/vorel.pc.in ${CMAKE_BINARY_DIR}/vorel.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/vorel.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT development)

if(VOREL_BUILD_TOOLS)
  install(TARGETS vorel_command RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT command)
  vorel_install_rpath(command ${CMAKE_INSTALL_BINDIR}/vorel "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
  set(page docs/vorel.1)
  if(VOREL_PACKAGE)
    set(page ${CMAKE_BINARY_DIR}/packaging/vorel.1.gz)
    vorel_gzip(${CMAKE_SOURCE_DIR}/docs/vorel.1 ${page})
  endif()
  install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT command)
  install(FILES tools/completion/vorel.bash RENAME vorel
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT command)
endif()
if(TARGET gstvorel)
  install(TARGETS gstvorel LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/gstreamer-1.0
    COMPONENT gstreamer)
  vorel_install_rpath(gstreamer ${CMAKE_INSTALL_LIBDIR}/gstreamer-1.0/libgstvorel.so "$ORIGIN/..")
endif()
