# Builds on another machine for 64-bit Arm, with Debian's cross compiler and packages (script/bootstrap --arm64).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
# Optimized for Arm, g++ 12 sees strings of its own library overlap where they do not.
set(CMAKE_CXX_FLAGS_INIT -Wno-restrict)
find_program(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 REQUIRED)

# Qt's own tools run on this machine.
set(QT_HOST_PATH /usr)
file(GLOB QT_HOST_PATH_CMAKE_DIR /usr/lib/${CMAKE_HOST_SYSTEM_PROCESSOR}-linux-gnu/cmake)
