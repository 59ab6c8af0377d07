#!/usr/bin/env bash
# Times `forgeset -all` on a product of FILES files against `dpkg-deb -b` of
# the same files staged beforehand in a directory (what a packager without
# forgeset would have to make), both with xz, in one run.  Then builds the
# same count of files of a larger SIZE to show that forgeset's memory
# follows the number of files, not their sizes.
#   bench/forgeset_bench.sh [FILES] [SIZE] [BIG_SIZE]   (defaults 100000 512 4096)
# Wall time and CPU time (user + system, children included) are both shown:
# on a shared machine the CPU time is the steadier comparison.
# Measured on the 2-core development machine under load (RelWithDebInfo):
# 100,000 files of 512 bytes, forgeset 73.2 s wall / 64.0 s CPU / 328 MB
# peak against dpkg-deb 91.6 s / 68.2 s / 254 MB (0.80x wall, 0.94x CPU); the
# same count of 4,096-byte files 343 MB peak (the xz encoder's buffers and
# one record per file; file contents are streamed).
# FORGESET=path uses a forgeset already built; otherwise a release tree is
# built in out/bench.  The data goes to a scratch directory.
set -euo pipefail
cd "$(dirname "$0")/.."
files=${1:-100000} size=${2:-512} big=${3:-4096}

if [[ -z ${FORGESET:-} ]]; then
  cmake -S . -B out/bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DTAMBLIN_UI=OFF >/dev/null
  cmake --build out/bench -j "${BUILD_JOBS:-2}" --target forgeset >/dev/null
  FORGESET=$PWD/out/bench/forgeset/forgeset
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export SOURCE_DATE_EPOCH=1700000000 DEBFULLNAME=Bench DEBEMAIL=bench@example.org

# make_tree DIR SIZE: FILES files of SIZE bytes (text that compresses like
# real data does, not like zeros) in directories of 100, and the idb.
make_tree() {
  python3 - "$1" "$files" "$2" <<'PY'
import os, random, sys
root, n, size = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
rnd = random.Random(1)
words = [''.join(rnd.choice('abcdefghijklmnopqrstuvwxyz') for _ in range(rnd.randint(2, 9)))
         for _ in range(2000)]
with open(os.path.join(root, 'bench.idb'), 'w') as idb:
    for i in range(n):
        d = 'd%04d' % (i // 100)
        os.makedirs(os.path.join(root, 'tree', d), exist_ok=True)
        text = []
        length = 0
        while length < size:
            w = rnd.choice(words)
            text.append(w)
            length += len(w) + 1
        with open(os.path.join(root, 'tree', d, 'f%06d' % i), 'w') as f:
            f.write(' '.join(text)[:size])
        idb.write('f 0644 root root usr/share/bench/%s/f%06d %s/f%06d bench.data.files\n'
                  % (d, i, d, i))
PY
  cat >"$1/bench.spec" <<'SPEC'
product bench
    id "Benchmark product"
    image data
        id "Benchmark data"
        version 1
        subsys files
            id "Benchmark files"
            default
            exp bench.data.files
        endsubsys
    endimage
endproduct
SPEC
}

# run LABEL COMMAND...: wall seconds, CPU seconds and peak resident set (KB)
run() {
  local label=$1
  shift
  sync
  /usr/bin/time -f "%e %U %S %M" -o "$work/$label.time" "$@" >"$work/$label.out" 2>&1 ||
    { echo "bench: $label failed"; cat "$work/$label.out"; exit 1; }
  awk '{ printf "%s %.2f %s\n", $1, $2 + $3, $4 }' "$work/$label.time"
}

mkdir "$work/small" "$work/big"
make_tree "$work/small" "$size"
# The staged copy dpkg-deb needs, and its control file.
mkdir -p "$work/stage/DEBIAN" "$work/stage/usr/share/bench"
cp -r "$work/small/tree/." "$work/stage/usr/share/bench/"
printf 'Package: bench.data.files\nVersion: 1\nArchitecture: all\nMaintainer: Bench <bench@example.org>\nDescription: Benchmark files\n' \
  >"$work/stage/DEBIAN/control"
find "$work/small/tree" -type f -exec cat {} + >/dev/null  # warm cache for both

read -r f_wall f_cpu f_rss < <(run forgeset "$FORGESET" -sbase "$work/small/tree" -idb "$work/small/bench.idb" \
  -spec "$work/small/bench.spec" -dist "$work/dist" -all)
read -r d_wall d_cpu d_rss < <(run dpkg-deb dpkg-deb --root-owner-group -Zxz -b "$work/stage" "$work/ref.deb")
fdeb=$(ls "$work"/dist/bench.data.files_*.deb)
n_forgeset=$(dpkg-deb --contents "$fdeb" | grep -c '^-')
n_dpkg=$(dpkg-deb --contents "$work/ref.deb" | grep -c '^-')

make_tree "$work/big" "$big"
read -r b_wall b_cpu b_rss < <(run forgeset-big "$FORGESET" -sbase "$work/big/tree" -idb "$work/big/bench.idb" \
  -spec "$work/big/bench.spec" -dist "$work/dist-big" -all)

echo "forgeset bench: $files files of $size bytes, xz ($(nproc) cores, load $(cut -d' ' -f1 /proc/loadavg))"
printf '  forgeset -all          %7.2f s wall %7.2f s CPU %8d KB peak  (%d files, %d bytes)\n' \
  "$f_wall" "$f_cpu" "$f_rss" "$n_forgeset" "$(stat -c %s "$fdeb")"
printf '  dpkg-deb -b (staged)   %7.2f s wall %7.2f s CPU %8d KB peak  (%d files, %d bytes)\n' \
  "$d_wall" "$d_cpu" "$d_rss" "$n_dpkg" "$(stat -c %s "$work/ref.deb")"
awk -v f="$f_wall" -v d="$d_wall" -v fc="$f_cpu" -v dc="$d_cpu" \
  'BEGIN { printf "  forgeset / dpkg-deb    %7.2fx wall %6.2fx CPU\n", f / d, fc / dc }'
printf '  forgeset, %d-byte files %6.2f s wall %7.2f s CPU %8d KB peak (files %dx larger)\n' "$big" \
  "$b_wall" "$b_cpu" "$b_rss" "$((big / size))"
