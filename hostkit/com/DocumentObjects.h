#pragma once

#include "comkit/ComPtr.h"
#include "host/HostObject.h"
#include "hostkit/com/WindowsHeaders.h"

namespace kestrivon::hostkit::com {

// The host kit's document class: a document (the host's base interface)
// with an owner, the owner's options and environment, and a message pack
// whose entries are logged. Not a class of the host's own type library.
// {6F3D2C1A-8B4E-4F7A-9C2D-5E1B0A7F3D91}
inline constexpr CLSID kDocumentClsid = {
    0x6F3D2C1A, 0x8B4E, 0x4F7A, {0x9C, 0x2D, 0x5E, 0x1B, 0x0A, 0x7F, 0x3D, 0x91}};
inline constexpr const wchar_t* kDocumentProgId = L"VemraHostKit.Document";

HRESULT CreateDocument(REFIID riid, void** object);

// A new COM object standing for a document of the host kit (the strict
// host's replacement for an [in,out] document); raises for another object.
comkit::ComPtr<IDispatch> WrapDocument(const host::HostObjectRef& document);

}  // namespace kestrivon::hostkit::com
