# The Debian packages each job needs (sourced by the job scripts).
VELORA_BUILD_PACKAGES=(cmake ninja-build g++ pkgconf)
VELORA_TEST_PACKAGES=("${VELORA_BUILD_PACKAGES[@]}" googletest clang clang-format libclang-rt-14-dev
  g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 wine64)
VELORA_BENCH_PACKAGES=("${VELORA_BUILD_PACKAGES[@]}" libbenchmark-dev libfmt-dev libquickfix-dev
  libboost-dev libreaderwriterqueue-dev)
VELORA_FUZZ_PACKAGES=("${VELORA_BUILD_PACKAGES[@]}" clang libclang-rt-14-dev)
