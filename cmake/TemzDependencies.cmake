# TinyXML and GoogleTest: the user's own where CMake finds them, otherwise built from Debian's
# sources, which scripts/setup.sh brings in.

set(TEMZ_TINYXML_SOURCE ${PROJECT_SOURCE_DIR}/build/deps/tinyxml-2.6.2
  CACHE PATH "Sources of TinyXML 2.6.2, used when no installed one is found")
set(TEMZ_GOOGLETEST_SOURCE /usr/src/googletest
  CACHE PATH "Sources of GoogleTest, used when no installed one is found")

add_library(temz_tinyxml INTERFACE)
find_package(unofficial-tinyxml CONFIG QUIET)
if(unofficial-tinyxml_FOUND)
  target_link_libraries(temz_tinyxml INTERFACE unofficial-tinyxml::unofficial-tinyxml)
else()
  add_library(tinyxml STATIC
    ${TEMZ_TINYXML_SOURCE}/tinystr.cpp
    ${TEMZ_TINYXML_SOURCE}/tinyxml.cpp
    ${TEMZ_TINYXML_SOURCE}/tinyxmlerror.cpp
    ${TEMZ_TINYXML_SOURCE}/tinyxmlparser.cpp)
  target_include_directories(tinyxml SYSTEM PUBLIC ${TEMZ_TINYXML_SOURCE})
  target_compile_definitions(tinyxml PUBLIC TIXML_USE_STL)
  target_link_libraries(temz_tinyxml INTERFACE tinyxml)
endif()
target_compile_definitions(temz_tinyxml INTERFACE TIXML_USE_STL)

if(TEMZ_TESTS)
  find_package(GTest CONFIG QUIET)
  if(NOT TARGET GTest::gmock)
    set(INSTALL_GTEST OFF)
    add_subdirectory(${TEMZ_GOOGLETEST_SOURCE} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  endif()
endif()
