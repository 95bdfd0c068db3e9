#!/usr/bin/env bash
# Counts the instructions that each stage of each shape takes at n and at 2n. The counts do not
# depend on what else the machine does. No count may grow by a factor of more than 2.2.
#
#     growth.sh GROWTH [SHAPE...]

set -euo pipefail

growth=$1
shift
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# counts SHAPE N: a line "STAGE INSTRUCTIONS" for each stage.
counts() {
    local out=$scratch/callgrind.out
    rm -f "$out"*
    valgrind --tool=callgrind --instr-atstart=no --callgrind-out-file="$out" "$growth" "$1" "$2" \
        > "$scratch/log" 2>&1 || { cat "$scratch/log" >&2; return 1; }
    awk '/^desc: Trigger: Client Request: / { stage = $NF }
        /^(summary|totals):/ { if (stage) print stage, $2; stage = "" }' "$out".*
}

shapes() {
    if (($# == 0)); then
        "$growth"
    else
        "$growth" | grep -E "^($(IFS='|'; echo "$*")) "
    fi
}

printf '%-34s %8s  %s\n' shape n 'instructions at 2n / at n'
status=0
while read -r shape n; do
    counts "$shape" "$n" > "$scratch/once"
    counts "$shape" "$((2 * n))" > "$scratch/twice"
    # Stages of fewer than 100,000 instructions cost the same at any size, apart from noise.
    paste -d' ' "$scratch/once" "$scratch/twice" | awk -v shape="$shape" -v n="$n" '
        { ratio = $4 / ($2 < 1 ? 1 : $2); row = row sprintf("  %s %.2f", $1, ratio); ++stages
          if ($1 != $3 || (ratio > 2.2 && $4 > 100000)) bad = 1 }
        END {
          printf "%-34s %8d%s%s\n", shape, n, row, bad ? "   <-- more than linear" : ""
          exit bad || stages != 6
        }' || status=1
done < <(shapes "$@")
exit "$status"
