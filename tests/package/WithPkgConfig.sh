#!/bin/sh
# Builds a stranger's program with what pkg-config says of an installed library, and holds the lines that it prints.
# Usage: WithPkgConfig.sh COMPILER LIBDIR PROGRAM SOURCE MODULE LINE...
set -eu
compiler=$1 libdir=$2 program=$3 source=$4 module=$5
shift 5
PKG_CONFIG_PATH=$libdir/pkgconfig
export PKG_CONFIG_PATH
# shellcheck disable=SC2046 # the flags are words
"$compiler" -std=c++17 "$source" $(pkg-config --cflags --libs "$module") -o "$program"
LD_LIBRARY_PATH=$libdir "$program" >"$program.out" 2>&1
for line; do
    grep -qxF "$line" "$program.out" || { cat "$program.out"; exit 1; }
done
