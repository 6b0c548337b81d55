# Type libraries and headers from the IDL files, compiled with widl.
find_program(WIDL_EXECUTABLE widl)
set(KESTRIVON_WINE_IDL_DIR /usr/include/wine/wine/windows CACHE PATH "Wine's system IDL files")
set(KESTRIVON_WINE_TLB_DIR /usr/lib/x86_64-linux-gnu/wine/x86_64-windows
    CACHE PATH "Where widl finds stdole2.tlb")
set(KESTRIVON_IDL_OUT ${CMAKE_BINARY_DIR}/idl)
file(MAKE_DIRECTORY ${KESTRIVON_IDL_OUT})

# kestrivon_idl(<Name> [DEPENDS <other .tlb>...]) compiles idl/<Name>.idl into
# <Name>.h, <Name>_i.c and <Name>.tlb under ${KESTRIVON_IDL_OUT}. The header
# is compiled with KESTRIVON_CPP_HEADER defined: there an IDL may give a
# method a C++ name other than its library name (IPrinter's Release).
function(kestrivon_idl name)
  cmake_parse_arguments(ARG "" "" "DEPENDS" ${ARGN})
  if(NOT WIDL_EXECUTABLE)
    message(FATAL_ERROR "widl is needed for the Windows build (Debian: wine64-tools or libwine-dev)")
  endif()
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    set(arch -m64)
  else()
    set(arch -m32)
  endif()
  set(src ${CMAKE_SOURCE_DIR}/idl/${name}.idl)
  set(out ${KESTRIVON_IDL_OUT})
  set(flags ${arch} -I${KESTRIVON_WINE_IDL_DIR} -I${CMAKE_SOURCE_DIR}/idl -L${KESTRIVON_WINE_TLB_DIR} -L${out})
  add_custom_command(
    OUTPUT ${out}/${name}.h ${out}/${name}_i.c ${out}/${name}.tlb
    COMMAND ${WIDL_EXECUTABLE} ${flags} -DKESTRIVON_CPP_HEADER -h -H ${out}/${name}.h ${src}
    COMMAND ${WIDL_EXECUTABLE} ${flags} -u -U ${out}/${name}_i.c ${src}
    COMMAND ${WIDL_EXECUTABLE} ${flags} -t -T ${out}/${name}.tlb ${src}
    DEPENDS ${src} ${ARG_DEPENDS}
    WORKING_DIRECTORY ${out}
    COMMENT "widl ${name}.idl"
    VERBATIM)
  add_custom_target(idl_${name} DEPENDS ${out}/${name}.h ${out}/${name}_i.c ${out}/${name}.tlb)
endfunction()
