# For s390x, where the most significant byte lies first: Debian's cross compiler, the libraries that
# `scripts/setup cross` unpacks, and qemu for ctest to run the programs with.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR s390x)
set(CMAKE_CXX_COMPILER s390x-linux-gnu-g++)

get_filename_component(unpacked ${CMAKE_CURRENT_LIST_DIR}/../build/unpacked-s390x ABSOLUTE)
set(CMAKE_FIND_ROOT_PATH ${unpacked})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# Where libssl-dev keeps the headers that differ between machines.
set(CMAKE_CXX_FLAGS_INIT "-isystem ${unpacked}/usr/include/s390x-linux-gnu")

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-s390x -L /usr/s390x-linux-gnu)
