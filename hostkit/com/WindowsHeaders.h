#pragma once

#include <windows.h>
// after windows.h, which it needs
#include <oaidl.h>

// windows.h renames these to their W forms; the host's interfaces and the
// host kit's objects name their members plainly.
#undef CopyFile
#undef GetObject

#include "VemraHostServices.h"
