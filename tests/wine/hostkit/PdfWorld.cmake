# The sample documents and their print world in DIR, for whole revisions of
# the PDF classes in a prefix of their own (PREFIX), where REGISTER
# (wine-prefix-setup|DLL|DLL) registers the DLLs first. Sets win, the
# Windows name of DIR, and defines setup_driver().
set(ENV{KESTRIVON_WINEPREFIX} "${PREFIX}")
set(ENV{WINEPREFIX} "${PREFIX}")
string(REPLACE "|" ";" register "${REGISTER}")
list(POP_FRONT register setup_prefix)
execute_process(COMMAND "${setup_prefix}" "${PREFIX}" ${register} RESULT_VARIABLE registered
                OUTPUT_QUIET ERROR_VARIABLE register_err)
if(NOT registered EQUAL 0)
  message(FATAL_ERROR "registering in ${PREFIX} failed: ${register_err}")
endif()
file(REMOVE_RECURSE "${DIR}")
execute_process(COMMAND "${SAMPLES}/make-samples" "${DIR}/samples" RESULT_VARIABLE made)
if(NOT made EQUAL 0)
  message(FATAL_ERROR "make-samples failed")
endif()
file(MAKE_DIRECTORY "${DIR}/rev")  # the host makes the revision folder
string(REPLACE "/" "\\" win "Z:${DIR}")

# setup_driver(<family> <printer> [--wrong <setting>]...): the family's
# driver in the prefix, writing into drivers/<family>.
function(setup_driver family printer)
  execute_process(COMMAND "${RUNNER}" "${EXE}" setup ${family} --name "${printer}"
                          --output "${win}\\drivers\\${family}" ${ARGN}
                  RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "setup ${family} ${ARGN}: exit ${status}\n${out}${err}")
  endif()
endfunction()
