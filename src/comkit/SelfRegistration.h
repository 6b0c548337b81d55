#pragma once

#include <windows.h>
// after windows.h, which it needs
#include <oaidl.h>

#include <string>

// The ordinary in-process server keys under HKEY_CLASSES_ROOT, written and
// removed the same way by every DLL of the project.
namespace kestrivon::comkit {

struct InprocClass {
  std::wstring clsid;  // "{...}"
  std::wstring progId;
  std::wstring typeLibId;  // "{...}"
  std::wstring version;    // the VERSION key; none when empty
  bool programmable = false;
};

[[nodiscard]] std::wstring GuidText(const GUID& guid);

// CLSID\{clsid} (InprocServer32 with the Apartment model, ProgID, TypeLib,
// VERSION, Programmable) and <ProgID>\CLSID.
LSTATUS RegisterInprocClass(const InprocClass& entry, const std::wstring& dllPath);
// Removes both trees; a tree that is not there is no failure.
LSTATUS UnregisterInprocClass(const std::wstring& clsid, const std::wstring& progId);

// Registers the embedded library (its dual interfaces get their Interface
// keys with it) under the path it is loaded from again.
HRESULT RegisterOwnTypeLib(int resource, const std::wstring& dllPath);
// Unregisters it when its version key is there.
HRESULT UnregisterOwnTypeLib(int resource);
// LIBID, version, locale and platform of the embedded library.
HRESULT OwnTypeLibAttributes(int resource, TLIBATTR& attributes);

}  // namespace kestrivon::comkit
