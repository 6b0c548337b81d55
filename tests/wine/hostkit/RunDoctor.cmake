# vemra-revise.exe doctor under Wine in a prefix of its own: a clean setup of
# every driver family says nothing is wrong; then each family set up with one
# wrong setting, a stale and a live lock, a HARP.ini typo and an unregistered
# class, each named with its fix, while the doctor changes nothing.
#
#   cmake -DRUNNER=<tools/wine-run> -DEXE=<vemra-revise.exe> -DDIR=<work folder>
#         -DPREFIX=<prefix> -DREGISTER=<wine-prefix-setup|dll|...> -DBITS=<64|32>
#         -P RunDoctor.cmake
cmake_policy(SET CMP0007 NEW)  # an empty suffix in the case table
set(ENV{KESTRIVON_WINEPREFIX} "${PREFIX}")
set(ENV{WINEPREFIX} "${PREFIX}")
string(REPLACE "|" ";" register "${REGISTER}")
function(register)
  execute_process(COMMAND ${register} RESULT_VARIABLE status OUTPUT_QUIET ERROR_VARIABLE err)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "registering in ${PREFIX} failed: ${err}")
  endif()
endfunction()
list(INSERT register 1 "${PREFIX}")
register()
file(REMOVE_RECURSE "${DIR}")
string(REPLACE "/" "\\" win "Z:${DIR}")
set(ENV{VEMRA_CONFIG_DIRECTORY} "${win}")
set(locks "${DIR}/drivers/adobe-pdf")
set(world "[World]\nUIPolicy = silent\n[Printer Vemra Tiff]\n[Printer HARP PS]\n")
# family|printer the class looks for
set(families "adobe-pdf|Vemra Adobe PDF" "distiller|Vemra Acrobat Distiller"
             "pdfwriter|Acrobat PDFWriter" "pdffactory4|Vemra pdfFactory")
foreach(entry ${families})
  string(REPLACE "|" ";" entry "${entry}")
  list(GET entry 1 printer)
  string(APPEND world "[Printer ${printer}]\n")
endforeach()
file(WRITE "${DIR}/world.ini" "${world}")
function(harp extension)
  file(WRITE "${DIR}/HARP.ini"
       "[Default]\r\nPrinterName=HARP PS\r\nPrinterRedirection=${win}\\harp\\out.PS\r\n"
       "RevisionExtension=${extension}\r\nConvertCommand=gs\r\n"
       "[ConvertCommand Parameters]\r\nDevice=pdfwrite\r\n")
endfunction()
harp(.PDF)
file(MAKE_DIRECTORY "${DIR}/harp")

set(failures "")
function(wine)
  execute_process(COMMAND "${RUNNER}" ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE out
                  ERROR_VARIABLE err)
  set(status "${status}" PARENT_SCOPE)
  set(out "${out}" PARENT_SCOPE)
  set(err "${err}" PARENT_SCOPE)
endfunction()
function(setup family printer)
  wine("${EXE}" setup ${family} --name "${printer}" --output "${win}\\drivers\\${family}" ${ARGN})
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "setup ${family} ${ARGN}: exit ${status}\n${out}${err}")
  endif()
endfunction()
function(doctor expected)
  wine("${EXE}" doctor --print-world "${win}\\world.ini" --log "${DIR}/trace.log" ${ARGN})
  if(NOT status EQUAL expected)
    string(APPEND failures "doctor ${ARGN}: exit status ${status}, expected ${expected}\n${err}")
  endif()
  set(out "${out}" PARENT_SCOPE)
  set(failures "${failures}" PARENT_SCOPE)
endfunction()
function(expect)
  foreach(text ${ARGN})
    string(FIND "${out}" "${text}" at)
    if(at EQUAL -1)
      string(APPEND failures "output lacks: ${text}\n")
    endif()
  endforeach()
  set(failures "${failures}" PARENT_SCOPE)
endfunction()
# What the doctor must leave alone: the drivers' keys, the registration,
# HARP.ini and the locks (content and age).
function(snapshot result)
  set(all "")
  foreach(key "HKLM\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Print\\Printers"
              "HKCU\\Software\\FinePrint Software" "HKLM\\SOFTWARE\\Adobe"
              "HKCR\\VemraKestrivon.NoFile")
    wine(reg query "${key}" /s)
    string(APPEND all "${out}")
  endforeach()
  file(GLOB files "${locks}/*" "${DIR}/HARP.ini")
  foreach(file ${files})
    file(READ "${file}" content)
    file(TIMESTAMP "${file}" changed "%s")
    string(APPEND all "${file} ${changed}\n${content}")
  endforeach()
  set(${result} "${all}" PARENT_SCOPE)
endfunction()

# Left from an earlier run: the newest pdfFactory is the one in force, and
# the broken setup removes the Distiller 5.0 key.
wine(reg delete "HKCU\\Software\\FinePrint Software" /f)

# A clean setup.
foreach(entry ${families})
  string(REPLACE "|" ";" entry "${entry}")
  setup(${entry})
