#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Times quillary-list (walk + sizes + the four listing files) against du -sk, find -printf and gdu on the same
# warm tree, with peak memory. The tree is made once by bench/make_tree.py (or the generator MKTREE names, which
# takes the same arguments): 1,000,000 files in 100,000 folders.
#
#   bench/run.sh                 # tree in bench/out/tree1m
#   BENCH_TREE=/some/tree bench/run.sh
#   RUNS=5 bench/run.sh
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
top="$(dirname "$here")"
bin="${BIN:-$top/build/bin}"
mktree="${MKTREE:-$here/make_tree.py}"
tree="${BENCH_TREE:-$here/out/tree1m}"
runs="${RUNS:-3}"
out="$(mktemp -d)"
trap 'rm -rf "$out"' EXIT

if [ ! -d "$tree" ]; then
    echo "Making $tree (1,000,000 files in 100,000 folders; this takes a while)..."
    mkdir -p "$(dirname "$tree")"
    "$mktree" "$tree" --files 1000000 --dirs 100000
fi

# name|command ; each run's output goes to /dev/null
cmds=(
    "quillary-list|$bin/quillary-list --no-catalogue --out $out --yes --name bench $tree"
    "du -sk|du -sk $tree"
    "find -printf|find $tree -printf %s\\n"
    "gdu|gdu --non-interactive --no-progress $tree"
)

# This machine drops idle page cache after about 30 s: warm everything right before timing.
for c in "${cmds[@]}"; do bash -c "${c#*|}" >/dev/null 2>&1 || true; done

declare -A best_wall best_rss
for c in "${cmds[@]}"; do
    name="${c%%|*}"
    cmd="${c#*|}"
    for ((i = 0; i < runs; i++)); do
        /usr/bin/time -f '%e %M' -o "$out/time" bash -c "exec $cmd" >/dev/null 2>&1 || true
        read -r wall rss <"$out/time"
        if [ -z "${best_wall[$name]:-}" ] || awk "BEGIN{exit !($wall < ${best_wall[$name]})}"; then
            best_wall[$name]=$wall
            best_rss[$name]=$rss
        fi
    done
done

du_wall=${best_wall["du -sk"]}
printf '\n%-16s %10s %10s %12s\n' tool "wall (s)" "vs du -sk" "peak RSS MB"
for c in "${cmds[@]}"; do
    name="${c%%|*}"
    w=${best_wall[$name]}
    printf '%-16s %10s %10.2f %12.1f\n' "$name" "$w" "$(awk "BEGIN{print $w / ($du_wall > 0 ? $du_wall : 1)}")" \
        "$(awk "BEGIN{print ${best_rss[$name]} / 1024}")"
done
echo
echo "Best of $runs warm runs each. quillary-list = walk + folder sizes + four listing files (not recorded in the catalogue:"
echo "quillary-catalogue-bench measures recording)."
echo
"$bin/quillary-bench" "$tree" "$out/bench"
