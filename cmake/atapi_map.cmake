# Writes the shared library's version script from the public headers: every
# name declared with ATAPI_EXPORT (functions and g_ tables) is global, all
# else local. Regenerated whenever a public header changes, so the exported
# list follows the declarations.
#
#   cmake -D INCLUDE_DIR=<include/atapi> -D OUTPUT=<atapi.map> -P atapi_map.cmake

file(GLOB headers ${INCLUDE_DIR}/*.h)
list(SORT headers)
set(names)
foreach(header IN LISTS headers)
  file(STRINGS ${header} lines REGEX "^[ \t]*ATAPI_EXPORT ")
  foreach(line IN LISTS lines)
    # The declarator ends at the parameter list, the array bound or the ';'.
    string(REGEX REPLACE "[([;].*" "" declaration "${line}")
    string(STRIP "${declaration}" declaration)
    if(NOT declaration MATCHES "([A-Za-z_][A-Za-z0-9_]*)$")
      message(FATAL_ERROR "${header}: no exported name in: ${line}")
    endif()
    list(APPEND names ${CMAKE_MATCH_1})
  endforeach()
endforeach()
list(REMOVE_DUPLICATES names)
list(SORT names)
if(NOT names)
  message(FATAL_ERROR "no ATAPI_EXPORT declarations under ${INCLUDE_DIR}")
endif()

list(JOIN names ";\n    " global)
file(WRITE ${OUTPUT}.tmp "/* Generated from the ATAPI_EXPORT declarations of include/atapi. */
ATAPI_1 {
  global:
    ${global};
  local:
    *;
};
")
file(COPY_FILE ${OUTPUT}.tmp ${OUTPUT} ONLY_IF_DIFFERENT)
file(REMOVE ${OUTPUT}.tmp)
