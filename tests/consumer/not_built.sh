#!/usr/bin/env bash
# Where the libraries and the tool have not been built, an installation stops before it copies
# anything, and says what is missing. scripts/run would build all of that:
#     not_built.sh SOURCE_FOLDER WORK_FOLDER
set -euo pipefail
sources=$1 work=$2

complain() {
    echo "$*" >&2
    exit 1
}

rm -rf "$work"
mkdir -p "$work/sources" "$work/bin"
(cd "$sources" && cp -r CHANGELOG.md CMakeLists.txt CMakePresets.json cmake doc include scripts \
    src tools "$work/sources")

# scripts/run with a cmake that configures, but only tells what it would build.
cat > "$work/bin/cmake" << END
#!/bin/sh
[ "\$1" = --build ] || exec '$(command -v cmake)' "\$@"
'$(command -v cmake)' "\$@" -- -n > '$work/steps'
END
chmod +x "$work/bin/cmake"
PATH=$work/bin:$PATH "$work/sources/scripts/run" > "$work/output" 2>&1 || true
[[ -s $work/steps ]] || complain "$(< "$work/output")"

# not_built [OPTION...]: the files that an installation misses, relative to the folder of the build.
not_built() {
    if cmake --install "$work/sources/build/release" --prefix "$work/prefix" "$@" \
        > "$work/output" 2>&1; then
        complain "an installation of nothing has succeeded"
    fi
    [[ ! -e $work/prefix ]] || complain "installed, though not complete: $(find "$work/prefix")"
    grep -q 'mailstructure is not installed' "$work/output" || complain "$(< "$work/output")"
    sed -nE "s#^ *$work/sources/build/release/([^: ]+)\$#\1#p" "$work/output"
}

shared=src/libmailstructure.so.1.0.0 static=src/libmailstructure.a tool=tools/mailstructure
diff <(not_built) <(printf '%s\n' $shared $static $tool)
diff <(not_built --component runtime) <(echo $shared)
diff <(not_built --component development) <(echo $static)
diff <(not_built --component tool) <(echo $tool)
for file in $shared $static $tool; do
    grep -q " $file\b" "$work/steps" || complain "scripts/run does not build $file"
done
