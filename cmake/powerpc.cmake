# Builds for a 32-bit big-endian PowerPC with Debian's g++-powerpc-linux-gnu, and runs what was
# built in qemu-user: cmake -S . -B build/powerpc --toolchain cmake/powerpc.cmake
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR powerpc)
set(CMAKE_CXX_COMPILER powerpc-linux-gnu-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-ppc)

# The programs name their libraries' folder themselves. "qemu-ppc -L" would look into that folder for
# every absolute path that a program opens, and show it that folder in place of "/". The older form
# of an rpath also serves the libraries of the libraries.
set(libraries /usr/powerpc-linux-gnu/lib)
set(CMAKE_EXE_LINKER_FLAGS_INIT
    "-Wl,--dynamic-linker=${libraries}/ld.so.1 -Wl,--disable-new-dtags,-rpath,${libraries}")

# No library of this machine is taken for one of that machine.
set(CMAKE_FIND_ROOT_PATH /usr/powerpc-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
