# AppendFile through VemraHostKit.dll when the archive cannot be replaced:
# the process killed right before the replacing step (the host kit's own
# kill), then a full revision folder (a small tmpfs, when root may mount
# one). The archive stays whole and unchanged each time; what the killed run
# left beside it is removed by the next append, which appends.
#
#   cmake -DRUNNER=<tools/wine-run> -DEXE=<vemra-revise.exe> -DDIR=<work folder>
#         -P RunReplaceSafety.cmake
file(REMOVE_RECURSE "${DIR}")
file(MAKE_DIRECTORY "${DIR}/rev" "${DIR}/full")
set(failures "")

function(make_pdf file pages)
  execute_process(COMMAND gs -q -dSAFER -dNOPAUSE -dBATCH -sDEVICE=pdfwrite
                          "-sOutputFile=${file}" -c "1 1 ${pages} { pop showpage } for"
                  RESULT_VARIABLE made)
  if(NOT made EQUAL 0)
    message(FATAL_ERROR "Ghostscript could not make ${file}")
  endif()
endfunction()

# One AppendFile of a fresh one-page PDF onto folder/K.PDF.
function(append folder)
  make_pdf("${DIR}/B.pdf" 1)
  string(REPLACE "/" "\\" windows "Z:${DIR}")
  string(REPLACE "/" "\\" target "Z:${folder}")
  execute_process(
    COMMAND "${RUNNER}" "${EXE}" AdobePDF --folder "${target}" --name K
            --append "${windows}\\B.pdf" --log "${DIR}/trace.log"
    RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  set(out "${out}" PARENT_SCOPE)
endfunction()

function(check_unchanged what folder)
  file(SHA256 "${folder}/K.PDF" now)
  if(NOT now STREQUAL before)
    set(failures "${failures}${what}: the archive changed\n" PARENT_SCOPE)
  endif()
endfunction()

function(beside_files folder into)
  file(GLOB found "${folder}/~*")
  list(LENGTH found count)
  set(${into} ${count} PARENT_SCOPE)
endfunction()

make_pdf("${DIR}/rev/K.PDF" 3)
file(SHA256 "${DIR}/rev/K.PDF" before)

set(ENV{VEMRA_KILL_BEFORE_REPLACE} "K.PDF")
append("${DIR}/rev")
unset(ENV{VEMRA_KILL_BEFORE_REPLACE})
check_unchanged("killed" "${DIR}/rev")
string(FIND "${out}" "AppendFile ->" answered)
beside_files("${DIR}/rev" left)
if(NOT answered EQUAL -1 OR NOT left EQUAL 1 OR NOT EXISTS "${DIR}/B.pdf")
  string(APPEND failures "killed: answered ${answered}, ${left} file(s) beside the archive\n${out}")
endif()

append("${DIR}/rev")
execute_process(COMMAND qpdf --show-npages "${DIR}/rev/K.PDF" OUTPUT_VARIABLE pages
                OUTPUT_STRIP_TRAILING_WHITESPACE)
execute_process(COMMAND qpdf --check "${DIR}/rev/K.PDF" RESULT_VARIABLE checked OUTPUT_QUIET)
beside_files("${DIR}/rev" left)
string(FIND "${out}" "AppendFile -> True" appended)
if(appended EQUAL -1 OR NOT pages EQUAL 4 OR NOT checked EQUAL 0 OR NOT left EQUAL 0)
  string(APPEND failures "the next append: ${pages} pages, qpdf ${checked}, ${left} beside\n${out}")
endif()

execute_process(COMMAND mount -t tmpfs -o size=64k tmpfs "${DIR}/full" RESULT_VARIABLE mounted
                OUTPUT_QUIET ERROR_QUIET)
if(mounted EQUAL 0)
  make_pdf("${DIR}/full/K.PDF" 3)
  file(SHA256 "${DIR}/full/K.PDF" before)
  execute_process(COMMAND dd if=/dev/zero "of=${DIR}/full/filler" bs=512 OUTPUT_QUIET ERROR_QUIET)
  append("${DIR}/full")
  check_unchanged("full" "${DIR}/full")
  beside_files("${DIR}/full" left)
  file(READ "${DIR}/trace.log" log)
  string(FIND "${log}" "overwrite\tfailed\tDisk full." named)
  string(FIND "${out}" "AppendFile -> False" refused)
  execute_process(COMMAND umount "${DIR}/full")
  if(refused EQUAL -1 OR named EQUAL -1 OR NOT left EQUAL 0)
    string(APPEND failures "full: ${left} beside, the log names the full disk: ${named}\n${out}")
  endif()
else()
  message(STATUS "no tmpfs mount here: the full revision folder is left out")
endif()

if(failures)
  message(FATAL_ERROR "${failures}")
endif()
message(STATUS "killed and full: the archive stayed whole")
