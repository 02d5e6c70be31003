# Installs the build tree into a scratch prefix and checks what is put in
# place: the libraries (the shared one under its SOVERSION name), exactly the
# public headers, the CMake package without this tree's compile flags, the
# pkg-config file, the programs, atsim's scenarios, the systemd unit, the
# manual pages and the licence.
#
#   cmake -D BUILD_DIR=... -D SOURCE_DIR=... -D PREFIX=... -D CONFIG=...
#         -D BINDIR=... -D LIBDIR=... -D DATADIR=... -D MANDIR=... -D DOCDIR=...
#         -D UNITDIR=... -P install_package.cmake

set(config_option)
if(CONFIG)
  set(config_option --config ${CONFIG})
endif()
file(REMOVE_RECURSE ${PREFIX})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX} ${config_option}
                RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "cmake --install failed (${result}):\n${out}")
endif()

set(missing)
foreach(file ${BINDIR}/atserver ${BINDIR}/atsim ${BINDIR}/atcli
             ${LIBDIR}/libatapi.so ${LIBDIR}/libatapi.so.0 ${LIBDIR}/libatapi.a
             ${LIBDIR}/libatapi_platform.a ${LIBDIR}/pkgconfig/atapi.pc
             ${LIBDIR}/cmake/atapi/atapiConfig.cmake ${LIBDIR}/cmake/atapi/atapiConfigVersion.cmake
             ${DATADIR}/atsim/scenarios/default.scn ${DATADIR}/atsim/scenarios/comm.scn
             ${MANDIR}/man8/atserver.8 ${MANDIR}/man1/atsim.1 ${MANDIR}/man1/atcli.1
             ${UNITDIR}/atserver.service ${DOCDIR}/examples/atserver.default ${DOCDIR}/LICENSE)
  if(NOT EXISTS ${PREFIX}/${file})
    list(APPEND missing ${file})
  endif()
endforeach()
if(missing)
  message(FATAL_ERROR "not installed: ${missing}")
endif()

file(GLOB_RECURSE installed RELATIVE ${PREFIX}/include LIST_DIRECTORIES false ${PREFIX}/include/*)
file(GLOB expected RELATIVE ${SOURCE_DIR}/include ${SOURCE_DIR}/include/atapi/*.h)
list(SORT installed)
list(SORT expected)
if(NOT installed STREQUAL expected)
  message(FATAL_ERROR "installed headers: ${installed}\npublic headers: ${expected}")
endif()

# The trap and sanitizer flags are this tree's business, not its users'.
file(GLOB target_files ${PREFIX}/${LIBDIR}/cmake/atapi/atapiTargets*.cmake)
foreach(file IN LISTS target_files)
  file(STRINGS ${file} leaks REGEX "INTERFACE_COMPILE_OPTIONS|fsanitize|overflow_trap")
  if(leaks)
    message(FATAL_ERROR "${file} hands build flags to its users:\n${leaks}")
  endif()
endforeach()
message(STATUS "installed into ${PREFIX}")
