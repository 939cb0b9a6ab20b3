# Commit and build date for vorel_init's log line. The date is SOURCE_DATE_EPOCH or the last
# commit's, never the clock's, so that a build can be repeated.
find_package(Git QUIET)
set(VOREL_COMMIT_ID "unknown")
set(_epoch "$ENV{SOURCE_DATE_EPOCH}")
if(Git_FOUND)
  execute_process(COMMAND ${GIT_EXECUTABLE} rev-parse --short=12 HEAD
    WORKING_DIRECTORY ${CMAKE_SOURCE_DIR} OUTPUT_VARIABLE _commit OUTPUT_STRIP_TRAILING_WHITESPACE
    ERROR_QUIET RESULT_VARIABLE _failed)
  if(NOT _failed)
    set(VOREL_COMMIT_ID "${_commit}")
  endif()
  if(_epoch STREQUAL "")
    execute_process(COMMAND ${GIT_EXECUTABLE} log -1 --format=%ct
      WORKING_DIRECTORY ${CMAKE_SOURCE_DIR} OUTPUT_VARIABLE _epoch OUTPUT_STRIP_TRAILING_WHITESPACE
      ERROR_QUIET)
  endif()
endif()
if(_epoch STREQUAL "")
  set(_epoch 0)
endif()
set(_saved "$ENV{SOURCE_DATE_EPOCH}")
set(ENV{SOURCE_DATE_EPOCH} ${_epoch})
string(TIMESTAMP VOREL_BUILD_DATE "%Y-%m-%d" UTC)
if(_saved STREQUAL "")
  unset(ENV{SOURCE_DATE_EPOCH})
else()
  set(ENV{SOURCE_DATE_EPOCH} "${_saved}")
endif()
set(VOREL_BUILD_INFO VOREL_COMMIT_ID="${VOREL_COMMIT_ID}" VOREL_BUILD_DATE="${VOREL_BUILD_DATE}")
