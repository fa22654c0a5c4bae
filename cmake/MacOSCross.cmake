# Toolchain for the macOS edition on Linux: a pinned compiler, our own declarations and linker stubs.
# tools/macos/cross-build installs the compiler and makes the stubs.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR arm64)
get_filename_component(QUORVANE_ROOT "${CMAKE_CURRENT_LIST_DIR}" DIRECTORY)
set(QUORVANE_TOOLS "${QUORVANE_ROOT}/tools/macos/toolchain")
set(QUORVANE_SDK "${QUORVANE_ROOT}/platform/macos/sdk")
set(QUORVANE_STUBS "${QUORVANE_ROOT}/build/macos-toolchain/stubs")

set(CMAKE_CXX_COMPILER "${QUORVANE_TOOLS}/c++")
set(CMAKE_OBJCXX_COMPILER "${QUORVANE_TOOLS}/c++")
set(CMAKE_C_COMPILER "${QUORVANE_TOOLS}/c++")
set(CMAKE_AR "${QUORVANE_TOOLS}/ar" CACHE FILEPATH "")
set(CMAKE_RANLIB "${QUORVANE_TOOLS}/ranlib" CACHE FILEPATH "")
set(CMAKE_INSTALL_NAME_TOOL "/bin/false" CACHE FILEPATH "")  # required, never run
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
# The compiler searches no SDK; these are its only frameworks.
set(CMAKE_OSX_SYSROOT "" CACHE STRING "")
# The compiler's driver also passes the language to itself.
set(CMAKE_OBJCXX_FLAGS_INIT "-isystem ${QUORVANE_SDK} -Wno-unused-command-line-argument")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-F${QUORVANE_STUBS}/System/Library/Frameworks -L${QUORVANE_STUBS}/usr/lib")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "${CMAKE_EXE_LINKER_FLAGS_INIT}")

# The build machine's headers must not be found; headers for every system are linked in by name.
set(CMAKE_FIND_ROOT_PATH "${QUORVANE_ROOT}/build/macos-toolchain/portable")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
