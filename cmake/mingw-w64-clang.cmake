# The same target with Debian's clang, over mingw-w64's headers and libraries.
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)

file(GLOB gcc_libraries /usr/lib/gcc/x86_64-w64-mingw32/*-posix)
list(GET gcc_libraries -1 gcc_library)

set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_CXX_FLAGS_INIT
    "-stdlib++-isystem ${gcc_library}/include/c++ -cxx-isystem ${gcc_library}/include/c++/x86_64-w64-mingw32")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-L${gcc_library} -fuse-ld=lld -lpthread")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-L${gcc_library} -fuse-ld=lld -lpthread")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-L${gcc_library} -fuse-ld=lld -lpthread")
