# Installs the build tree into a scratch prefix and checks what a user of the
# package gets: exactly the public headers under include/, and a
# find_package(atapi) consumer that builds and runs against both libraries
# without reaching any internal header.
#
#   cmake -D BUILD_DIR=... -D SOURCE_DIR=... -D WORK_DIR=... -D GENERATOR=...
#         -D C_COMPILER=... -D CXX_COMPILER=... [-D TOOLCHAIN_FILE=...]
#         [-D EMULATOR=...] [-D SANITIZE=...] [-D CONFIG=...] -P check_package.cmake

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT result EQUAL 0)
    string(REPLACE ";" " " command "${ARGN}")
    message(FATAL_ERROR "${command} failed (${result}):\n${out}")
  endif()
endfunction()

set(prefix ${WORK_DIR}/prefix)
set(config_option)
if(CONFIG)
  set(config_option --config ${CONFIG})
endif()
file(REMOVE_RECURSE ${WORK_DIR})
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix} ${config_option})

file(GLOB_RECURSE installed RELATIVE ${prefix}/include LIST_DIRECTORIES false ${prefix}/include/*)
file(GLOB expected RELATIVE ${SOURCE_DIR}/include ${SOURCE_DIR}/include/atapi/*.h)
list(SORT installed)
list(SORT expected)
if(NOT installed STREQUAL expected)
  message(FATAL_ERROR "installed headers: ${installed}\npublic headers: ${expected}")
endif()

set(consumer ${WORK_DIR}/consumer)
set(options -G ${GENERATOR} "-DCMAKE_BUILD_TYPE=${CONFIG}" -DCMAKE_PREFIX_PATH=${prefix}
            -DCMAKE_C_COMPILER=${C_COMPILER} -DCMAKE_CXX_COMPILER=${CXX_COMPILER}
            "-DCONSUMER_SANITIZE=${SANITIZE}")
if(TOOLCHAIN_FILE)
  list(APPEND options -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN_FILE})
endif()
run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/tests/package/consumer -B ${consumer} ${options})
run(${CMAKE_COMMAND} --build ${consumer})
foreach(program consumer_shared consumer_static)
  run(${EMULATOR} ${consumer}/${program})
endforeach()
message(STATUS "the package holds the public headers only; a consumer builds and runs")
