# A whole revision of one PDF class through vemra-revise.exe and the real
# DLL: the sample documents and their world, the family's driver set up in
# the prefix by `vemra-revise.exe setup`, the archive checked by qpdf.
#
#   cmake -DRUNNER=<tools/wine-run> -DEXE=<vemra-revise.exe> -DDIR=<work folder>
#         -DSAMPLES=<hostkit/samples> -DCLASS=<class> -DFAMILY=<family>
#         -DPRINTER=<printer> -DDOCUMENT=<name> -DPAGES=<pages>
#         -DPREFIX=<prefix> -DREGISTER=<wine-prefix-setup|dll|...>
#         [-DAPPEND=<sample file>] [-DWAITS=ON] [-DWRONG=<setting> -DSUMMARY=<CheckPrnSettings text>]
#         -P RunPdfRevision.cmake
include(${CMAKE_CURRENT_LIST_DIR}/PdfWorld.cmake)
set(failures "")

function(revise result)
  set(args ${CLASS} --folder "${win}\\rev" --name ${DOCUMENT} --document ${DOCUMENT}
           --print-world "${win}\\samples\\printworld.ini" --log "${DIR}/trace.log")
  if(DEFINED APPEND AND NOT WRONG_RUN)
    list(APPEND args --append "${win}\\samples\\${APPEND}")
  endif()
  execute_process(COMMAND "${RUNNER}" "${EXE}" ${args}
                  RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  set(${result}_status "${status}" PARENT_SCOPE)
  set(${result}_out "${out}" PARENT_SCOPE)
  set(${result}_err "${err}" PARENT_SCOPE)
endfunction()

function(expect text wanted)
  string(FIND "${text}" "${wanted}" at)
  if(at EQUAL -1)
    set(failures "${failures}output lacks: ${wanted}\n" PARENT_SCOPE)
  endif()
endfunction()

# A driver set up wrongly: the settings check names the setting.
if(DEFINED WRONG)
  setup_driver(${FAMILY} "${PRINTER}" --wrong ${WRONG})
  set(WRONG_RUN TRUE)
  revise(wrong)
  set(WRONG_RUN FALSE)
  expect("${wrong_out}" "CheckPrnSettings -> \"${SUMMARY}\"")
endif()

setup_driver(${FAMILY} "${PRINTER}")
revise(run)
file(GLOB archives "${DIR}/rev/${DOCUMENT}.*")
list(LENGTH archives count)
if(NOT run_status EQUAL 0)
  string(APPEND failures "exit status ${run_status}, expected 0\n")
endif()
expect("${run_out}" "DoPrint -> True")
expect("${run_out}" " bytes, ${PAGES} pages\n")
if(WAITS)  # the progress while DoPrint polls the printer
  expect("${run_err}" "waiting for ${PRINTER} to write ")
endif()
if(NOT count EQUAL 1)
  string(APPEND failures "the revision folder holds ${count} archives of ${DOCUMENT}\n")
else()
  execute_process(COMMAND qpdf --check ${archives} RESULT_VARIABLE checked OUTPUT_QUIET
                  ERROR_VARIABLE complaint)
  execute_process(COMMAND qpdf --show-npages ${archives} OUTPUT_VARIABLE pages
                  OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  if(NOT checked EQUAL 0)
    string(APPEND failures "qpdf --check ${archives}: ${complaint}\n")
  endif()
  if(NOT pages EQUAL PAGES)
    string(APPEND failures "the archive has ${pages} pages, expected ${PAGES}\n")
  endif()
endif()
execute_process(COMMAND wineserver -k ERROR_QUIET)  # the registry reaches disk
if(failures)
  file(READ "${DIR}/trace.log" log)
  message(FATAL_ERROR "${failures}--- wrong run\n${wrong_out}--- stdout\n${run_out}"
                      "--- stderr\n${run_err}--- trace log\n${log}")
endif()
message(STATUS "vemra-revise ${CLASS}: as expected\n${run_out}${run_err}")
