# The target: 32-bit big-endian powerpc. Programs of the build run under qemu's user emulation.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ppc)
set(CMAKE_C_COMPILER powerpc-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER powerpc-linux-gnu-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-ppc -L /usr/powerpc-linux-gnu)

# Nothing is thrown through the library, so it carries no tables for it; and it is small enough for the shorter way
# to its addresses. What is optimized across sources is compiled once more when it is linked.
foreach(option -fno-asynchronous-unwind-tables -fpic)
  add_compile_options($<$<STREQUAL:$<TARGET_PROPERTY:NAME>,bci_objects>:${option}>)
  add_link_options($<$<STREQUAL:$<TARGET_PROPERTY:NAME>,bci_shared>:${option}>)
endforeach()
