# Commit and build date for vorel_init's log line. The date is SOURCE_DATE_EPOCH or the last
# commit's, never the clock's, so that a build can be repeated. Outside a git checkout only
# SOURCE_DATE_EPOCH tells a date.
find_package(Git QUIET)
set(VOREL_COMMIT_ID "unknown")
set(VOREL_BUILD_DATE "unknown")
set(_epoch "$ENV{SOURCE_DATE_EPOCH}")

function(vorel_git result)
  execute_process(COMMAND ${GIT_EXECUTABLE} ${ARGN}
    WORKING_DIRECTORY ${CMAKE_SOURCE_DIR} OUTPUT_VARIABLE output OUTPUT_STRIP_TRAILING_WHITESPACE
    ERROR_QUIET RESULT_VARIABLE failed)
  if(failed)
    set(output "")
  endif()
  set(${result} "${output}" PARENT_SCOPE)
endfunction()

# A tree that only lies inside somebody else's checkout has no commit of its own.
if(Git_FOUND AND EXISTS ${CMAKE_SOURCE_DIR}/.git)
  vorel_git(_commit rev-parse --short=12 HEAD)
  if(_commit)
    set(VOREL_COMMIT_ID "${_commit}")
    if(_epoch STREQUAL "")
      vorel_git(_epoch log -1 --format=%ct)
    endif()
    # Configured again when HEAD moves.
    vorel_git(_head_log rev-parse --git-path logs/HEAD)
    get_filename_component(_head_log "${_head_log}" ABSOLUTE BASE_DIR ${CMAKE_SOURCE_DIR})
    if(EXISTS "${_head_log}")
      set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${_head_log}")
    endif()
  endif()
endif()

if(NOT _epoch STREQUAL "")
  # string(TIMESTAMP) formats the time that this variable names.
  set(_saved "$ENV{SOURCE_DATE_EPOCH}")
  set(ENV{SOURCE_DATE_EPOCH} ${_epoch})
  string(TIMESTAMP VOREL_BUILD_DATE "%Y-%m-%d" UTC)
  string(TIMESTAMP VOREL_BUILD_TIME "%a, %d %b %Y %H:%M:%S +0000" UTC)
  set(ENV{SOURCE_DATE_EPOCH} "${_saved}")
endif()
set(VOREL_BUILD_INFO
  "VOREL_COMMIT_ID=\"${VOREL_COMMIT_ID}\";VOREL_BUILD_DATE=\"${VOREL_BUILD_DATE}\"")
