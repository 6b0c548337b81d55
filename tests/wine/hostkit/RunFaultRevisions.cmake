# Host calls of VemraHostKit.dll failed on purpose (--faults) through whole
# revisions in vemra-revise.exe: each run ends normally with its failure
# value, the struck fault and the reporting procedure's labels, no lock left
# in a driver's folder, at most one whole archive in the revision folder,
# and the archives there before the run (a PDF, a TIFF) unchanged, whatever
# AppendFile was given. Variables as for RunPdfRevision.cmake, without the
# class's.
cmake_minimum_required(VERSION 3.21)  # empty fields of the table stay
include(${CMAKE_CURRENT_LIST_DIR}/PdfWorld.cmake)
setup_driver(adobe-pdf "Vemra Adobe PDF")
setup_driver(pdfwriter "Acrobat PDFWriter")
file(WRITE "${DIR}/HARP.ini" "[Default]\r\nPrinterName=HARP PS\r\nRevisionExtension=.TIF\r\n")
set(ENV{VEMRA_CONFIG_DIRECTORY} "${win}")
execute_process(COMMAND gs -q -dSAFER -dNOPAUSE -dBATCH -r20 -sDEVICE=tiffg4 "-sOutputFile=${DIR}/samples/scan.tif" "${SAMPLES}/D-200.ps")
# Run in the revision folder after each revision.
set(files_whole "[ -z \"$(find ../drivers -name '*.RLCK')\" ] && cmp ../samples/D-200.pdf D-200.pdf && cmp ../samples/scan.tif scan.tif && for a in A.*; do [ ! -e \"$a\" ] || qpdf --check \"$a\" >/dev/null; done")

# class and arguments | faults, the first of which strikes | sample appended
#   onto its copy in the revision folder | exit status | texts of the output
#   or the trace log... (".RLCK') deleted": the run's lock written and removed)
set(cases
  "AdobePDF --document T-100|DocFctDist.Printdirect:1:0x80004005||1|DoPrint -> False|reported by VemraKestrivon::Globals, IRevisioPrinterDoPrint|.RLCK') deleted"
  "AdobePDF --document T-100|IPrinter.CurrentStatus:3:0x800706BA||1|DoPrint -> False|reported by VemraKestrivon::Globals, Function GetAdobeRevisionFile|.RLCK') deleted"
  "AdobePDF --document T-100|Owner.CurrentUser:1:null||0|DoPrint -> True|Error 91 reported by Kestrivon::DocumentLock, Public Sub WriteLock|.RLCK') deleted"
  "AdobePDF --document T-100|VemraObject.DocumentName:1:0x80004005||1|DoPrint -> False|reported by Kestrivon::DocumentLock, Private Function LockFileName"
  "AdobePDF --document T-100|PdfMerge.Merge:1:0x80004005|D-200.pdf|1|DoPrint -> True|AppendFile -> False|reported by VemraKestrivon::Globals, Function MergePDFFiles()"
  "AdobePDF --document T-100|New.PdfMerge:1:0x80040154|D-200.pdf|1|AppendFile -> False|Error 429 reported by VemraKestrivon::Globals, Function MergePDFFiles(): ActiveX component can't create object"
  "AdobePDF --document T-100|PrinterManager.GetPrinter:1:null,UIPolicy.IsSilent:1:0x80004005||0|InitPrnSettings -> False|DoPrint -> True|SetFilePrinterByName(Vemra Adobe PDF): printer does not exist|Planned fault UIPolicy.IsSilent (use 1) did not strike"
  "AdobePDF --document T-100|DocFctDist.Printdirect:1:0x80004005,TraceService.LogError:1:0x8007001D||1|DoPrint -> False|reported by VemraKestrivon::AdobePDF, Function IRevisionPrinter_DoPrint: TraceService.LogError failed|.RLCK') deleted"
  "AcrobatWriter --document V-400|FileHelper.FetchFile:1:0x80070005||1|DoPrint -> False|reported by VemraKestrivon::Globals, CheckAndCopyPDF"
  "AcrobatWriter --document V-400|TraceService.CopyFile:1:0x80070070||1|DoPrint -> False|reported by VemraKestrivon::Globals, CheckAndCopyPDF"
  "VemraHARP|Workset.Globals:1:null||1|DoPrint -> False|Error 91 reported by VemraKestrivon::HARPConfiguration, Private Sub Class_Initialize"
  "VemraHARP|TiffMerge.Merge:1:0x80004005|scan.tif|1|AppendFile -> False|reported by VemraKestrivon::VemraHARP, Function GenericMergeTiffFiles(")

foreach(case IN LISTS cases)
  string(REPLACE "|" ";" texts "${case}")
  list(POP_FRONT texts run faults appended exit)
  string(MD5 tag "${case}")  # names the run's trace log
  file(REMOVE_RECURSE "${DIR}/rev" "${DIR}/drivers/adobe-pdf/T-100.pdf")  # and what a driver left
  file(COPY "${DIR}/samples/D-200.pdf" "${DIR}/samples/scan.tif" DESTINATION "${DIR}/rev")
  separate_arguments(args UNIX_COMMAND "${run}")
  if(appended)
    list(APPEND args --append "${win}\\samples\\${appended}" --append-to "${win}\\rev\\${appended}")
  endif()
  execute_process(COMMAND "${RUNNER}" "${EXE}" ${args} --folder "${win}\\rev" --name A --faults "${faults}"
                          --log "${win}\\${tag}.log" --print-world "${win}\\samples\\printworld.ini"
                  RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_QUIET)
  execute_process(COMMAND sh -c "${files_whole}" WORKING_DIRECTORY "${DIR}/rev" RESULT_VARIABLE files)
  file(READ "${DIR}/${tag}.log" log)
  string(REGEX REPLACE "^([^:]+):([0-9]+):.*" "Planned fault \\1 (use \\2) struck" struck "${faults}")
  foreach(text IN LISTS texts struck)
    string(FIND "${out}${log}" "${text}" at)
    if(text AND at EQUAL -1)
      string(APPEND failures "${run} ${faults} (${DIR}/${tag}.log): output and trace log lack '${text}'\n${out}")
    endif()
  endforeach()
  if(NOT status STREQUAL exit OR NOT files EQUAL 0)
    string(APPEND failures "${run} ${faults} (${DIR}/${tag}.log): exit status ${status}; a lock, a changed or broken archive: ${files}\n${out}")
  endif()
endforeach()
execute_process(COMMAND wineserver -k ERROR_QUIET)
if(failures)
  message(FATAL_ERROR "${failures}")
endif()
