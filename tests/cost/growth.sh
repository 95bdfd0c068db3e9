#!/usr/bin/env bash
# Counts the instructions that each stage of each shape takes at n and at 2n. The counts do not
# depend on what else the machine does. No count may grow by a factor of more than 2.2.
#
#     growth.sh GROWTH classic|standard [SHAPE...]

set -euo pipefail

growth=$1
shift
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

valgrind --tool=callgrind --instr-atstart=no --callgrind-out-file="$scratch/out.%p" \
    "$growth" "$@" > "$scratch/log" 2>&1 || { cat "$scratch/log" >&2; exit 1; }

# Stages of fewer than 100,000 instructions cost the same at any size, apart from noise.
find "$scratch" -name 'out.*' -exec awk '
        /^desc: Trigger: Client Request: / { stage = $NF }
        /^(summary|totals):/ { if (stage) print stage, $2; stage = "" }' {} + |
    tr ':' ' ' | sort -k1,1 -k3,3 -k2,2n | awk '
        { shape = $1; n = $2; stage = $3; count = $4 }
        shape != last_shape { end_row(); last_shape = shape; row = ""; stages = bad = 0 }
        stage == last_stage { # the second of the two sizes
          ratio = count / (last_count < 1 ? 1 : last_count)
          row = row sprintf("  %s %.2f", stage, ratio); ++stages
          if (n != 2 * last_n || (ratio > 2.2 && count > 100000)) bad = 1
          stage = ""
        }
        { last_stage = stage; last_n = n; last_count = count; if (stage) first_n = n }
        function end_row() {
          if (last_shape == "") return
          bad = bad || stages != 9
          printf "%-34s %8d%s%s\n", last_shape, first_n, row, bad ? "   <-- more than linear" : ""
          all_bad = all_bad || bad; ++shapes
        }
        BEGIN { printf "%-34s %8s  %s\n", "shape", "n", "instructions at 2n / at n" }
        END { end_row(); exit all_bad || shapes == 0 }'
