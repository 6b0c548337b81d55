#pragma once

#include <string>

namespace kestrivon {

// Appends fileToAppend's pages to fileMain through the host's PDF merge
// component: the merge goes into a temporary file that is then copied onto
// fileMain, and fileToAppend and the temporary file are deleted. When
// fileMain does not exist yet, fileToAppend is copied to it instead, and
// the answer is False even so: deleting the temporary file that was never
// named fails. A failed merge leaves every file as it was.
bool MergePDFFiles(const std::string& fileMain, const std::string& fileToAppend);

}  // namespace kestrivon
