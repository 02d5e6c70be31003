# Builds a C program outside the source tree against the installed package,
# four ways: through find_package(atapi) and through pkg-config, each with the
# shared and the static library; then runs all four against the installed
# atserver and atsim (run_consumers.sh).
#
#   cmake -D SOURCE_DIR=... -D PREFIX=... -D LIBDIR=... -D WORK_DIR=... -D GENERATOR=...
#         -D C_COMPILER=... [-D TOOLCHAIN_FILE=...] [-D EMULATOR=...] [-D SANITIZE=...]
#         [-D CONFIG=...] -D RUN=ON|OFF -P check_consumer.cmake

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT result EQUAL 0)
    string(REPLACE ";" " " command "${ARGN}")
    message(FATAL_ERROR "${command} failed (${result}):\n${out}")
  endif()
  message(STATUS "${out}")
endfunction()


file(REMOVE_RECURSE ${WORK_DIR})
set(source ${WORK_DIR}/src)
file(COPY ${SOURCE_DIR}/tests/package/consumer/ DESTINATION ${source})

set(options -G ${GENERATOR} "-DCMAKE_BUILD_TYPE=${CONFIG}" -DCMAKE_PREFIX_PATH=${PREFIX}
            -DCMAKE_C_COMPILER=${C_COMPILER} "-DCONSUMER_SANITIZE=${SANITIZE}")
if(TOOLCHAIN_FILE)
  list(APPEND options -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN_FILE})
endif()
run(${CMAKE_COMMAND} -S ${source} -B ${WORK_DIR}/cmake ${options})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/cmake)
set(programs ${WORK_DIR}/cmake/consumer_shared ${WORK_DIR}/cmake/consumer_static)

# pkg-config sees the installed package only.
find_program(PKG_CONFIG pkg-config REQUIRED)
set(ENV{PKG_CONFIG_LIBDIR} ${PREFIX}/${LIBDIR}/pkgconfig)
unset(ENV{PKG_CONFIG_PATH})
function(pkg_config out)
  execute_process(COMMAND ${PKG_CONFIG} ${ARGN} atapi RESULT_VARIABLE result
                  OUTPUT_VARIABLE text ERROR_VARIABLE error OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "pkg-config ${ARGN} atapi failed:\n${error}")
  endif()
  separate_arguments(text UNIX_COMMAND "${text}")
  set(${out} ${text} PARENT_SCOPE)
endfunction()
pkg_config(libdir --variable=libdir)
file(REAL_PATH "${libdir}" libdir)
if(NOT libdir STREQUAL "${PREFIX}/${LIBDIR}")
  message(FATAL_ERROR "atapi.pc points at ${libdir}, not at the prefix ${PREFIX}")
endif()
set(compile ${C_COMPILER} -Wall -Wextra -Werror ${source}/main.c)
if(SANITIZE)
  list(APPEND compile -fsanitize=${SANITIZE})
endif()
pkg_config(shared_flags --cflags --libs)
run(${compile} -o ${WORK_DIR}/pc_shared ${shared_flags} -Wl,-rpath,${libdir})
list(APPEND programs ${WORK_DIR}/pc_shared)
# A fully static program proves that Libs.private names everything the static
# library needs; sanitizer runtimes cannot be linked that way.
if(NOT SANITIZE)
  pkg_config(static_flags --static --cflags --libs)
  run(${compile} -static -o ${WORK_DIR}/pc_static ${static_flags})
  list(APPEND programs ${WORK_DIR}/pc_static)
endif()

# readelf's dynamic section names libatapi.so exactly when a program was
# linked against the shared library.
foreach(program IN LISTS programs)
  execute_process(COMMAND readelf -d ${program} OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
  string(FIND "${dynamic}" "libatapi.so" found)
  string(REGEX MATCH "shared$" shared ${program})
  if(shared AND found EQUAL -1)
    message(FATAL_ERROR "${program} does not load libatapi.so")
  elseif(NOT shared AND NOT found EQUAL -1)
    message(FATAL_ERROR "${program} loads libatapi.so instead of holding the static library")
  endif()
endforeach()

if(RUN)
  set(ENV{LAUNCHER} "${EMULATOR}")
  run(bash ${SOURCE_DIR}/tests/package/run_consumers.sh ${PREFIX} ${programs})
else()
  message(STATUS "built ${programs}; not run: this build uses the system's runtime paths")
endif()