endforeach()
doctor(0)
expect("VemraKestrivon.AdobePDF: usable" "VemraKestrivon.AcrobatDistiller: usable"
       "VemraKestrivon.PDFFactory: usable" "VemraKestrivon.NoFile: usable"
       "(${BITS}-bit), ThreadingModel Apartment, TypeLib {7AF80810-"
       "VemraKestrivon.VemraHARP: cannot archive, by design"
       "Nothing is wrong: 7 class(es) examined")
set(clean "${out}")

# Each pdfFactory version broken in turn: the class reads the newest.
set(factory "HKEY_CURRENT_USER\\Software\\FinePrint Software\\pdfFactory")
set(data "\\FinePrinters\\Vemra pdfFactory\\PrinterDriverData : ")
wine(reg delete "HKCU\\Software\\FinePrint Software" /f)
foreach(case "1||ShowDlg|5|4" "2|2|PdfAction|1|0" "3|3|ShowDlg|3|2" "4|4|PdfAction|1|0")
  string(REPLACE "|" ";" case "${case}")
  list(GET case 0 version)
  list(GET case 1 suffix)
  list(GET case 2 setting)
  list(GET case 3 found)
  list(GET case 4 needed)
  setup(pdffactory${version} "Vemra pdfFactory" --wrong ${setting})
  doctor(1 --class PDFFactory)
  expect("wrong setting: ${factory}${suffix}${data}${setting} is '${found}', needs ${needed}")
endforeach()
set(adobe "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Print\\Printers")
setup(adobe-pdf "Vemra Adobe PDF" --wrong ViewPrintOutput)
setup(distiller "Vemra Acrobat Distiller" --wrong Distiller5)
wine(reg delete "HKLM\\SOFTWARE\\Adobe\\Acrobat Distiller\\5.0" /f)
setup(pdfwriter "Acrobat PDFWriter" --wrong PDFFileName)
harp(.PFD)
# Locks are aged by their creation time, which Wine takes from the file's.
file(WRITE "${locks}/S-1.RLCK" "01.01.2026 00:00:00\r\nPC017\r\nold\r\n")
file(WRITE "${locks}/L-2.RLCK" "23.11.2026 08:00:00\r\nPC042\r\njdoe\r\n")
execute_process(COMMAND touch -d "2000 hours ago" "${locks}/S-1.RLCK")
execute_process(COMMAND touch -d "1 hour ago" "${locks}/L-2.RLCK")
foreach(key "VemraKestrivon.NoFile" "CLSID\\{EE6D0AEE-6E7F-49CA-A5D1-D3C01FA9FFD8}")
  wine(reg delete "HKLM\\SOFTWARE\\Classes\\${key}" /f)
endforeach()

snapshot(before)
doctor(1)
set(broken "${out}")
string(REPLACE "/" "\\" lock_folder "${win}\\drivers\\adobe-pdf")
expect("wrong setting: ${adobe}\\Vemra Adobe PDF\\PrinterDriverData : ViewPrintOutput is '1', needs 0"
       "wrong setting: HKEY_LOCAL_MACHINE\\SOFTWARE\\Adobe\\Acrobat Distiller\\5.0 : (key) is '(missing)'"
       "wrong setting: ${factory}4${data}PdfAction is '1', needs 0"
       "  stale  ${lock_folder}\\S-1.RLCK  age 2000h"
       "  live  ${lock_folder}\\L-2.RLCK  age 1h"
       "locks \"${lock_folder}\" --remove-stale removes it"
       "a revision by 'jdoe' on 'PC042' holds it; once none runs there, delete it"
       "HARP.ini [Default] : RevisionExtension is '.PFD', needs .PDF or .TIF"
       "VemraKestrivon.NoFile: NOT usable"
       "ProgID VemraKestrivon.NoFile is not registered: register the component: regsvr32 \"Z:"
       "VemraKestrivon.AcrobatWriter: cannot archive, by design"
       " class(es), each named above with its fix.")
doctor(1 --json --class NoFile)
expect("\"registered\": false" "\"usable\": false")
snapshot(after)
if(NOT before STREQUAL after)
  string(APPEND failures "the doctor changed a setting or a lock:\n${before}\n---\n${after}\n")
endif()
wine("${EXE}" locks "${lock_folder}" --remove-stale)
if(EXISTS "${locks}/S-1.RLCK" OR NOT EXISTS "${locks}/L-2.RLCK")
  string(APPEND failures "locks --remove-stale must remove the stale lock only:\n${out}\n")
endif()
register()  # NoFile back for the other runs
file(READ "${DIR}/trace.log" log)
string(FIND "${log}" "\tMSGBOX\t" box)
if(NOT box EQUAL -1)
  string(APPEND failures "the doctor asked for a message box\n")
endif()
execute_process(COMMAND wineserver -k ERROR_QUIET)  # the registry reaches disk
if(failures)
  message(FATAL_ERROR "${failures}--- clean setup\n${clean}--- broken setup\n${broken}")
endif()
message(STATUS "vemra-revise doctor, broken setup:\n${broken}")
