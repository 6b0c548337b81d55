# vemra-revise.exe VemraHARP under Wine with HARP.ini in the host kit's
# configuration directory: the configured extension, the settings summary,
# and a real TIFF appended to the archive through the host kit's TIFF merge.
#
#   cmake -DRUNNER=<tools/wine-run> -DEXE=<vemra-revise.exe> -DDIR=<work folder>
#         -P RunHarpRevise.cmake
file(REMOVE_RECURSE "${DIR}")
file(MAKE_DIRECTORY "${DIR}/rev")
file(WRITE "${DIR}/HARP.ini"
     "[Default]\r\nPrinterName=HARP PS\r\nRevisionExtension=.TIF\r\nConvertCommand=gs\r\n"
     "[ConvertCommand Parameters]\r\nDevice=tiffg4\r\n")
# The archive has one page, the scan two; Ghostscript makes both.
foreach(file_pages "A-100.TIF;1" "scan.tif;2")
  list(GET file_pages 0 name)
  list(GET file_pages 1 pages)
  file(WRITE "${DIR}/page.ps" "%!PS\n1 1 ${pages} { pop showpage } for\n")
  execute_process(COMMAND gs -q -dSAFER -dNOPAUSE -dBATCH -r20 -sDEVICE=tiffg4
                          "-sOutputFile=${DIR}/rev/${name}" "${DIR}/page.ps"
                  RESULT_VARIABLE made)
  if(NOT made EQUAL 0)
    message(FATAL_ERROR "Ghostscript could not make ${name}")
  endif()
endforeach()

string(REPLACE "/" "\\" windows "Z:${DIR}")
set(ENV{VEMRA_CONFIG_DIRECTORY} "${windows}")
execute_process(
  COMMAND "${RUNNER}" "${EXE}" VemraHARP --folder "${windows}\\rev" --name A-100
          --append "${windows}\\rev\\scan.tif" --log "${DIR}/trace.log"
  RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
execute_process(COMMAND tiffinfo "${DIR}/rev/A-100.TIF" OUTPUT_VARIABLE info ERROR_QUIET)
string(REGEX MATCHALL "TIFF Directory" directories "${info}")
list(LENGTH directories pages)
file(READ "${DIR}/trace.log" log)

set(failures "")
if(NOT status EQUAL 1)  # DoPrint refuses
  string(APPEND failures "exit status ${status}, expected 1\n")
endif()
foreach(part "Extension -> \".TIF\"" "CheckPrnSettings -> \"Printer is not installed\""
             "DoPrint -> False" "AppendFile -> True")
  string(FIND "${out}" "${part}" at)
  if(at EQUAL -1)
    string(APPEND failures "stdout lacks: ${part}\n")
  endif()
endforeach()
foreach(part "SOURCE\tPrinter\t8\t42\tVemraKestrivon::HARPConfiguration::LoadSettingsFromIniFile(): Reading ini-file..."
             "TIFFMERGE\t")
  string(FIND "${log}" "${part}" at)
  if(at EQUAL -1)
    string(APPEND failures "trace log lacks: ${part}\n")
  endif()
endforeach()
if(NOT pages EQUAL 3)
  string(APPEND failures "the archive has ${pages} pages, expected 3\n")
endif()
if(failures)
  message(FATAL_ERROR "${failures}--- stdout\n${out}--- stderr\n${err}--- trace log\n${log}")
endif()
message(STATUS "vemra-revise VemraHARP: as expected\n${out}")
