# jansson as target PkgConfig::JANSSON: by pkg-config, but for Android, where pkg-config would find the
# building machine's. There JANSSON_LIBRARY and JANSSON_INCLUDE_DIR name it, or JANSSON_ROOT a folder
# with lib/ and include/.
include(FindPackageHandleStandardArgs)
find_package(PkgConfig QUIET)
if(ANDROID)
  find_library(JANSSON_LIBRARY jansson HINTS "${JANSSON_ROOT}/lib" NO_CMAKE_FIND_ROOT_PATH)
  find_path(JANSSON_INCLUDE_DIR jansson.h HINTS "${JANSSON_ROOT}/include" NO_CMAKE_FIND_ROOT_PATH)
  find_package_handle_standard_args(Jansson REQUIRED_VARS JANSSON_LIBRARY JANSSON_INCLUDE_DIR)
  if(Jansson_FOUND AND NOT TARGET PkgConfig::JANSSON)
    add_library(PkgConfig::JANSSON UNKNOWN IMPORTED)
    set_target_properties(PkgConfig::JANSSON PROPERTIES
      IMPORTED_LOCATION "${JANSSON_LIBRARY}"
      INTERFACE_INCLUDE_DIRECTORIES "${JANSSON_INCLUDE_DIR}")
  endif()
else()
  pkg_check_modules(JANSSON REQUIRED IMPORTED_TARGET jansson)
  find_package_handle_standard_args(Jansson REQUIRED_VARS JANSSON_LIBRARIES)
endif()
