#!/bin/sh
# Installs the library in a folder of its own, builds the stranger's program with what is there, and runs it.
# Usage: Installed.sh cmake|pkgconfig BUILD COMPILER LIBDIR
set -eu
way=$1 build=$2 compiler=$3 libdir=$4
here=$(dirname "$0")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cmake --install "$build" --prefix "$folder/stage" >"$folder/install.log"
if [ "$way" = cmake ]; then
    cmake -S "$here" -B "$folder/build" -DCMAKE_PREFIX_PATH="$folder/stage" -DCMAKE_CXX_COMPILER="$compiler"
    cmake --build "$folder/build"
    "$folder/build/stranger"
else
    "$here/WithPkgConfig.sh" "$compiler" "$folder/stage/$libdir" "$folder/stranger"
fi
