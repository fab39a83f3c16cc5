#!/usr/bin/env bash
# Builds the fuzz targets as OSS-Fuzz wants them, whose containers set these variables: with the compiler CXX and the
# flags in CXXFLAGS, against LIB_FUZZING_ENGINE, into the folder OUT, where seeds, a dictionary and options lie beside
# each target. What is in OUT runs alone; so the library is linked statically. ICU takes part where ICU_ROOT names one
# that was built with the same flags.

set -euo pipefail
: "${CXX:?}" "${CXXFLAGS?}" "${LIB_FUZZING_ENGINE:?}" "${OUT:?}"
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=${WORK:-$root/build}/oss-fuzz
icu=ON
[ -n "${ICU_ROOT:-}" ] || icu=OFF

cmake -S "$root" -B "$build" -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_CXX_FLAGS="$CXXFLAGS" -DBUILD_SHARED_LIBS=OFF \
    -DTESSIT_ICU=$icu -DTESSIT_BUILD_FUZZERS=ON -DTESSIT_FUZZING_ENGINE="$LIB_FUZZING_ENGINE" -DTESSIT_BUILD_TOOL=OFF \
    -DTESSIT_BUILD_TESTS=OFF -DTESSIT_BUILD_EXAMPLES=OFF
cmake --build "$build" --parallel "$(nproc)"

seeds=$build/seeds
rm -rf "$seeds"
cp -r "$root/fuzz/corpus" "$seeds"
tar -xJf "$root/fuzz/corpus.tar.xz" -C "$seeds"
mkdir -p "$OUT"
for target in "$build"/fuzz/fuzz_*; do
    name=$(basename "$target")
    cp "$target" "$root/fuzz/markup.dict" "$OUT"
    printf '[libfuzzer]\nmax_len = 4096\ndict = markup.dict\n' >"$OUT/$name.options"
    (cd "$seeds/${name#fuzz_}" && cmake -E tar cf "$OUT/${name}_seed_corpus.zip" --format=zip .)
done
