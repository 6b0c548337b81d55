#pragma once

#include <string>

#include "comkit/ComPtr.h"
#include "host/HostObject.h"
#include "hostkit/com/WindowsHeaders.h"
#include "hostkit/core/PrintWorldHost.h"

namespace kestrivon::hostkit::com {

// The print world of VEMRA_PRINT_WORLD, installed on first use from the
// host kit's log; without the variable a world without printers or
// documents. It lives until the process ends: its drivers may still be
// writing when the DLL goes.
InstalledPrintWorld& World();

// The host kit's COM objects stand for the world's portable objects; each
// registers the object it stands for under its identity, so that an object
// handed back to the host kit (a document to print, a printer to print to)
// is found again. Null for null and for objects of others.
host::HostObjectRef HeldObject(IUnknown* object);
void HoldObject(IUnknown* identity, host::HostObjectRef held);
// An object handed in: the host kit's own, or a stand-in for another's
// (which is no host kit object of any kind); null for null.
host::HostObjectRef Argument(IUnknown* object);
void DropObject(IUnknown* identity);

// A COM printer (IPrinter) for a printer of the world.
comkit::ComPtr<IDispatch> WrapPrinter(const host::HostObjectRef& printer);

// The classes that the late-bound host objects are created by.
// {6F3D2C1B-8B4E-4F7A-9C2D-5E1B0A7F3D91}
inline constexpr CLSID kPrinterManagerClsid = {
    0x6F3D2C1B, 0x8B4E, 0x4F7A, {0x9C, 0x2D, 0x5E, 0x1B, 0x0A, 0x7F, 0x3D, 0x91}};
// {6F3D2C1C-8B4E-4F7A-9C2D-5E1B0A7F3D91}
inline constexpr CLSID kUIPolicyClsid = {
    0x6F3D2C1C, 0x8B4E, 0x4F7A, {0x9C, 0x2D, 0x5E, 0x1B, 0x0A, 0x7F, 0x3D, 0x91}};
// {6F3D2C1D-8B4E-4F7A-9C2D-5E1B0A7F3D91}
inline constexpr CLSID kPdfMergeClsid = {
    0x6F3D2C1D, 0x8B4E, 0x4F7A, {0x9C, 0x2D, 0x5E, 0x1B, 0x0A, 0x7F, 0x3D, 0x91}};

HRESULT CreateDocFctDist(REFIID riid, void** object);
HRESULT CreateDocumentFileHelper(REFIID riid, void** object);
HRESULT CreatePrinterManager(REFIID riid, void** object);
HRESULT CreateUIPolicy(REFIID riid, void** object);
HRESULT CreatePdfMerge(REFIID riid, void** object);

}  // namespace kestrivon::hostkit::com
