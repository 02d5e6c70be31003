# Cross build for 32-bit ARM Linux (Debian armhf) with Debian's cross
# compilers; target libraries (GoogleTest, Google Benchmark) come from the
# armhf multiarch packages, and so do the C and C++ runtimes that programs
# built here load when they run under qemu-arm (its default prefix finds the
# multiarch loader in /lib).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)

# A machine without the cross compilers is told what to install, not that
# "arm-linux-gnueabihf-gcc" is not a full path to an existing compiler.
find_program(ATAPI_ARMHF_GCC arm-linux-gnueabihf-gcc)
find_program(ATAPI_ARMHF_GXX arm-linux-gnueabihf-g++)
if(NOT ATAPI_ARMHF_GCC OR NOT ATAPI_ARMHF_GXX)
  message(FATAL_ERROR "The armhf build needs Debian's cross compilers arm-linux-gnueabihf-gcc "
                      "and arm-linux-gnueabihf-g++, which are not on PATH. Install them with\n"
                      "  apt-get install g++-arm-linux-gnueabihf\n"
                      "or run scripts/install-deps.sh, which also installs qemu-user and the "
                      "armhf libraries that the tests need.")
endif()
set(CMAKE_C_COMPILER ${ATAPI_ARMHF_GCC})
set(CMAKE_CXX_COMPILER ${ATAPI_ARMHF_GXX})

find_program(ATAPI_QEMU_ARM qemu-arm)
get_property(in_try_compile GLOBAL PROPERTY IN_TRY_COMPILE)
if(NOT ATAPI_QEMU_ARM AND NOT in_try_compile)
  message(WARNING "qemu-arm is not on PATH: the armhf programs build, but the tests cannot run. "
                  "Install it with\n  apt-get install qemu-user")
endif()
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm)

# Everything here is built by the one cross compiler, so GCC's note that the
# passing of some aggregates changed in GCC 7.1 concerns nothing we link.
string(APPEND CMAKE_CXX_FLAGS_INIT " -Wno-psabi")
