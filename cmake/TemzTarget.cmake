# What every target of the project is built with.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# What was compiled before isn't compiled again, in another folder either, where ccache is there.
find_program(TEMZ_CCACHE ccache)
if(TEMZ_CCACHE)
  set(launcher ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1
    CCACHE_SLOPPINESS=pch_defines,time_macros ${TEMZ_CCACHE})
  set(CMAKE_C_COMPILER_LAUNCHER ${launcher})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${launcher})
endif()

add_library(temz_options INTERFACE)
target_compile_definitions(temz_options INTERFACE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN NOGDI
  _WIN32_WINNT=0x0601)
target_compile_options(temz_options INTERFACE -Wall -Wextra -Wpedantic -Werror)
# The C++ runtime is linked in; the flags of the file header are the linker's default, said anyway.
target_link_options(temz_options INTERFACE -static -Wl,--dynamicbase -Wl,--high-entropy-va
  -Wl,--nxcompat)
# Nothing in a file tells when or where it was built, so that the same sources and tools make the same;
# in place of the time, crash reports tell builds apart by an id, a hash of what the linker wrote.
target_link_options(temz_options INTERFACE -Wl,--no-insert-timestamp -Wl,--build-id)
add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)

if(TEMZ_CHECKED)
  add_compile_options(-fsanitize=undefined -fsanitize-undefined-trap-on-error -fstack-protector-strong)
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
  add_link_options(-fstack-protector-strong)
endif()

# Gives a target a VERSIONINFO resource.
function(temz_version_resource target file_type description)
  string(REPLACE "." "," commas ${PROJECT_VERSION})
  set(version_commas ${commas},0)
  set(resource ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
  get_target_property(name ${target} OUTPUT_NAME)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "EXECUTABLE")
    set(file_name ${name}.exe)
  else()
    set(file_name ${name}.dll)
  endif()
  configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${resource} @ONLY)
  target_sources(${target} PRIVATE ${resource})
endfunction()

# Has targets read what most of their sources include once, and not for each of them. This is not for what
# is shipped: g++ then orders some of what it tells debuggers by chance, takes the system's headers for
# ours and warns of their bounds, and nobody sees what a source forgets to include.
option(TEMZ_PRECOMPILE "Precompile the headers of the system and of the C++ library" OFF)
function(temz_precompile)
  if(TEMZ_PRECOMPILE)
    file(CONFIGURE OUTPUT precompiled.cpp CONTENT "")
    add_library(temz_precompiled OBJECT ${CMAKE_CURRENT_BINARY_DIR}/precompiled.cpp)
    target_link_libraries(temz_precompiled PRIVATE temz_options)
    target_precompile_headers(temz_precompiled PRIVATE
      <windows.h>
      <algorithm> <cwchar> <map> <memory> <optional> <string> <string_view> <utility> <vector>)
    foreach(target IN LISTS ARGN)
      target_precompile_headers(${target} REUSE_FROM temz_precompiled)
      target_compile_options(${target} PRIVATE -Wno-array-bounds -Wno-stringop-overread)
    endforeach()
  endif()
endfunction()
