#!/bin/sh
# Builds a stranger's program with what pkg-config says of the installed library, and holds what it prints.
# Usage: WithPkgConfig.sh COMPILER SOURCE LIBDIR PROGRAM [EXPECTED]
set -eu
compiler=$1 source=$2 libdir=$3 program=$4
PKG_CONFIG_PATH=$libdir/pkgconfig
export PKG_CONFIG_PATH
# shellcheck disable=SC2046 # the flags are words
"$compiler" -std=c++17 "$source" $(pkg-config --cflags --libs norvex) -o "$program"
LD_LIBRARY_PATH=$libdir "$program" >"$program.out" 2>"$program.err"
if [ $# -gt 4 ]; then
    diff "$5" "$program.out"
else
    echo "bitrate 96000, sample format fltp" | diff - "$program.out"
    echo "no such container: betamax" | diff - "$program.err"
fi
