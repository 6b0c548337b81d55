# vemra-revise.exe doctor under Wine in a prefix of its own: a clean setup of
# every driver family says nothing is wrong; then each family set up with one
# wrong setting, a stale and a live lock, a HARP.ini typo and an unregistered
# class, each named with its fix, while the doctor changes nothing.
#
#   cmake -DRUNNER=<tools/wine-run> -DEXE=<vemra-revise.exe> -DDIR=<work folder>
#         -DPREFIX=<prefix> -DREGISTER=<wine-prefix-setup|dll|...> -DBITS=<64|32>
#         -P RunDoctor.cmake
set(ENV{KESTRIVON_WINEPREFIX} "${PREFIX}")
string(REPLACE "|" ";" register "${REGISTER}")
list(INSERT register 1 "${PREFIX}")
execute_process(COMMAND ${register} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE_RECURSE "${DIR}")
file(MAKE_DIRECTORY "${DIR}/harp")
string(REPLACE "/" "\\" win "Z:${DIR}")
set(ENV{VEMRA_CONFIG_DIRECTORY} "${win}")
file(WRITE "${DIR}/world.ini" "[Printer Vemra Tiff]\n[Printer HARP PS]\n[Printer Vemra Adobe PDF]\n"
     "[Printer Vemra Acrobat Distiller]\n[Printer Acrobat PDFWriter]\n[Printer Vemra pdfFactory]\n")
set(harp "[Default]\r\nPrinterName=HARP PS\r\nPrinterRedirection=${win}\\harp\\out.PS\r\n"
         "RevisionExtension=.PDF\r\nConvertCommand=gs\r\n[ConvertCommand Parameters]\r\nDevice=x\r\n")
file(WRITE "${DIR}/HARP.ini" ${harp})
set(locks "${DIR}/drivers/adobe-pdf")

# run(<exit status, or - for any> <program> <argument>... [EXPECT <text>...]):
# out is its output, which must hold each text. (A function: a macro would
# read the backslashes of the texts again.)
function(run expected)
  cmake_parse_arguments(R "" "" "EXPECT" ${ARGN})
  execute_process(COMMAND "${RUNNER}" ${R_UNPARSED_ARGUMENTS} RESULT_VARIABLE status
                  OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT "${expected}" STREQUAL "-" AND NOT status EQUAL "${expected}")
    string(APPEND failures "${ARGN}: exit status ${status}, expected ${expected}\n${err}")
  endif()
  foreach(text ${R_EXPECT})
    string(FIND "${out}" "${text}" at)
    if(at EQUAL -1)
      string(APPEND failures "output lacks: ${text}\n")
    endif()
  endforeach()
  set(out "${out}" PARENT_SCOPE)
  set(failures "${failures}" PARENT_SCOPE)
endfunction()
macro(setup family printer)
  run(0 "${EXE}" setup ${family} --name "${printer}" --output "${win}\\drivers\\${family}" ${ARGN})
endmacro()
set(doctor "${EXE}" doctor --print-world "${win}\\world.ini" --log "${DIR}/log")
# What the doctor must leave alone: the drivers' keys, HARP.ini, the locks.
macro(snapshot result)
  execute_process(COMMAND ls -l --full-time "${locks}" "${DIR}/HARP.ini" OUTPUT_VARIABLE ${result})
  foreach(key "HKLM\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Print\\Printers"
              "HKCU\\Software\\FinePrint Software" "HKLM\\SOFTWARE\\Adobe")
    run(- reg query "${key}" /s /reg:${BITS})
    string(APPEND ${result} "${out}")
  endforeach()
endmacro()

# The newest pdfFactory is the one in force: none is left from a run before.
run(- reg delete "HKCU\\Software\\FinePrint Software" /f)
setup(adobe-pdf "Vemra Adobe PDF")
setup(distiller "Vemra Acrobat Distiller")
setup(pdfwriter "Acrobat PDFWriter")
setup(pdffactory4 "Vemra pdfFactory")
run(0 ${doctor} EXPECT "AdobePDF: usable" "AcrobatDistiller: usable" "PDFFactory: usable"
       "NoFile: usable" "(${BITS}-bit), ThreadingModel Apartment, TypeLib {7AF80810-"
       "VemraHARP: cannot archive, by design" "Nothing is wrong: 7 class(es) examined")
