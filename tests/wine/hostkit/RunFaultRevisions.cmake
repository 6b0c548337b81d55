# Host calls of VemraHostKit.dll failed on purpose (--faults) through whole
# revisions in vemra-revise.exe: each run ends normally with its failure
# value, the struck fault and the reporting procedure's labels in the trace
# log, no lock left in a driver's folder, only whole archives in the
# revision folder, and an existing archive untouched by a failing AppendFile.
# Variables as for RunPdfRevision.cmake, without the class's.
cmake_minimum_required(VERSION 3.21)  # empty fields of the table stay
include(${CMAKE_CURRENT_LIST_DIR}/PdfWorld.cmake)
setup_driver(adobe-pdf "Vemra Adobe PDF")
setup_driver(pdfwriter "Acrobat PDFWriter")
file(WRITE "${DIR}/HARP.ini" "[Default]\r\nPrinterName=HARP PS\r\nRevisionExtension=.TIF\r\n"
     "ConvertCommand=gs\r\n[ConvertCommand Parameters]\r\nDevice=tiffg4\r\n")
set(ENV{VEMRA_CONFIG_DIRECTORY} "${win}")
execute_process(COMMAND gs -q -dSAFER -dNOPAUSE -dBATCH -r20 -sDEVICE=tiffg4
                        "-sOutputFile=${DIR}/samples/scan.tif" "${SAMPLES}/D-200.ps")
set(deleted ".RLCK') deleted")  # the run's lock, written and removed

# class | document | faults | file appended onto a copy of itself | exit status
#   | texts of the output and the trace log...
set(cases
  "AdobePDF|T-100|DocFctDist.Printdirect:1:0x80004005||1|DoPrint -> False|VemraKestrivon::Globals\tIRevisioPrinterDoPrint|${deleted}"
  "AdobePDF|T-100|IPrinter.CurrentStatus:3:0x800706BA||1|DoPrint -> False|VemraKestrivon::Globals\tFunction GetAdobeRevisionFile|${deleted}"
  "AdobePDF|T-100|Owner.CurrentUser:1:null||0|DoPrint -> True|Kestrivon::DocumentLock\tPublic Sub WriteLock|${deleted}"
  "AdobePDF|T-100|VemraObject.DocumentName:1:0x80004005||1|DoPrint -> False|Kestrivon::DocumentLock\tPrivate Function LockFileName"
  "AdobePDF|T-100|PdfMerge.Merge:1:0x80004005|D-200.pdf|1|DoPrint -> True|AppendFile -> False|VemraKestrivon::Globals\tFunction MergePDFFiles()"
  "AdobePDF|T-100|New.PdfMerge:1:0x80040154|D-200.pdf|1|AppendFile -> False|429\tActiveX component can't create object\tVemraKestrivon\tVemraKestrivon::Globals\tFunction MergePDFFiles()"
  "AdobePDF|T-100|PrinterManager.GetPrinter:1:null||0|InitPrnSettings -> False|DoPrint -> True|SetFilePrinterByName(Vemra Adobe PDF): printer does not exist"
  "AdobePDF|T-100|DocFctDist.Printdirect:1:0x80004005,TraceService.LogError:1:0x8007001D||1|DoPrint -> False|LogError failed (planned fault)\tVemraHostKit\tVemraKestrivon::AdobePDF\tFunction IRevisionPrinter_DoPrint|${deleted}"
  "AcrobatWriter|V-400|FileHelper.FetchFile:1:0x80070005||1|DoPrint -> False|VemraKestrivon::Globals\tCheckAndCopyPDF"
  "AcrobatWriter|V-400|TraceService.CopyFile:1:0x80070070||1|DoPrint -> False|VemraKestrivon::Globals\tCheckAndCopyPDF"
  "VemraHARP||Workset.Globals:1:null||1|DoPrint -> False|VemraKestrivon::HARPConfiguration\tPrivate Sub Class_Initialize"
  "VemraHARP||TiffMerge.Merge:1:0x80004005|scan.tif|1|AppendFile -> False|VemraKestrivon::VemraHARP\tFunction GenericMergeTiffFiles(")

set(failures "")
foreach(case IN LISTS cases)
  string(REPLACE "|" ";" texts "${case}")
  list(POP_FRONT texts class document faults appended exit)
  file(REMOVE_RECURSE "${DIR}/rev" "${DIR}/trace.log")
  file(MAKE_DIRECTORY "${DIR}/rev")
  set(args ${class} --folder "${win}\\rev" --name A --log "${win}\\trace.log" --faults "${faults}"
           --print-world "${win}\\samples\\printworld.ini")
  if(document)
    list(APPEND args --document ${document})
  endif()
  if(appended)  # the archive is a copy of the file
    file(COPY_FILE "${DIR}/samples/${appended}" "${DIR}/rev/kept-${appended}")
    file(SHA256 "${DIR}/rev/kept-${appended}" before)
    list(APPEND args --append "${win}\\samples\\${appended}" --append-to "${win}\\rev\\kept-${appended}")
  endif()
  execute_process(COMMAND "${RUNNER}" "${EXE}" ${args} RESULT_VARIABLE status OUTPUT_VARIABLE out
                  ERROR_VARIABLE err)
  file(READ "${DIR}/trace.log" log)
  string(REGEX REPLACE "([^:,]+):([0-9]+):[^,]*,?" "FAULT\t\\1\t\\2\t;" struck "${faults}")
  set(wrong "")
  foreach(text IN LISTS texts struck)
    string(FIND "${out}${log}" "${text}" at)
    if(text AND at EQUAL -1)
      string(APPEND wrong "output and trace log lack: ${text}\n")
    endif()
  endforeach()
  file(GLOB_RECURSE locks "${DIR}/drivers/*.RLCK")
  file(GLOB archives "${DIR}/rev/A.*")
  foreach(archive IN LISTS archives)  # whole PDFs only (no TIFF is made here)
    execute_process(COMMAND qpdf --check "${archive}" RESULT_VARIABLE checked OUTPUT_QUIET)
    if(NOT checked EQUAL 0)
      string(APPEND wrong "not a whole archive: ${archive}\n")
    endif()
  endforeach()
  if(appended)
    file(SHA256 "${DIR}/rev/kept-${appended}" after)
  endif()
  if(NOT status STREQUAL exit OR locks OR NOT "${before}" STREQUAL "${after}")
    string(APPEND wrong "exit status ${status} (${exit}), locks left: '${locks}', kept ${before} ${after}\n")
  endif()
  if(wrong)
    string(APPEND failures "--- ${class} ${faults}\n${wrong}--- stdout\n${out}--- stderr\n${err}--- trace log\n${log}")
  endif()
  file(GLOB_RECURSE written "${DIR}/drivers/*")  # what the drivers left for the next case
  if(written)
    file(REMOVE ${written})
  endif()
endforeach()
execute_process(COMMAND wineserver -k ERROR_QUIET)
if(failures)
  message(FATAL_ERROR "${failures}")
endif()
