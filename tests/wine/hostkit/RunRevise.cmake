# Runs vemra-revise.exe once under Wine and checks what it did.
#
#   cmake -DRUNNER=<tools/wine-run> -DEXE=<vemra-revise.exe> -DLOG=<trace log>
#         -DARGS=<a|b|...> [-DWINEDEBUG=...] -DEXIT=<status>
#         [-DOUT_HAS=<text|...>] [-DERR_HAS=...] [-DERR_LACKS=...]
#         [-DLOG_HAS=...] [-DLOG_LACKS=...] -P RunRevise.cmake
#
# Texts are plain substrings, separated by "|". The log is removed first, so
# that only this run's entries are looked at; --log <LOG> is passed along.
string(REPLACE "|" ";" args "${ARGS}")
file(REMOVE "${LOG}")
if(DEFINED WINEDEBUG)
  set(ENV{WINEDEBUG} "${WINEDEBUG}")
endif()
execute_process(
  COMMAND "${RUNNER}" "${EXE}" ${args} --log "${LOG}"
  RESULT_VARIABLE status
  OUTPUT_VARIABLE out
  ERROR_VARIABLE err)

set(log "")
if(EXISTS "${LOG}")
  file(READ "${LOG}" log)
endif()

set(failures "")
if(NOT status STREQUAL EXIT)
  string(APPEND failures "exit status ${status}, expected ${EXIT}\n")
endif()

# check(<has|lacks> <what> <text> <substrings separated by "|">)
function(check mode what text wanted)
  string(REPLACE "|" ";" parts "${wanted}")
  set(found "")
  foreach(part IN LISTS parts)
    string(FIND "${text}" "${part}" at)
    if(mode STREQUAL "has" AND at EQUAL -1)
      string(APPEND found "${what} lacks: ${part}\n")
    elseif(mode STREQUAL "lacks" AND NOT at EQUAL -1)
      string(APPEND found "${what} holds: ${part}\n")
    endif()
  endforeach()
  set(failures "${failures}${found}" PARENT_SCOPE)
endfunction()

check(has "stdout" "${out}" "${OUT_HAS}")
check(has "stderr" "${err}" "${ERR_HAS}")
check(has "trace log" "${log}" "${LOG_HAS}")
check(lacks "stderr" "${err}" "${ERR_LACKS}")
check(lacks "trace log" "${log}" "${LOG_LACKS}")

if(failures)
  message(FATAL_ERROR "vemra-revise ${ARGS}\n${failures}--- stdout\n${out}--- stderr\n${err}--- trace log\n${log}")
endif()
message(STATUS "vemra-revise ${ARGS}: as expected\n${out}")
