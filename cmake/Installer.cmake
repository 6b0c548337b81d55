# Writes and builds the Windows Installer package of VemraKestrivon.dll.
#
#   cmake -DIDL=<VemraKestrivon.idl> -DARCH=x64|x86 -DVERSION=<a.b.c>
#         -DDLL=<VemraKestrivon.dll> -DTLB=<VemraKestrivon.tlb> -DOUT=<package.msi>
#         -P Installer.cmake
#
# The COM registration is written by the package's own Registry table, not
# by self-registration: the classes, their ProgIDs, the type library and the
# Interface keys of its dual interfaces, exactly the keys that regsvr32
# writes. The identities come from the readable IDL, the one source of the
# classes' CLSIDs and the interfaces' IIDs. wixl (msitools) builds the
# package; msibuild adds the rows wixl cannot express (empty keys).
cmake_minimum_required(VERSION 3.25)

foreach(required IDL ARCH VERSION DLL TLB OUT)
  if(NOT DEFINED ${required})
    message(FATAL_ERROR "Installer.cmake needs -D${required}=...")
  endif()
endforeach()

file(READ ${IDL} idl)
# Square brackets would keep CMake's lists from splitting the matches.
string(REPLACE "[" "<" idl "${idl}")
string(REPLACE "]" ">" idl "${idl}")
string(REGEX MATCH "uuid\\(([0-9A-Fa-f-]+)\\),[ \t\r\n]*version\\(([0-9]+\\.[0-9]+)\\)" lib "${idl}")
set(libid "{${CMAKE_MATCH_1}}")
set(libversion ${CMAKE_MATCH_2})
string(REGEX MATCH "helpstring\\(\"([^\"]*)\"\\)" help "${idl}")
set(libhelp "${CMAKE_MATCH_1}")

# Dual interfaces: [object, uuid(...), dual, ...] interface _Name
string(REGEX MATCHALL "uuid\\([0-9A-Fa-f-]+\\), dual[^>]*>[ \t\r\n]*interface [_A-Za-z0-9]+"
       interfaces "${idl}")
# Coclasses: [uuid(...)] coclass Name
string(REGEX MATCHALL "<uuid\\([0-9A-Fa-f-]+\\)>[ \t\r\n]*coclass [A-Za-z0-9]+" classes "${idl}")
list(LENGTH classes class_count)
list(LENGTH interfaces interface_count)
if(NOT class_count EQUAL 7 OR NOT interface_count EQUAL 8 OR libid STREQUAL "{}")
  message(FATAL_ERROR "${IDL}: expected the library, its seven classes and eight dual "
                      "interfaces; found ${class_count} classes, ${interface_count} interfaces")
endif()

if(ARCH STREQUAL "x64")
  set(win64 yes)
  set(program_files ProgramFiles64Folder)
  set(platform win64)
  # Separate products: a 32-bit and a 64-bit host may share a workstation.
  set(upgrade_code 5C0E7A21-3B94-4D6F-9A8E-2F1B6C3D4E51)
elseif(ARCH STREQUAL "x86")
  set(win64 no)
  set(program_files ProgramFilesFolder)
  set(platform win32)
  set(upgrade_code 5C0E7A21-3B94-4D6F-9A8E-2F1B6C3D4E52)
else()
  message(FATAL_ERROR "ARCH is x64 or x86, not '${ARCH}'")
endif()

set(rows "")
set(empty_keys "")
# One string value under HKEY_CLASSES_ROOT (the default value for an empty
# name), appended to `rows`.
function(value key name data)
  if(name STREQUAL "")
    set(named "")
  else()
    set(named " Name=\"${name}\"")
  endif()
  set(rows "${rows}          <RegistryValue Root=\"HKCR\" Key=\"${key}\"${named} Value=\"${data}\" Type=\"string\"/>\n"
      PARENT_SCOPE)
endfunction()

foreach(class IN LISTS classes)
  string(REGEX MATCH "uuid\\(([0-9A-Fa-f-]+)\\)>[ \t\r\n]*coclass ([A-Za-z0-9]+)" m "${class}")
  string(TOUPPER "{${CMAKE_MATCH_1}}" clsid)
  set(progid "VemraKestrivon.${CMAKE_MATCH_2}")
  value("CLSID\\${clsid}" "" "${progid}")
  value("CLSID\\${clsid}\\InprocServer32" "" "[#VemraKestrivon.dll]")
  value("CLSID\\${clsid}\\InprocServer32" "ThreadingModel" "Apartment")
  value("CLSID\\${clsid}\\ProgID" "" "${progid}")
  list(APPEND empty_keys "CLSID\\${clsid}\\Programmable")
  value("CLSID\\${clsid}\\TypeLib" "" "${libid}")
  value("CLSID\\${clsid}\\VERSION" "" "${libversion}")
  value("${progid}" "" "${progid}")
  value("${progid}\\CLSID" "" "${clsid}")
endforeach()

