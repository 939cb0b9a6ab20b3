# liblog: part of Android; on Debian the packages android-liblog and android-liblog-dev, which keep
# headers and library in folders of their own.
if(ANDROID)
  find_library(AndroidLog_LIBRARY log)
  set(AndroidLog_INCLUDE_DIR "")
  set(_androidlog_required AndroidLog_LIBRARY)
else()
  find_path(AndroidLog_INCLUDE_DIR android/log.h PATH_SUFFIXES android)
  find_library(AndroidLog_LIBRARY log PATH_SUFFIXES android)
  set(_androidlog_required AndroidLog_LIBRARY AndroidLog_INCLUDE_DIR)
endif()
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(AndroidLog REQUIRED_VARS ${_androidlog_required})
if(AndroidLog_FOUND AND NOT TARGET AndroidLog::AndroidLog)
  add_library(AndroidLog::AndroidLog UNKNOWN IMPORTED)
  set_target_properties(AndroidLog::AndroidLog PROPERTIES
    IMPORTED_LOCATION "${AndroidLog_LIBRARY}")
  if(AndroidLog_INCLUDE_DIR)
    set_target_properties(AndroidLog::AndroidLog PROPERTIES
      INTERFACE_INCLUDE_DIRECTORIES "${AndroidLog_INCLUDE_DIR}")
  endif()
endif()
