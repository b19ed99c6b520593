# find_package(TEMZ) gives temz::temzc, the engine for hosts in any language, and temz::temz, the
# engine for hosts in C++ by the compiler that it was built with. Ship the DLL beside your program.
# The SDK may stand anywhere: all places count from this file.
get_filename_component(TEMZ_ROOT "${CMAKE_CURRENT_LIST_DIR}/../../.." ABSOLUTE)

function(_temz_library target dll import_library)
  if(NOT TARGET temz::${target})
    add_library(temz::${target} SHARED IMPORTED)
    set_target_properties(temz::${target} PROPERTIES
      IMPORTED_LOCATION ${TEMZ_ROOT}/bin/${dll}
      IMPORTED_IMPLIB ${TEMZ_ROOT}/lib/${import_library}
      INTERFACE_INCLUDE_DIRECTORIES ${TEMZ_ROOT}/include)
  endif()
endfunction()

if(MSVC)
  _temz_library(temzc TEMZC.dll TEMZC.lib)
else()
  _temz_library(temzc TEMZC.dll libTEMZC.dll.a)
  _temz_library(temz TEMZ.dll libTEMZ.dll.a)
  set_target_properties(temz::temz PROPERTIES INTERFACE_LINK_LIBRARIES ole32)
endif()

set(TEMZ_temzc_FOUND TRUE)
set(TEMZ_temz_FOUND ${MINGW})
foreach(component IN LISTS TEMZ_FIND_COMPONENTS)
  if(TEMZ_FIND_REQUIRED_${component} AND NOT TEMZ_${component}_FOUND)
    set(TEMZ_FOUND FALSE)
    set(TEMZ_NOT_FOUND_MESSAGE "This compiler can't use ${component}.")
  endif()
endforeach()
