#pragma once

#include <memory>

#include "host/Workset.h"

namespace kestrivon {

// The host's workset: the application's, else the trace service's object
// "Workset", else a new object of the host's class Vemra. Null when none
// could be had (reported); the caller's next member access then fails into
// its own handler.
std::shared_ptr<host::Workset> GetWorkset();

// Workset.Globals and Workset.FileSystem of the workset GetWorkset gives;
// error 91 where a link of the chain is missing.
std::shared_ptr<host::WorksetGlobals> WorksetGlobals();
std::shared_ptr<host::FileSystemObject> WorksetFileSystem();

}  // namespace kestrivon
