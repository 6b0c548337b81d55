# vemra-revise.exe doctor under Wine in a prefix of its own: a clean setup of
# every driver family says nothing is wrong; then each family set up with one
# wrong setting, a stale and a live lock, a HARP.ini typo and an unregistered
# class, each named with its fix, while the doctor changes nothing.
#
#   cmake -DRUNNER=<tools/wine-run> -DEXE=<vemra-revise.exe> -DDIR=<work folder>
#         -DPREFIX=<prefix> -DREGISTER=<wine-prefix-setup|dll|...> -DBITS=<64|32>
#         -P RunDoctor.cmake
cmake_policy(SET CMP0007 NEW)  # the empty key suffix of pdfFactory 1
set(ENV{KESTRIVON_WINEPREFIX} "${PREFIX}")
set(ENV{WINEPREFIX} "${PREFIX}")
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
set(failures "")

# run(<exit status, or - for any> <program> <argument>...): out is its output;
# the macros below pass on no backslash of their own arguments.
function(run expected)
  execute_process(COMMAND "${RUNNER}" ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE out
                  ERROR_VARIABLE err)
  if(NOT "${expected}" STREQUAL "-" AND NOT status EQUAL "${expected}")
    string(APPEND failures "${ARGN}: exit status ${status}, expected ${expected}\n${err}")
  endif()
  set(out "${out}" PARENT_SCOPE)
  set(failures "${failures}" PARENT_SCOPE)
endfunction()
macro(setup family printer)
  run(0 "${EXE}" setup ${family} --name "${printer}" --output "${win}\\drivers\\${family}" ${ARGN})
endmacro()
macro(doctor expected)
  run(${expected} "${EXE}" doctor --print-world "${win}\\world.ini" --log "${DIR}/log" ${ARGN})
endmacro()
function(expect)
  foreach(text ${ARGN})
    string(FIND "${out}" "${text}" at)
    if(at EQUAL -1)
      string(APPEND failures "output lacks: ${text}\n")
    endif()
  endforeach()
  set(failures "${failures}" PARENT_SCOPE)
endfunction()
# What the doctor must leave alone: the drivers' keys, HARP.ini, the locks.
macro(snapshot result)
  set(${result} "")
  foreach(key "HKLM\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Print\\Printers"
              "HKCU\\Software\\FinePrint Software" "HKLM\\SOFTWARE\\Adobe")
    run(- reg query "${key}" /s)
    string(APPEND ${result} "${out}")
  endforeach()
  file(GLOB files "${locks}/*" "${DIR}/HARP.ini")
  foreach(file ${files})
    file(READ "${file}" content)
    file(TIMESTAMP "${file}" changed "%s")
    string(APPEND ${result} "${file} ${changed}\n${content}")
  endforeach()
endmacro()

# The newest pdfFactory is the one in force: none is left from a run before.
run(- reg delete "HKCU\\Software\\FinePrint Software" /f)
setup(adobe-pdf "Vemra Adobe PDF")
setup(distiller "Vemra Acrobat Distiller")
setup(pdfwriter "Acrobat PDFWriter")
setup(pdffactory4 "Vemra pdfFactory")
doctor(0)
expect("AdobePDF: usable" "AcrobatDistiller: usable" "PDFFactory: usable" "NoFile: usable"
       "(${BITS}-bit), ThreadingModel Apartment, TypeLib {7AF80810-"
       "VemraHARP: cannot archive, by design" "Nothing is wrong: 7 class(es) examined")
set(clean "${out}")

