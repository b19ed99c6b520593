# The engine as it is published: mingw-w64 builds it, and its C interface serves any compiler. The C++
# interface is for that compiler.
vcpkg_download_distfile(archive
  URLS "@url@/temz-@version@-win64.zip"
  FILENAME "temz-@version@-win64.zip"
  SHA512 @sha512@)
vcpkg_extract_source_archive(sdk ARCHIVE "${archive}")

if(VCPKG_TARGET_IS_MINGW)
  set(headers temz)
  set(libraries bin/TEMZ.dll bin/TEMZC.dll)
  set(import_libraries lib/libTEMZ.dll.a lib/libTEMZC.dll.a)
else()
  set(headers temz/temz.h temz/CustomAction.h)
  set(libraries bin/TEMZC.dll)
  set(import_libraries lib/TEMZC.lib)
endif()

foreach(header IN LISTS headers)
  cmake_path(GET header PARENT_PATH folder)
  file(INSTALL "${sdk}/include/${header}" DESTINATION "${CURRENT_PACKAGES_DIR}/include/${folder}")
endforeach()
# There is one build, which debug builds of a program use, too.
foreach(configuration "" /debug)
  foreach(file IN LISTS libraries import_libraries)
    cmake_path(GET file PARENT_PATH folder)
    file(INSTALL "${sdk}/${file}" DESTINATION "${CURRENT_PACKAGES_DIR}${configuration}/${folder}")
  endforeach()
endforeach()
# The program finds its library beside itself.
file(INSTALL "${sdk}/bin/temz.exe" "${sdk}/bin/TEMZC.dll" DESTINATION "${CURRENT_PACKAGES_DIR}/tools/${PORT}")

file(INSTALL "${sdk}/lib/cmake/TEMZ/" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
vcpkg_replace_string("${CURRENT_PACKAGES_DIR}/share/${PORT}/TEMZConfig.cmake" "/../../.." "/../..")
file(INSTALL "${CURRENT_PORT_DIR}/usage" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
vcpkg_install_copyright(FILE_LIST "${sdk}/LICENSE" "${sdk}/THIRD-PARTY-NOTICES")

# The engine takes its C library from Windows itself.
set(VCPKG_POLICY_ALLOW_OBSOLETE_MSVCRT enabled)
