# Links the programs of a folder that are never shipped with lld, which takes a fraction of a second
# where GNU ld takes most of a minute over GoogleTest's templates. mingw's g++ has the path of its
# linker built in, so clang drives this one, with g++'s runtime libraries. Where clang isn't there, they
# are linked like what is shipped. So is, by temz_link_slowly, what throws through the C++ runtime's streams:
# lld 14 loses how their frames are unwound.
set(TEMZ_SLOW_LINK ${CMAKE_CXX_LINK_EXECUTABLE})
find_program(TEMZ_CLANG clang++)
find_program(TEMZ_LLD NAMES ld.lld lld)
if(TEMZ_CLANG AND TEMZ_LLD AND TEMZ_GCC_LIBRARY)
  set(CMAKE_CXX_LINK_EXECUTABLE
    "${TEMZ_CLANG} --target=x86_64-w64-mingw32 -fuse-ld=lld -L${TEMZ_GCC_LIBRARY} <LINK_FLAGS> <OBJECTS> -o <TARGET> <LINK_LIBRARIES> -lpthread -lstdc++ -lmingw32")
endif()

# For the programs of the calling folder.
macro(temz_link_slowly)
  set(CMAKE_CXX_LINK_EXECUTABLE ${TEMZ_SLOW_LINK})
endmacro()
