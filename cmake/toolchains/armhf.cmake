# 32-bit ARM with hardware floating point, as in roadside boxes: `char` is unsigned there and `long` has
# four bytes. SCARD_SYSROOT names a Debian armhf root; programs run under emulation (qemu-arm).
# scripts/arm-root.sh makes such a root.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)

list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES SCARD_SYSROOT)
set(SCARD_SYSROOT "" CACHE PATH "Root of a Debian armhf system")
set(CMAKE_SYSROOT ${SCARD_SYSROOT})
set(CMAKE_FIND_ROOT_PATH ${SCARD_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${SCARD_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR} ${SCARD_SYSROOT}/usr/lib/arm-linux-gnueabihf/pkgconfig:${SCARD_SYSROOT}/usr/share/pkgconfig)

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm -L ${SCARD_SYSROOT})

find_program(SCARD_HOST_MOC moc PATHS /usr/lib/qt5/bin NO_CMAKE_FIND_ROOT_PATH NO_DEFAULT_PATH)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
