#!/usr/bin/env bash
# Builds the module and the C++ tests with AddressSanitizer and UBSan and
# runs the test suite under them.  Used by CI; handy before a commit that
# touches memory handling.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${KOLVEX_ASAN_DIR:-$root/build/asan}"
python="${PYTHON:-python3}"
gen=""
command -v ninja >/dev/null && gen="-G Ninja"
cmake -S "$root" -B "$build" $gen -DCMAKE_BUILD_TYPE=Debug -DKOLVEX_SANITIZE=ON \
      -DKOLVEX_PYTHON=ON -DKOLVEX_TESTS=ON -DPython_EXECUTABLE="$(command -v "$python")" >/dev/null
cmake --build "$build" --parallel 2
export ASAN_OPTIONS="detect_leaks=0:abort_on_error=1:allocator_may_return_null=1"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
(cd "$(mktemp -d)" && "$build/kolvex_cpptest" && "$build/kolvex_ctest")
# The interpreter is not built with the sanitizer: its runtime goes first.
export LD_PRELOAD="$(g++ -print-file-name=libasan.so):$(g++ -print-file-name=libubsan.so)"
KOLVEX_BUILD_DIR="$build" KOLVEX_NATIVE_BUILD_DIR="$build" \
    "$python" -m pytest -q -p no:cacheprovider "$root/tests" "$@"
