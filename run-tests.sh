#!/usr/bin/env bash
# Installs what the tests need, builds, and runs every test: as shipped, under AddressSanitizer and
# UndefinedBehaviorSanitizer, and those that share objects between threads under ThreadSanitizer.
set -eu
cd "$(dirname "$0")"
scripts/install-packages.sh build hosts tests speech

launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
build() {
  cmake --preset "$1" "${launcher[@]}" >/dev/null
  cmake --build --preset "$1" "${@:2}"
}

build tsan --target test_threads
ctest --preset tsan -j "$(nproc)"
build asan --target checks
ctest --preset asan -j "$(nproc)"
build release --target checks
ctest --preset release -j "$(nproc)"
