#!/usr/bin/env bash
# Every behaviour that a keeps_ test pins is named in doc/behaviour.md, and every behaviour named
# there has its test.

set -euo pipefail

top=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

tested() {
    grep -hoE 'TEST[A-Z_]*\([a-z_0-9]+, keeps_[a-z0-9_]+' -r "$top/tests" --include="*_test.cpp" |
        grep -oE 'keeps_[a-z0-9_]+' | sort -u
}
documented() { grep -oE '\bkeeps_[a-z0-9]+[a-z0-9_]*' "$top/doc/behaviour.md" | sort -u; }

diff <(tested) <(documented)
