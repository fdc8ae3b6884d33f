#!/usr/bin/env bash
# Builds the module and the C++ tests with ThreadSanitizer and runs the
# thread tests under it: sessions of several threads with one shared block
# and with a block per thread.  Used by CI; small enough to run often.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${KOLVEX_TSAN_DIR:-$root/build/tsan}"
python="${PYTHON:-python3}"
# The interpreter itself, not a launcher script in front of it: the
# sanitizer's runtime is preloaded into it and into the processes that the
# tests start with sys.executable.
python="$("$python" -c 'import sys; print(sys.executable)')"
gen=""
command -v ninja >/dev/null && gen="-G Ninja"
cmake -S "$root" -B "$build" $gen -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKOLVEX_TSAN=ON \
      -DKOLVEX_PYTHON=ON -DKOLVEX_TESTS=ON -DPython_EXECUTABLE="$python" >/dev/null
cmake --build "$build" --parallel 2 --target kolvex kolvex_cpptest
export TSAN_OPTIONS="halt_on_error=1:second_deadlock_stack=1:report_signal_unsafe=0"
(cd "$(mktemp -d)" && "$build/kolvex_cpptest" thread)
# The interpreter is not built with the sanitizer: its runtime goes first.
LD_PRELOAD="$(g++ -print-file-name=libtsan.so)" KOLVEX_BUILD_DIR="$build" "$python" -m pytest -q -p no:cacheprovider \
    "$root/tests/test_threads.py" "$root/tests/test_frame.py" -k "thread" "$@"
