# Cross-compiles for arm64 on Debian, with the package g++-aarch64-linux-gnu and the libraries of the packages that end
# in ":arm64"; scripts/arm64 makes a system that has them.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/aarch64-linux-gnu/pkgconfig:/usr/share/pkgconfig)
set(USBINFO_NATIVE_COMMAND "" CACHE FILEPATH "A usbinfo that runs on this machine, for what the build generates with it")
