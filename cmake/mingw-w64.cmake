# Cross build for 64-bit Windows with Debian's mingw-w64 (posix threads: <mutex> and friends exist).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Every program that CMake or CTest starts for the target goes through the project's own Wine prefix.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine-run.sh)

# Where the libraries of that g++ are, for whoever drives its linker's work himself.
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-libgcc-file-name
  OUTPUT_VARIABLE TEMZ_GCC_LIBRARY OUTPUT_STRIP_TRAILING_WHITESPACE)
get_filename_component(TEMZ_GCC_LIBRARY "${TEMZ_GCC_LIBRARY}" DIRECTORY)