# Each pdfFactory version broken in turn (version|key suffix|setting|found|needed).
set(factory "HKEY_CURRENT_USER\\Software\\FinePrint Software\\pdfFactory")
set(data "\\FinePrinters\\Vemra pdfFactory\\PrinterDriverData : ")
run(- reg delete "HKCU\\Software\\FinePrint Software" /f)
foreach(case "1||ShowDlg|5|4" "2|2|PdfAction|1|0" "3|3|ShowDlg|3|2" "4|4|PdfAction|1|0")
  string(REGEX MATCH "(.)\\|(.?)\\|(.+)\\|(.)\\|(.)" case "${case}")
  set(line "${factory}${CMAKE_MATCH_2}${data}${CMAKE_MATCH_3} is '${CMAKE_MATCH_4}', needs ")
  string(APPEND line "${CMAKE_MATCH_5}")
  setup(pdffactory${CMAKE_MATCH_1} "Vemra pdfFactory" --wrong ${CMAKE_MATCH_3})
  doctor(1 --class PDFFactory)
  expect("wrong setting: ${line}")
endforeach()
setup(adobe-pdf "Vemra Adobe PDF" --wrong ViewPrintOutput)
setup(distiller "Vemra Acrobat Distiller" --wrong Distiller5)
run(0 reg delete "HKLM\\SOFTWARE\\Adobe\\Acrobat Distiller\\5.0" /f)
setup(pdfwriter "Acrobat PDFWriter" --wrong PDFFileName)
string(REPLACE "=.PDF" "=.PFD" harp "${harp}")
file(WRITE "${DIR}/HARP.ini" ${harp})
# A lock's age is its creation time, which Wine takes from the file's.
file(WRITE "${locks}/S-1.RLCK" "01.01.2026 00:00:00\r\nPC017\r\nold\r\n")
file(WRITE "${locks}/L-2.RLCK" "23.11.2026 08:00:00\r\nPC042\r\njdoe\r\n")
execute_process(COMMAND touch -d "2000 hours ago" "${locks}/S-1.RLCK")
execute_process(COMMAND touch -d "1 hour ago" "${locks}/L-2.RLCK")
foreach(key "VemraKestrivon.NoFile" "CLSID\\{EE6D0AEE-6E7F-49CA-A5D1-D3C01FA9FFD8}")
  run(0 reg delete "HKLM\\SOFTWARE\\Classes\\${key}" /f)
endforeach()

snapshot(before)
doctor(1)
set(broken "${out}")
string(REPLACE "/" "\\" folder "${win}\\drivers\\adobe-pdf")
expect("Printers\\Vemra Adobe PDF\\PrinterDriverData : ViewPrintOutput is '1', needs 0"
       "HKEY_LOCAL_MACHINE\\SOFTWARE\\Adobe\\Acrobat Distiller\\5.0 : (key) is '(missing)'"
       "${line}" "  stale  ${folder}\\S-1.RLCK  age 2000h" "  live  ${folder}\\L-2.RLCK  age 1h"
       "locks \"${folder}\" --remove-stale removes it"
       "a revision by 'jdoe' on 'PC042' holds it; once none runs there, delete it"
       "HARP.ini [Default] : RevisionExtension is '.PFD', needs .PDF or .TIF"
       "AcrobatWriter: cannot archive, by design" "NoFile: NOT usable"
       "ProgID VemraKestrivon.NoFile is not registered: register the component: regsvr32 \"Z:"
       " class(es), each named above with its fix.")
doctor(1 --json --class NoFile)
expect("\"registered\": false" "\"usable\": false")
snapshot(after)
if(NOT before STREQUAL after)
  string(APPEND failures "the doctor changed a setting or a lock:\n${before}---\n${after}\n")
endif()
run(0 "${EXE}" locks "${folder}" --remove-stale)
if(EXISTS "${locks}/S-1.RLCK" OR NOT EXISTS "${locks}/L-2.RLCK")
  string(APPEND failures "locks --remove-stale must remove the stale lock only:\n${out}\n")
endif()
execute_process(COMMAND ${register} OUTPUT_QUIET)  # NoFile back for the next run
file(STRINGS "${DIR}/log" boxes REGEX "\tMSGBOX\t")
execute_process(COMMAND wineserver -k ERROR_QUIET)  # the registry reaches disk
if(failures OR boxes)
  message(FATAL_ERROR "${failures}${boxes}\n--- clean setup\n${clean}--- broken setup\n${broken}")
endif()
message(STATUS "vemra-revise doctor, broken setup:\n${broken}")
