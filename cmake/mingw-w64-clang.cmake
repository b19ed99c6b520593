# The same target with Debian's clang, over mingw-w64's headers and libraries.
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)

set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_CXX_FLAGS_INIT
    "-stdlib++-isystem ${TEMZ_GCC_LIBRARY}/include/c++ -cxx-isystem ${TEMZ_GCC_LIBRARY}/include/c++/x86_64-w64-mingw32")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-L${TEMZ_GCC_LIBRARY} -fuse-ld=lld -lpthread")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-L${TEMZ_GCC_LIBRARY} -fuse-ld=lld -lpthread")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-L${TEMZ_GCC_LIBRARY} -fuse-ld=lld -lpthread")
