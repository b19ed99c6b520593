# Runs the script of the port in PORT_FOLDER for the triplet TARGET_TRIPLET, in place of vcpkg, with what is in
# DOWNLOADS: the files of the package come into PACKAGE. The functions do what vcpkg's documents tell of those
# arguments that the port gives, and refuse others.
#
#     cmake -D PORT_FOLDER=... -D TARGET_TRIPLET=... -D DOWNLOADS=... -D PACKAGE=... -P run-port.cmake
cmake_minimum_required(VERSION 3.25)

# Parses a function's arguments of the lists `one` and `many`, all of which must be given.
macro(parse first one many)
  cmake_parse_arguments(PARSE_ARGV ${first} arg "" "${one}" "${many}")
  foreach(name ${one} ${many})
    if(NOT arg_${name})
      message(FATAL_ERROR "${CMAKE_CURRENT_FUNCTION} is given no ${name}.")
    endif()
  endforeach()
  if(arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "${CMAKE_CURRENT_FUNCTION} doesn't know ${arg_UNPARSED_ARGUMENTS}.")
  endif()
endmacro()

# The file must have been fetched; whether it is the right one is looked at each time.
function(vcpkg_download_distfile out)
  parse(1 "FILENAME;SHA512" "URLS")
  set(file ${DOWNLOADS}/${arg_FILENAME})
  file(SHA512 ${file} found)
  if(NOT found STREQUAL arg_SHA512)
    message(FATAL_ERROR "The checksum isn't the port's:\n${file}\n${found}\n${arg_SHA512}")
  endif()
  set(${out} ${file} PARENT_SCOPE)
endfunction()

# What the one folder in the archive holds.
function(vcpkg_extract_source_archive out)
  parse(1 "ARCHIVE" "")
  set(place ${CURRENT_BUILDTREES_DIR}/src)
  file(ARCHIVE_EXTRACT INPUT ${arg_ARCHIVE} DESTINATION ${place})
  file(GLOB inside ${place}/*)
  list(LENGTH inside count)
  if(NOT count EQUAL 1)
    message(FATAL_ERROR "${arg_ARCHIVE} holds more than one folder.")
  endif()
  set(${out} ${inside} PARENT_SCOPE)
endfunction()

function(vcpkg_replace_string file old new)
  file(READ ${file} before)
  string(REPLACE "${old}" "${new}" after "${before}")
  if(before STREQUAL after)
    message(FATAL_ERROR "${file} has no ${old}.")
  endif()
  file(WRITE ${file} "${after}")
endfunction()

function(vcpkg_install_copyright)
  parse(0 "" "FILE_LIST")
  foreach(file IN LISTS arg_FILE_LIST)
    file(READ ${file} text)
    cmake_path(GET file FILENAME name)
    file(APPEND ${CURRENT_PACKAGES_DIR}/share/${PORT}/copyright "${name}:\n\n${text}\n\n")
  endforeach()
endfunction()

cmake_path(GET PORT_FOLDER FILENAME PORT)
set(CURRENT_PORT_DIR ${PORT_FOLDER})
set(CURRENT_PACKAGES_DIR ${PACKAGE})
set(CURRENT_BUILDTREES_DIR ${PACKAGE}-buildtree)
if(TARGET_TRIPLET MATCHES mingw)
  set(VCPKG_TARGET_IS_MINGW ON)
endif()
include(${PORT_FOLDER}/portfile.cmake)
