#include "pipeline/PdfMerging.h"

#include <vector>

#include "frame/trace/Trace.h"
#include "host/Printing.h"
#include "platform/FileSystem.h"
#include "frame/Procedure.h"
#include "services/IniFiles.h"

namespace kestrivon {

bool MergePDFFiles(const std::string& fileMain, const std::string& fileToAppend) try {
  // The two parameter texts follow each other without a separator.
  const std::string prefix = std::string(kGlobalsLabel) + ".MergePDFFiles(fileMain (String)" +
                             "fileToAppend (String)): ";
  if (!platform::FileExists(fileToAppend)) {
    WriteTrace(prefix + "fileToAppend does not exist -> aborting...");
    return false;
  }
  std::string tempFile;
  bool copied = false;
  if (platform::FileExists(fileMain)) {
    const std::vector<std::string> files = {fileMain, fileToAppend};
    tempFile = TempFolder() + "\\" + platform::TempName();
    WriteTrace(prefix + "merging files into '" + tempFile + "'...");
    if (!host::CreatePdfMerge()->Merge("", files, tempFile)) {
      WriteTrace(std::string(kGlobalsLabel) + ".MergePDFFiles(): " + "merging files failed");
      return false;
    }
    WriteTrace(prefix + "copying '" + tempFile + "' to '" + fileMain + "'");
    copied = TraceServiceObject().CopyFile(tempFile, fileMain, true);
  } else {
    WriteTrace(prefix + "first file -> copying...");
    copied = TraceServiceObject().CopyFile(fileToAppend, fileMain, true);
  }
  // For a first file no temporary name was made: deleting it fails, and
  // the answer stays False although the copy is there.
  platform::DeleteFileWithForce(fileToAppend, false);
  platform::DeleteFileWithForce(tempFile, false);
  return copied;
} catch (...) {
  return Procedure(kGlobalsLabel, "Function MergePDFFiles()").Report(false);
}

}  // namespace kestrivon
