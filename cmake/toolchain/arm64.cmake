# Cross-compiles for arm64 on Debian, with the package g++-aarch64-linux-gnu and the libraries of the packages that end
# in ":arm64"; scripts/arm64 makes a system that has them.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/aarch64-linux-gnu/pkgconfig:/usr/share/pkgconfig)
# What the build runs of its own runs in this, where it is installed; see USBINFO_NATIVE_COMMAND for the other way.
find_program(QEMU_AARCH64 NAMES qemu-aarch64-static qemu-aarch64)
if(QEMU_AARCH64)
  set(CMAKE_CROSSCOMPILING_EMULATOR "${QEMU_AARCH64}")
endif()
