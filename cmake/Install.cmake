# What `cmake --install` gives: headers, library, CMake package, pkg-config file, the command with
# its page, and the tuning files.
include(CMakePackageConfigHelpers)

install(TARGETS vorel EXPORT vorel
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/vorel DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY tuning/samples/ DESTINATION ${CMAKE_INSTALL_DATADIR}/vorel/tuning
  FILES_MATCHING PATTERN "*.json")
install(FILES tuning/vorel_tuning.schema.json DESTINATION ${CMAKE_INSTALL_DATADIR}/vorel)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vorel)
install(EXPORT vorel NAMESPACE vorel:: FILE vorelTargets.cmake DESTINATION ${package_dir})
configure_package_config_file(cmake/vorelConfig.cmake.in ${CMAKE_BINARY_DIR}/vorelConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/vorelConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/vorelConfig.cmake ${CMAKE_BINARY_DIR}/vorelConfigVersion.cmake
  DESTINATION ${package_dir})

# The prefix follows from the file's own place, so that an installed tree can be moved.
file(RELATIVE_PATH VOREL_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" VOREL_PC_PREFIX "${VOREL_PC_PREFIX}")
configure_file(cmake/vorel.pc.in ${CMAKE_BINARY_DIR}/vorel.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/vorel.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(VOREL_BUILD_TOOLS)
  install(TARGETS vorel_command RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES docs/vorel.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES tools/completion/vorel.bash RENAME vorel
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
endif()
