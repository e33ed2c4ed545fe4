# Cross-compiles for a 32-bit big-endian PowerPC with Debian's g++-powerpc-linux-gnu, and runs the
# programs in qemu-user: cmake -S . -B build/powerpc --toolchain cmake/powerpc.cmake
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR powerpc)
set(CMAKE_CXX_COMPILER powerpc-linux-gnu-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-ppc)

# The programs are linked with the path of their libraries. "qemu-ppc -L" would instead redirect every
# absolute path that a program opens to that folder. The older DT_RPATH also applies to indirect
# dependencies.
set(libraries /usr/powerpc-linux-gnu/lib)
set(CMAKE_EXE_LINKER_FLAGS_INIT
    "-Wl,--dynamic-linker=${libraries}/ld.so.1 -Wl,--disable-new-dtags,-rpath,${libraries}")

# Do not use libraries of the build machine.
set(CMAKE_FIND_ROOT_PATH /usr/powerpc-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
