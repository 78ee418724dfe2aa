# Builds on Debian for another of its architectures: with the cross compiler of the package g++-TRIPLET, the libraries of an
# unpacked root, and what is built is run by qemu-user. tests/portable.sh makes the root and sets the variables.
#
#   CORVANE_TRIPLET   i686-linux-gnu, aarch64-linux-gnu, s390x-linux-gnu, ...
#   CORVANE_EMULATOR  the program of qemu-user
#   CMAKE_SYSROOT     the root

list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CORVANE_TRIPLET CORVANE_EMULATOR)
string(REGEX MATCH "^[a-z0-9_]+" CMAKE_SYSTEM_PROCESSOR "${CORVANE_TRIPLET}")
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_CXX_COMPILER ${CORVANE_TRIPLET}-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CORVANE_EMULATOR} -L ${CMAKE_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
