# Host calls of VemraHostKit.dll failed on purpose (VEMRA_FAULTS) through
# whole revisions in vemra-revise.exe: each run must end normally with its
# failure value, the struck fault and the procedure's report in the trace
# log, no lock of the run left in a driver's folder, no half-written archive
# in the revision folder, and an existing archive untouched by a failing
# AppendFile. Variables as for RunPdfRevision.cmake, without the class's.
cmake_minimum_required(VERSION 3.21)  # empty fields of the table stay
include(${CMAKE_CURRENT_LIST_DIR}/PdfWorld.cmake)
setup_driver(adobe-pdf "Vemra Adobe PDF")
setup_driver(pdfwriter "Acrobat PDFWriter")
file(MAKE_DIRECTORY "${DIR}/kept")
file(WRITE "${DIR}/HARP.ini"
     "[Default]\r\nPrinterName=HARP PS\r\nRevisionExtension=.TIF\r\nConvertCommand=gs\r\n"
     "[ConvertCommand Parameters]\r\nDevice=tiffg4\r\n")
set(ENV{VEMRA_CONFIG_DIRECTORY} "${win}")
execute_process(COMMAND gs -q -dSAFER -dNOPAUSE -dBATCH -r20 -sDEVICE=tiffg4
                        "-sOutputFile=${DIR}/samples/scan.tif" "${SAMPLES}/D-200.ps")

# class | document | faults | file appended onto an existing archive
#   | exit status | output texts | trace log texts (texts separated by ^)
set(cases
  "AdobePDF|T-100|DocFctDist.Printdirect:1:0x80004005||1|DoPrint -> False|VemraKestrivon::Globals\tIRevisioPrinterDoPrint^.RLCK') deleted"
  "AdobePDF|T-100|IPrinter.CurrentStatus:3:0x800706BA||1|DoPrint -> False|VemraKestrivon::Globals\tFunction GetAdobeRevisionFile^.RLCK') deleted"
  "AdobePDF|T-100|Owner.CurrentUser:1:null||0|DoPrint -> True|Kestrivon::DocumentLock\tPublic Sub WriteLock^.RLCK') deleted"
  "AdobePDF|T-100|VemraObject.DocumentName:1:0x80004005||1|DoPrint -> False|Kestrivon::DocumentLock\tPrivate Function LockFileName"
  "AdobePDF|T-100|PdfMerge.Merge:1:0x80004005|D-200.pdf|1|DoPrint -> True^AppendFile -> False|VemraKestrivon::Globals\tFunction MergePDFFiles()"
  "AdobePDF|T-100|New.PdfMerge:1:0x80040154|D-200.pdf|1|AppendFile -> False|429\tActiveX component can't create object\tVemraKestrivon\tVemraKestrivon::Globals\tFunction MergePDFFiles()"
  "AdobePDF|T-100|PrinterManager.GetPrinter:1:null||0|InitPrnSettings -> False^DoPrint -> True|SetFilePrinterByName(Vemra Adobe PDF): printer does not exist"
  "AdobePDF|T-100|DocFctDist.Printdirect:1:0x80004005^TraceService.LogError:1:0x8007001D||1|DoPrint -> False|LogError failed (planned fault)\tVemraHostKit\tVemraKestrivon::AdobePDF\tFunction IRevisionPrinter_DoPrint^.RLCK') deleted"
  "AcrobatWriter|V-400|FileHelper.FetchFile:1:0x80070005||1|DoPrint -> False|VemraKestrivon::Globals\tCheckAndCopyPDF"
  "AcrobatWriter|V-400|TraceService.CopyFile:1:0x80070070||1|DoPrint -> False|VemraKestrivon::Globals\tCheckAndCopyPDF"
  "VemraHARP||Workset.Globals:1:null||1|DoPrint -> False|VemraKestrivon::HARPConfiguration\tPrivate Sub Class_Initialize"
  "VemraHARP||TiffMerge.Merge:1:0x80004005|scan.tif|1|AppendFile -> False|VemraKestrivon::VemraHARP\tFunction GenericMergeTiffFiles("
)

