# What lies between these two counts how often each of its lines and branches runs, where that is asked
# for. Whatever links it writes its counts when it ends, also where it ends itself by force.
macro(temz_begin_measured)
  if(TEMZ_COVERAGE)
    get_directory_property(unmeasured COMPILE_OPTIONS)
    add_compile_options(-O0 -g0 --coverage)
  endif()
endmacro()

macro(temz_end_measured)
  if(TEMZ_COVERAGE)
    set_directory_properties(PROPERTIES COMPILE_OPTIONS "${unmeasured}")
  endif()
endmacro()

if(TEMZ_COVERAGE)
  add_library(temz_coverage STATIC ${CMAKE_CURRENT_LIST_DIR}/CountsAtTheEnd.c)
  target_link_libraries(temz_coverage INTERFACE gcov)
  target_link_libraries(temz_options INTERFACE temz_coverage)
endif()