set(class_rows "${rows}")
set(rows "")
foreach(interface IN LISTS interfaces)
  string(REGEX MATCH "uuid\\(([0-9A-Fa-f-]+)\\).*interface ([_A-Za-z0-9]+)" m "${interface}")
  string(TOUPPER "{${CMAKE_MATCH_1}}" iid)
  set(key "Interface\\${iid}")
  value("${key}" "" "${CMAKE_MATCH_2}")
  # The automation marshaller: the interfaces are dual.
  value("${key}\\ProxyStubClsid" "" "{00020424-0000-0000-C000-000000000046}")
  value("${key}\\ProxyStubClsid32" "" "{00020424-0000-0000-C000-000000000046}")
  value("${key}\\TypeLib" "" "${libid}")
  value("${key}\\TypeLib" "Version" "${libversion}")
endforeach()

# The type library as RegisterTypeLib writes it; its flags are the
# library's own (LIBFLAG_FHASDISKIMAGE).
set(interface_rows "${rows}")
set(rows "")
set(tl "TypeLib\\${libid}\\${libversion}")
value("${tl}" "" "${libhelp}")
value("${tl}\\0\\${platform}" "" "[#VemraKestrivon.dll]")
value("${tl}\\FLAGS" "" "8")
value("${tl}\\HELPDIR" "" "[INSTALLDIR]")
set(typelib_rows "${interface_rows}${rows}")
set(rows "${class_rows}")
# A 64-bit library and its interfaces are registered in both registry
# views, as the 64-bit RegisterTypeLib does.
set(wow_component "")
set(wow_ref "")
if(win64)
  set(wow_component "        <Component Id=\"TypeLib32View\" Guid=\"*\" Win64=\"no\">\n${typelib_rows}        </Component>\n")
  set(wow_ref "      <ComponentRef Id=\"TypeLib32View\"/>\n")
endif()

# wixl finds the sources by names relative to where it runs: a staging
# folder beside the package.
get_filename_component(dll_name ${DLL} NAME)
get_filename_component(tlb_name ${TLB} NAME)
set(stage ${OUT}.stage)
file(REMOVE_RECURSE ${stage})
file(COPY ${DLL} ${TLB} DESTINATION ${stage})
file(WRITE ${stage}/package.wxs "<?xml version=\"1.0\" encoding=\"utf-8\"?>
<Wix xmlns=\"http://schemas.microsoft.com/wix/2006/wi\">
  <Product Id=\"*\" Name=\"Vemra Default Revision Printers (${ARCH})\" Language=\"1033\"
           Version=\"${VERSION}\" Manufacturer=\"HALDRIM\" UpgradeCode=\"${upgrade_code}\">
    <Package InstallerVersion=\"200\" Compressed=\"yes\" InstallScope=\"perMachine\"
             Description=\"VemraKestrivon.dll, the revision printers of Vemra\"/>
    <MajorUpgrade DowngradeErrorMessage=\"A newer version of the Vemra Default Revision Printers is installed.\"/>
    <Media Id=\"1\" Cabinet=\"kestrivon.cab\" EmbedCab=\"yes\"/>
    <Directory Id=\"TARGETDIR\" Name=\"SourceDir\">
      <Directory Id=\"${program_files}\">
        <Directory Id=\"VemraFolder\" Name=\"Vemra\">
          <Directory Id=\"INSTALLDIR\" Name=\"Kestrivon\">
        <Component Id=\"Component\" Guid=\"*\" Win64=\"${win64}\">
          <File Id=\"VemraKestrivon.dll\" Name=\"${dll_name}\" Source=\"${dll_name}\" KeyPath=\"yes\"/>
${rows}${typelib_rows}        </Component>
        <Component Id=\"TypeLibrary\" Guid=\"*\" Win64=\"${win64}\">
          <File Id=\"VemraKestrivon.tlb\" Name=\"${tlb_name}\" Source=\"${tlb_name}\" KeyPath=\"yes\"/>
        </Component>
${wow_component}          </Directory>
        </Directory>
      </Directory>
    </Directory>
    <Feature Id=\"RevisionPrinters\" Title=\"Revision printers\" Level=\"1\">
      <ComponentRef Id=\"Component\"/>
      <ComponentRef Id=\"TypeLibrary\"/>
${wow_ref}    </Feature>
  </Product>
</Wix>
")

find_program(WIXL wixl REQUIRED)
find_program(MSIBUILD msibuild REQUIRED)
file(REMOVE ${OUT})
execute_process(COMMAND ${WIXL} -a ${ARCH} -o ${OUT} package.wxs WORKING_DIRECTORY ${stage}
                RESULT_VARIABLE failed ERROR_VARIABLE wixl_errors)
# wixl warns that Package/@Platform is unknown; anything else is an error.
if(failed OR NOT EXISTS ${OUT})
  message(FATAL_ERROR "wixl failed on ${stage}/package.wxs:\n${wixl_errors}")
endif()
# An empty key: created on install, removed on uninstall ("*").
set(n 0)
foreach(key IN LISTS empty_keys)
  math(EXPR n "${n} + 1")
  execute_process(
    COMMAND ${MSIBUILD} ${OUT} -q
            "INSERT INTO `Registry` (`Registry`,`Root`,`Key`,`Name`,`Component_`) VALUES ('EmptyKey${n}',0,'${key}','*','Component')"
    RESULT_VARIABLE failed)
  if(failed)
    file(REMOVE ${OUT})
    message(FATAL_ERROR "msibuild could not add the key ${key} to ${OUT}")
  endif()
endforeach()
