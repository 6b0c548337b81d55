#pragma once

#include "hostkit/com/WindowsHeaders.h"

namespace kestrivon::hostkit::com {

// The host's workset and the HARP printer's host classes, for runs without
// the host: all late-bound objects without type information.
//   Vemra                a new workset (GetObject("", "Vemra"))
//   Vemra.TraceFacility  named trace sources that write SOURCE entries
//   Vemra.TiffMerge      the pages of TIFF files into one, through tiffcp
// {4E0B6C1D-2A57-4C3E-8F19-7D2A6B5E9C01}
inline constexpr CLSID kVemraClsid = {
    0x4E0B6C1D, 0x2A57, 0x4C3E, {0x8F, 0x19, 0x7D, 0x2A, 0x6B, 0x5E, 0x9C, 0x01}};
// {4E0B6C1D-2A57-4C3E-8F19-7D2A6B5E9C02}
inline constexpr CLSID kTraceFacilityClsid = {
    0x4E0B6C1D, 0x2A57, 0x4C3E, {0x8F, 0x19, 0x7D, 0x2A, 0x6B, 0x5E, 0x9C, 0x02}};
// {4E0B6C1D-2A57-4C3E-8F19-7D2A6B5E9C03}
inline constexpr CLSID kTiffMergeClsid = {
    0x4E0B6C1D, 0x2A57, 0x4C3E, {0x8F, 0x19, 0x7D, 0x2A, 0x6B, 0x5E, 0x9C, 0x03}};

HRESULT CreateWorkset(REFIID riid, void** object);
HRESULT CreateTraceFacility(REFIID riid, void** object);
HRESULT CreateTiffMerge(REFIID riid, void** object);

// TraceService.Application and GetObject("Workset"): a new host
// application with its workset, or a new workset, per call.
HRESULT KitApplication(IDispatch** application);
HRESULT KitWorkset(IDispatch** workset);

}  // namespace kestrivon::hostkit::com
