# 64-bit Windows with MinGW-w64: the same sources for x64 hosts. The rest is as in Win32Toolchain.cmake.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/run-wine)

# On x64 every function that moves the stack has to be known to the system: where one is not, an exception below it (a
# volume that the host has freed) ends the process before the host's own handler is asked.
set(ZENTRA_UNWIND_TABLES ON)

# Functions with unwind data cannot realign the stack, which is aligned to 16 bytes here: GCC nevertheless stores wider
# registers with instructions that want more, and crashes. The assembler takes those that do not care instead; they
# are as fast.
set(ZENTRA_UNALIGNED_VECTOR_MOVES ON)
