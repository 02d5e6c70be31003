# Cross build for 32-bit ARM Linux (Debian armhf) with Debian's cross
# compilers; target libraries (GoogleTest, Google Benchmark) come from the
# armhf multiarch packages, and so do the C and C++ runtimes that programs
# built here load when they run under qemu-arm (its default prefix finds the
# multiarch loader in /lib).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm)
