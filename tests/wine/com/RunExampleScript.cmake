# Runs an administrator's example script with cscript and checks what it
# printed: every regular expression of EXPECT must match a line of its
# output, and its exit code must be CODE.
#   cmake -DRUNNER=<emulator> -DCSCRIPT=<script host> -DSCRIPT=<Windows path>
#         -DEXPECT=<re;re> -DCODE=<n> -P RunExampleScript.cmake
execute_process(COMMAND ${RUNNER} ${CSCRIPT} //nologo ${SCRIPT}
                RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
message("${out}${err}")
foreach(expected IN LISTS EXPECT)
  if(NOT out MATCHES "${expected}")
    message(FATAL_ERROR "${SCRIPT} printed no line matching '${expected}'")
  endif()
endforeach()
if(NOT rc STREQUAL CODE)
  message(FATAL_ERROR "${SCRIPT} ended with '${rc}', expected ${CODE}")
endif()