set(failures "")
set(n 0)
foreach(case IN LISTS cases)
  math(EXPR n "${n} + 1")
  string(REPLACE "|" ";" case "${case}")
  list(GET case 0 class)
  list(GET case 1 document)
  list(GET case 2 faults)
  list(GET case 3 appended)
  list(GET case 4 exit)
  list(GET case 5 says)
  list(GET case 6 logs)
  string(REPLACE "^" "," faults "${faults}")
  set(ENV{VEMRA_FAULTS} "${faults}")
  file(REMOVE_RECURSE "${DIR}/rev")
  file(MAKE_DIRECTORY "${DIR}/rev")
  set(args ${class} --folder "${win}\\rev" --name A-${n} --log "${DIR}/trace-${n}.log"
           --print-world "${win}\\samples\\printworld.ini")
  if(document)
    list(APPEND args --document ${document})
  endif()
  set(kept "")
  if(appended)
    get_filename_component(extension "${appended}" LAST_EXT)
    set(kept "${DIR}/kept/A-${n}${extension}")
    file(COPY_FILE "${DIR}/samples/${appended}" "${kept}")
    file(SHA256 "${kept}" kept_before)
    list(APPEND args --append "${win}\\samples\\${appended}" --append-to "${win}\\kept\\A-${n}${extension}")
  endif()
  execute_process(COMMAND "${RUNNER}" "${EXE}" ${args}
                  RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  set(log "")
  if(EXISTS "${DIR}/trace-${n}.log")
    file(READ "${DIR}/trace-${n}.log" log)
  endif()
  set(wrong "")
  if(NOT status STREQUAL exit)
    string(APPEND wrong "exit status ${status}, expected ${exit}\n")
  endif()
  string(REPLACE "^" ";" says "${says}")
  foreach(text IN LISTS says)
    string(FIND "${out}" "${text}" at)
    if(at EQUAL -1)
      string(APPEND wrong "output lacks: ${text}\n")
    endif()
  endforeach()
  string(REPLACE "," ";" struck "${faults}")
  string(REPLACE "^" ";" logs "${logs}")
  foreach(fault IN LISTS struck)
    string(REGEX REPLACE ":[^:]*$" "" fault "${fault}")
    string(REPLACE ":" "\t" fault "${fault}")
    list(APPEND logs "FAULT\t${fault}\t")
  endforeach()
  foreach(text IN LISTS logs)
    string(FIND "${log}" "${text}" at)
    if(at EQUAL -1)
      string(APPEND wrong "trace log lacks: ${text}\n")
    endif()
  endforeach()
  file(GLOB_RECURSE locks "${DIR}/drivers/*.RLCK")
  if(locks)
    string(APPEND wrong "locks left: ${locks}\n")
  endif()
  file(GLOB archives "${DIR}/rev/*")
  foreach(archive IN LISTS archives)
    execute_process(COMMAND qpdf --check "${archive}" RESULT_VARIABLE checked OUTPUT_QUIET ERROR_QUIET)
    if(NOT checked EQUAL 0)
      string(APPEND wrong "not a whole archive: ${archive}\n")
    endif()
  endforeach()
  if(kept)
    file(SHA256 "${kept}" kept_after)
    if(NOT kept_after STREQUAL kept_before)
      string(APPEND wrong "the existing archive changed\n")
    endif()
  endif()
  file(GLOB_RECURSE leftovers "${DIR}/drivers/*")
  if(leftovers)
    file(REMOVE ${leftovers})
  endif()
  if(wrong)
    string(APPEND failures "--- ${class} ${faults}\n${wrong}--- stdout\n${out}--- stderr\n${err}"
                           "--- trace log\n${log}")
  endif()
  message(STATUS "${class} ${faults}: exit ${status}\n${out}")
endforeach()
execute_process(COMMAND wineserver -k ERROR_QUIET)
if(failures)
  message(FATAL_ERROR "${failures}")
endif()
