# Runs one demo scenario without a terminal and checks its output.
#   DEMO      scripts/demo.sh
#   BUILT     the build directory to run from
#   SCENARIO  the scenario's name
#   EXPECT    a file of regular expressions, one a line, each of which the standard output
#             must match; a line starting with "!" is one it must not match; "#" comments
# The run fails on a status other than 0, on anything the demo reports as a problem, and on
# any CheckJNI warning.
execute_process(
  COMMAND bash ${DEMO} --built ${BUILT} --auto --time-scale 0 --timeout 60 --scenario ${SCENARIO}
  INPUT_FILE /dev/null
  OUTPUT_VARIABLE out
  ERROR_VARIABLE err
  RESULT_VARIABLE status
  TIMEOUT 170)
message("${out}")
if(NOT err STREQUAL "")
  message("stderr:\n${err}")
endif()
set(failures "")
if(NOT status EQUAL 0)
  string(APPEND failures "exit status ${status}\n")
endif()
if(err MATCHES "demo: |WARNING in native method|WARNING: JNI local refs"
   OR out MATCHES "WARNING in native method|WARNING: JNI local refs")
  string(APPEND failures "the demo reported a problem or the JVM a CheckJNI warning\n")
endif()
file(STRINGS ${EXPECT} expectations)
foreach(line IN LISTS expectations)
  if(line MATCHES "^#" OR line STREQUAL "")
    continue()
  endif()
  if(line MATCHES "^!(.*)$")
    set(absent "${CMAKE_MATCH_1}")
    if(out MATCHES "${absent}")
      string(APPEND failures "printed what it must not: ${absent}\n")
    endif()
  elseif(NOT out MATCHES "${line}")
    string(APPEND failures "did not print: ${line}\n")
  endif()
endforeach()
if(failures)
  message(FATAL_ERROR "demo ${SCENARIO}:\n${failures}")
endif()
