#!/bin/sh
# Holds the Python package against its tests, its types and the pages that show it. It is imported from FOLDER; with
# PRELOAD, libraries that a sanitizer needs.
# Usage: Check.sh PYTHON FOLDER SOURCE [PRELOAD]
set -eu
python=$1 source=$3
export PYTHONPATH="$2" MYPYPATH="$2" PYTHONDONTWRITEBYTECODE=1
clean=$(mktemp -d)
trap 'rm -rf "$clean"' EXIT
cp -r "$source/tests/python" "$clean/tests"
cp "$source/README.md" "$source/docs/python.md" "$clean"
cd "$clean"
if [ $# -lt 4 ]; then
    "$python" -m mypy --strict -p norvex
    "$python" -m mypy --strict tests
    "$python" -m mypy.stubtest norvex --allowlist tests/mypy-stubtest.txt
else
    # Types are the same there.
    export LD_PRELOAD="$4" ASAN_OPTIONS=detect_leaks=0 PYTHONMALLOC=malloc
fi
"$python" -m pytest -q -p no:cacheprovider tests
# Each page in a process of its own: what it registers is in time.
for page in README.md python.md; do "$python" -m pytest -q -p no:cacheprovider --doctest-glob='*.md' "$page"; done