# With no options the doctor sees what a revision on this machine sees: the
# printers the setups added to the prefix's spooler.
run(0 "${EXE}" doctor --class AdobePDF --class acrobatdistiller --class PDFFactory
       --log "${DIR}/log"
       EXPECT "AdobePDF: usable" "AcrobatDistiller: usable" "PDFFactory: usable")

# Each pdfFactory version broken in turn (version|key suffix|setting|found|needed).
run(- reg delete "HKCU\\Software\\FinePrint Software" /f)
foreach(case "1||ShowDlg|5|4" "2|2|PdfAction|1|0" "3|3|ShowDlg|3|2" "4|4|PdfAction|1|0")
  string(REGEX MATCH "(.)\\|(.?)\\|(.+)\\|(.)\\|(.)" case "${case}")
  string(CONCAT line "FinePrint Software\\pdfFactory${CMAKE_MATCH_2}\\FinePrinters\\Vemra pdfFactory"
         "\\PrinterDriverData : ${CMAKE_MATCH_3} is '${CMAKE_MATCH_4}', needs ${CMAKE_MATCH_5}")
  setup(pdffactory${CMAKE_MATCH_1} "Vemra pdfFactory" --wrong ${CMAKE_MATCH_3})
  run(1 ${doctor} --class PDFFactory EXPECT "${line}")
endforeach()
setup(adobe-pdf "Vemra Adobe PDF" --wrong ViewPrintOutput)
setup(distiller "Vemra Acrobat Distiller" --wrong Distiller5)
# Gone from both views: Wine's wow64 keeps a 32-bit host's key in either.
foreach(view 32 64)
  run(- reg delete "HKLM\\SOFTWARE\\Adobe\\Acrobat Distiller\\5.0" /f /reg:${view})
endforeach()
setup(pdfwriter "Acrobat PDFWriter" --wrong PDFFileName)
string(REPLACE "=.PDF" "=.PFD" harp "${harp}")
file(WRITE "${DIR}/HARP.ini" ${harp})
# A lock's age is its creation time, which Wine takes from the file's.
file(WRITE "${locks}/S-1.RLCK" "01.01.2026 00:00:00\r\nPC017\r\nold\r\n")
file(WRITE "${locks}/L-2.RLCK" "23.11.2026 08:00:00\r\nPC042\r\njdoe\r\n")
execute_process(COMMAND touch -d "2000 hours ago" "${locks}/S-1.RLCK")
execute_process(COMMAND touch -d "1 hour ago" "${locks}/L-2.RLCK")
run(0 reg delete "HKLM\\SOFTWARE\\Classes\\VemraKestrivon.NoFile" /f)  # its ProgID

snapshot(before)
set(folder "${win}\\drivers\\adobe-pdf")
run(1 ${doctor} EXPECT "Printers\\Vemra Adobe PDF\\PrinterDriverData : ViewPrintOutput is '1', needs 0"
       "HKEY_LOCAL_MACHINE\\SOFTWARE\\Adobe\\Acrobat Distiller\\5.0 : (key) is '(missing)'"
       "${line}" "  stale  ${folder}\\S-1.RLCK  age 2000h" "  live  ${folder}\\L-2.RLCK  age 1h"
       "locks \"${folder}\" --remove-stale removes it"
       "a revision by 'jdoe' on 'PC042' holds it; once none runs there, delete it"
       "HARP.ini [Default] : RevisionExtension is '.PFD', needs .PDF or .TIF"
       "AcrobatWriter: cannot archive, by design" "Acrobat PDFWriter PDFFileName: no file named in"
       "NoFile: NOT usable" "driver: pdfFactory 4, the newest"
       "ProgID VemraKestrivon.NoFile is not registered: register the component: regsvr32 \"Z:"
       " class(es), each named above with its fix.")
set(broken "${out}")
snapshot(after)
if(NOT before STREQUAL after)
  string(APPEND failures "the doctor changed a setting or a lock:\n${before}---\n${after}\n")
endif()
# The stale lock goes, the live one stays.
run(0 "${EXE}" locks "${folder}" --remove-stale
    EXPECT "01.01.2026 00:00:00\n    removed\n" "08:00:00\n    fix: a revision by 'jdoe'")
execute_process(COMMAND ${register} OUTPUT_QUIET)  # NoFile back for the next run
file(STRINGS "${DIR}/log" boxes REGEX "\tMSGBOX\t")
if(failures OR boxes)
  message(FATAL_ERROR "${failures}${boxes}\n--- broken setup\n${broken}")
endif()
message(STATUS "vemra-revise doctor, broken setup:\n${broken}")
