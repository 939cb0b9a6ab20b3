# Debian packages and an archive by cpack: preset package, scripts/package.sh. Each package is an
# install component with what Debian's policy wants of it besides.
option(VOREL_PACKAGE "Install what Debian packages have, and configure cpack" OFF)
if(NOT VOREL_PACKAGE)
  return()
endif()
set(VOREL_PACKAGE_CONTACT "libvorel maintainers <maintainers@libvorel.example>" CACHE STRING
  "Maintainer of the packages")
set(VOREL_PACKAGE_DATE "${VOREL_BUILD_TIME}")
set(staged ${CMAKE_BINARY_DIR}/packaging)
set(folder ${CMAKE_SOURCE_DIR}/packaging)

# In the form that policy wants; without a name and a time in it, so that a build can be repeated.
function(vorel_gzip source target)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
  execute_process(COMMAND gzip -9nc ${source} OUTPUT_FILE ${target} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

configure_file(${folder}/changelog.in ${staged}/changelog @ONLY)
vorel_gzip(${staged}/changelog ${staged}/changelog.Debian.gz)

# The command compiles CLI11's headers in: its licence comes along, from the package that gave them.
file(READ ${folder}/copyright VOREL_COPYRIGHT)
file(WRITE ${staged}/copyright "${VOREL_COPYRIGHT}")
set(cli11 /usr/share/doc/libcli11-dev/copyright)
file(READ ${cli11} text)
string(REGEX MATCH "\nFiles: \\*\n(Copyright: [^\n]*\nLicense: [^\n]*)\n" _ "${text}")
set(cli11_head "${CMAKE_MATCH_1}")
string(REGEX MATCH "\nLicense: BSD-3-clause\n( [^\n]*\n)+" cli11_text "${text}")
if(NOT cli11_head OR NOT cli11_text)
  message(FATAL_ERROR "${cli11} does not read as it did: look at what it says and change this")
endif()
string(REGEX REPLACE "[ \t]+\n" "\n" cli11_text "${cli11_text}")
string(CONCAT text "${VOREL_COPYRIGHT}" "\nFiles: CLI11, compiled into /usr/bin/vorel\n"
  "${cli11_head}\n" "${cli11_text}")
file(WRITE ${staged}/copyright.command "${text}")

# vorel_package(COMPONENT NAME copyright documents...)
function(vorel_package component name copyright)
  set(documents ${CMAKE_INSTALL_DATADIR}/doc/${name})
  install(FILES ${copyright} RENAME copyright DESTINATION ${documents} COMPONENT ${component})
  install(FILES ${staged}/changelog.Debian.gz ${ARGN} DESTINATION ${documents} COMPONENT ${component})
  set(overrides ${folder}/${name}.lintian-overrides)
  if(EXISTS ${overrides})
    install(FILES ${overrides} RENAME ${name} COMPONENT ${component}
      DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides)
  endif()
endfunction()

vorel_package(library libvorel1 ${staged}/copyright)
vorel_package(development libvorel-dev ${staged}/copyright docs/integration.md docs/tuning.md)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libvorel-dev
  COMPONENT development)
vorel_package(command vorel ${staged}/copyright.command docs/command.md docs/tune.md)
vorel_package(gstreamer gstreamer1.0-vorel ${staged}/copyright docs/gstreamer.md)

set(CPACK_PACKAGE_NAME libvorel)
set(CPACK_PACKAGE_CONTACT "${VOREL_PACKAGE_CONTACT}")
set(CPACK_PACKAGE_VENDOR libvorel)
set(CPACK_COMPONENTS_ALL library development command gstreamer)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
  GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
execute_process(COMMAND dpkg --print-architecture OUTPUT_VARIABLE machine
  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(CPACK_PACKAGE_FILE_NAME libvorel-${PROJECT_VERSION}-linux-${machine})

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR} ${VOREL_LIBLOG_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(same "libvorel1 (= ${PROJECT_VERSION}-1)")

# vorel_debian(COMPONENT NAME SECTION SUMMARY TEXT)
macro(vorel_debian component name section summary text)
  string(TOUPPER ${component} _upper)
  set(CPACK_DEBIAN_${_upper}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${_upper}_PACKAGE_SOURCE libvorel)
  set(CPACK_DEBIAN_${_upper}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${_upper}_DESCRIPTION "${summary}\n${what}\n.\n${text}")
endmacro()

set(what "Removes colour noise from NV21 and NV12 camera frames, in place and in\n\
software: a spatial path at 1/16 size and a wavelet path in half precision,\n\
as a tuning file per sensor says.")
vorel_debian(library libvorel1 libs "chroma noise reduction for camera frames"
  "This package has the shared library.")
vorel_debian(development libvorel-dev libdevel
  "chroma noise reduction for camera frames (development files)"
  "This package has headers, CMake and pkg-config files and examples.")
vorel_debian(command vorel graphics "remove colour noise from camera pictures"
  "This package has the command for pictures, raw frames and Y4M streams, which\n\
also makes and checks tuning files.")
vorel_debian(gstreamer gstreamer1.0-vorel libs
  "chroma noise reduction for camera frames (GStreamer element)"
  "This package has the element for GStreamer pipelines.")
# The project's own summary would stand before each of these.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
foreach(component DEVELOPMENT COMMAND GSTREAMER)
  set(CPACK_DEBIAN_${component}_PACKAGE_DEPENDS "${same}")
endforeach()
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_COMMAND_PACKAGE_SUGGESTS bash-completion)
include(CPack)
