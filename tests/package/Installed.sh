#!/bin/sh
# Installs the library in a folder of its own, builds a stranger's project with what is there, and runs it.
# Usage: Installed.sh cmake|pkgconfig BUILD COMPILER LIBDIR PROJECT
set -eu
way=$1 build=$2 compiler=$3 libdir=$4 project=$5
here=$(dirname "$0")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cmake --install "$build" --prefix "$folder/stage" >"$folder/install.log"
if [ "$way" = cmake ]; then
    cmake -S "$project" -B "$folder/build" -DCMAKE_PREFIX_PATH="$folder/stage" -DCMAKE_CXX_COMPILER="$compiler"
    cmake --build "$folder/build"
    "$folder/build/host"
else
    "$here/WithPkgConfig.sh" "$compiler" "$project/main.cpp" "$folder/stage/$libdir" "$folder/stranger"
    # A host with a helper of its own, and what the page says that it prints.
    "$here/WithPkgConfig.sh" "$compiler" "$project/adding/main.cpp" "$folder/stage/$libdir" "$folder/adding" \
        "$project/adding/expected.txt"
fi
