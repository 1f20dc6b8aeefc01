#!/bin/sh
# Builds the stranger's program with what pkg-config says of the installed library, and runs it.
# Usage: WithPkgConfig.sh COMPILER LIBDIR PROGRAM
set -eu
compiler=$1 libdir=$2 program=$3
here=$(dirname "$0")
PKG_CONFIG_PATH=$libdir/pkgconfig
export PKG_CONFIG_PATH
# shellcheck disable=SC2046 # the flags are words
"$compiler" -std=c++17 "$here/main.cpp" $(pkg-config --cflags --libs norvex) -o "$program"
LD_LIBRARY_PATH=$libdir "$program"
