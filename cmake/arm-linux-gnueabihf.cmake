# 32-bit ARM hard-float Linux, built with Debian's cross compiler; its tests run under qemu-arm.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)

set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)

# All is built by one compiler: notes on calls between old and new ones say nothing here.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)

# The compiler's own libraries, and what it does not bring.
set(bsp_target_libc /usr/arm-linux-gnueabihf)
cmake_path(SET bsp_target_sysroot NORMALIZE "${CMAKE_CURRENT_LIST_DIR}/../build/arm-sysroot")
execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/arm-sysroot.sh ${bsp_target_sysroot}
  COMMAND_ERROR_IS_FATAL ANY)

set(CMAKE_FIND_ROOT_PATH ${bsp_target_sysroot} ${bsp_target_libc})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${bsp_target_sysroot})
set(ENV{PKG_CONFIG_LIBDIR}
  ${bsp_target_sysroot}/usr/lib/arm-linux-gnueabihf/pkgconfig:${bsp_target_sysroot}/usr/share/pkgconfig)

# A shared library of the system root may need another one.
set(CMAKE_EXE_LINKER_FLAGS_INIT
  "-Wl,-rpath-link,\"${bsp_target_sysroot}/usr/lib/arm-linux-gnueabihf\"")

# For tests only.
find_program(BSP_QEMU_ARM qemu-arm)
if(BSP_QEMU_ARM)
  set(CMAKE_CROSSCOMPILING_EMULATOR
    ${BSP_QEMU_ARM} -L ${bsp_target_libc}
    -E LD_LIBRARY_PATH=${bsp_target_sysroot}/lib/arm-linux-gnueabihf:${bsp_target_sysroot}/usr/lib/arm-linux-gnueabihf)
endif()
