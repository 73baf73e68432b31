# Debian's clang targeting mingw-w64, over the GCC toolchain's headers and libraries (posix thread model):
# the product's second compiler, which keeps GCC-only constructs out of it. Builds the product, not tests.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# clang looks for the GCC release without the thread model's suffix: point it at the posix one.
file(GLOB gcc_dirs /usr/lib/gcc/x86_64-w64-mingw32/*-posix)
list(GET gcc_dirs 0 gcc_dir)
set(cxx_headers ${gcc_dir}/include/c++)
# GCC's library keeps thread_local variables (std::call_once's among them) in emulated TLS: so must we.
set(CMAKE_CXX_FLAGS_INIT "-femulated-tls -nostdinc++ -isystem ${cxx_headers} \
-isystem ${cxx_headers}/x86_64-w64-mingw32 -isystem ${cxx_headers}/backward")
set(CMAKE_C_FLAGS_INIT "-femulated-tls")
# The compile flags reach the link line too, where the header options have nothing to do.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-L${gcc_dir} -Qunused-arguments")
# winpthreads after the C++ library, which needs it.
set(CMAKE_CXX_STANDARD_LIBRARIES "-lstdc++ -lpthread")

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
