# SPDX-License-Identifier: GPL-2.0-or-later
# Cross-compiling for the board: 32-bit ARM (Debian armhf) with Debian's cross
# compiler against a private sysroot of Debian armhf packages (scripts/cross-build
# makes it). Programs built here that the build runs (the icon renderer) and the
# tests under ctest run through qemu-user with the sysroot as its library prefix.
#   ORVELLA_ARMHF_SYSROOT (environment)  the sysroot; default build-armhf/sysroot
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)

if(DEFINED ENV{ORVELLA_ARMHF_SYSROOT})
    set(ORVELLA_ARMHF_SYSROOT "$ENV{ORVELLA_ARMHF_SYSROOT}")
else()
    get_filename_component(ORVELLA_ARMHF_SYSROOT "${CMAKE_CURRENT_LIST_DIR}/../build-armhf/sysroot" ABSOLUTE)
endif()
if(NOT EXISTS "${ORVELLA_ARMHF_SYSROOT}/usr/include/arm-linux-gnueabihf")
    message(FATAL_ERROR "no armhf sysroot at ${ORVELLA_ARMHF_SYSROOT}: scripts/cross-build makes it")
endif()

set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_SYSROOT "${ORVELLA_ARMHF_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Debian's armhf baseline stops at VFPv3-D16; the board's Cortex-A cores all
# have NEON, and the per-frame loops of the camera thread are written for the
# compiler to vectorise with it.
set(CMAKE_C_FLAGS_INIT "-mfpu=neon")
set(CMAKE_CXX_FLAGS_INIT "-mfpu=neon")
# The sysroot is unpacked packages, not an installed system: no ld.so.conf
# tells the linker where the libraries' own dependencies are.
set(ORVELLA_ARMHF_LINK_FLAGS
    "-Wl,-rpath-link,${ORVELLA_ARMHF_SYSROOT}/lib/arm-linux-gnueabihf -Wl,-rpath-link,${ORVELLA_ARMHF_SYSROOT}/usr/lib/arm-linux-gnueabihf")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${ORVELLA_ARMHF_LINK_FLAGS}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${ORVELLA_ARMHF_LINK_FLAGS}")

set(ENV{PKG_CONFIG_SYSROOT_DIR} "${ORVELLA_ARMHF_SYSROOT}")
set(ENV{PKG_CONFIG_LIBDIR}
    "${ORVELLA_ARMHF_SYSROOT}/usr/lib/arm-linux-gnueabihf/pkgconfig:${ORVELLA_ARMHF_SYSROOT}/usr/share/pkgconfig")

find_program(ORVELLA_QEMU_ARM NAMES qemu-arm-static qemu-arm REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR "${ORVELLA_QEMU_ARM};-L;${ORVELLA_ARMHF_SYSROOT}")

# Qt's own tools (moc, uic, rcc, lrelease) must be the build machine's.
set(CMAKE_PROJECT_orvella_INCLUDE "${CMAKE_CURRENT_LIST_DIR}/qthosttools.cmake")
