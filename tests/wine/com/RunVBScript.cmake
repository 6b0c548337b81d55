# Runs a VBScript with cscript (under Wine when cross-building) and passes
# when it ends with exit code 77.
#   cmake -DRUNNER=<emulator> [-DCSCRIPT=<script host>] -DSCRIPT=<Windows path>
#         [-DARGS=<a;b>] -P RunVBScript.cmake
if(NOT CSCRIPT)
  set(CSCRIPT cscript)
endif()
execute_process(
  COMMAND ${RUNNER} ${CSCRIPT} //nologo ${SCRIPT} ${ARGS}
  RESULT_VARIABLE rc
  OUTPUT_VARIABLE out
  ERROR_VARIABLE err)
message("${out}${err}")
if(NOT rc EQUAL 77)
  message(FATAL_ERROR "${SCRIPT} ended with '${rc}'; 77 means that every check held")
endif()
