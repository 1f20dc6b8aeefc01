#!/bin/sh
# Builds a stranger's program with what pkg-config says of an installed library, and looks for the lines that the
# project's page says it prints.
# Usage: WithPkgConfig.sh COMPILER PROJECT MODULE LIBDIR PROGRAM
set -eu
compiler=$1 project=$2 module=$3 libdir=$4 program=$5
PKG_CONFIG_PATH=$libdir/pkgconfig
export PKG_CONFIG_PATH
# shellcheck disable=SC2046 # the flags are words
"$compiler" -std=c++17 "$project/main.cpp" $(pkg-config --cflags --libs "$module") -o "$program"
LD_LIBRARY_PATH=$libdir "$program" >"$program.out" 2>&1
# What is expected and was not printed.
if grep -vxFf "$program.out" "$project/expected.txt"; then
    cat "$program.out"
    exit 1
fi
