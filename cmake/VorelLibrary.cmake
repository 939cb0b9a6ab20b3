# The library: one object target per folder, together libvorel.so and, for tests and benchmarks,
# a static archive that shows the hidden names too.
find_package(Threads REQUIRED)
find_package(AndroidLog REQUIRED)
find_package(Jansson REQUIRED)

include(BuildInfo)

function(vorel_object_library name)
  add_library(${name} OBJECT ${ARGN})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/include ${CMAKE_SOURCE_DIR})
  target_compile_options(${name} PRIVATE ${VOREL_LIBRARY_FLAGS})
  target_link_libraries(${name} PUBLIC AndroidLog::AndroidLog Threads::Threads)
endfunction()

vorel_object_library(vorel_platform ${VOREL_PLATFORM_SOURCES})
vorel_object_library(vorel_environment ${VOREL_PLATFORM_ENVIRONMENT_SOURCES})
if(ANDROID)
  vorel_object_library(vorel_system ${VOREL_PLATFORM_ANDROID_SOURCES})
else()
  add_library(vorel_system ALIAS vorel_environment)
endif()
vorel_object_library(vorel_threading ${VOREL_THREADING_SOURCES})
vorel_object_library(vorel_tuning ${VOREL_TUNING_SOURCES})
target_link_libraries(vorel_tuning PUBLIC PkgConfig::JANSSON)
vorel_object_library(vorel_filters ${VOREL_FILTERS_SOURCES})
vorel_object_library(vorel_convert ${VOREL_CONVERT_SOURCES})
vorel_object_library(vorel_wavelet ${VOREL_WAVELET_SOURCES})
vorel_object_library(vorel_core ${VOREL_CORE_SOURCES} ${VOREL_CORE_KERNEL_SOURCES})
target_link_libraries(vorel_core PUBLIC PkgConfig::JANSSON)
set_source_files_properties(core/make_handle.cpp PROPERTIES COMPILE_DEFINITIONS
  "${VOREL_BUILD_INFO}")

foreach(target vorel_filters vorel_convert vorel_wavelet)
  target_compile_options(${target} PRIVATE ${VOREL_KERNEL_FLAGS})
endforeach()
set_source_files_properties(${VOREL_CORE_KERNEL_SOURCES}
  PROPERTIES COMPILE_OPTIONS "${VOREL_KERNEL_FLAGS}")

set(VOREL_OBJECTS vorel_platform vorel_threading vorel_tuning vorel_filters vorel_convert
  vorel_wavelet vorel_core)

# Tests and benchmarks see the hidden names too, and name directories and properties themselves.
add_library(vorel_static STATIC)
target_link_libraries(vorel_static PRIVATE ${VOREL_OBJECTS} vorel_environment
  PUBLIC AndroidLog::AndroidLog Threads::Threads PkgConfig::JANSSON)
target_include_directories(vorel_static PUBLIC ${CMAKE_SOURCE_DIR}/include ${CMAKE_SOURCE_DIR})

# The shared library exports the names of abi/libvorel.map and no others.
set(VOREL_VERSION_SCRIPT ${CMAKE_SOURCE_DIR}/abi/libvorel.map)
add_library(vorel SHARED)
add_library(vorel::vorel ALIAS vorel)
target_link_libraries(vorel PRIVATE ${VOREL_OBJECTS} vorel_system AndroidLog::AndroidLog Threads::Threads
  PkgConfig::JANSSON)
target_include_directories(vorel PUBLIC
  $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}/include>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_compile_features(vorel INTERFACE cxx_std_17)
set_target_properties(vorel PROPERTIES LINK_DEPENDS ${VOREL_VERSION_SCRIPT})
if(ANDROID)
  # Android's loader knows no versions in file names.
  find_library(CUTILS_LIBRARY cutils REQUIRED)
  find_path(CUTILS_INCLUDE_DIR cutils/properties.h REQUIRED)
  foreach(target vorel_core vorel_environment)
    target_include_directories(${target} SYSTEM PRIVATE ${CUTILS_INCLUDE_DIR})
  endforeach()
  target_link_libraries(vorel PRIVATE ${CUTILS_LIBRARY})
else()
  # An installed library finds liblog where Debian keeps it.
  get_filename_component(VOREL_LIBLOG_DIRECTORY ${AndroidLog_LIBRARY} DIRECTORY)
  set_target_properties(vorel PROPERTIES VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR} INSTALL_RPATH "${VOREL_LIBLOG_DIRECTORY}")
endif()
target_link_options(vorel PRIVATE -Wl,--version-script=${VOREL_VERSION_SCRIPT}
  -Wl,--no-undefined-version ${VOREL_SHIPPED_LINK_FLAGS} -Wl,-z,nodelete
  -Wl,-z,max-page-size=16384)
