#!/bin/sh
# Installs the library in a folder of its own, builds strangers' projects with what is there, and runs them.
# Usage: Installed.sh cmake|pkgconfig BUILD COMPILER LIBDIR PROJECTS
set -eu
way=$1 build=$2 compiler=$3 libdir=$4 projects=$5
here=$(dirname "$0")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cmake --install "$build" --prefix "$folder/stage" >"$folder/install.log"
if [ "$way" = cmake ]; then
    for project in README preset-document; do
        cmake -S "$projects/$project" -B "$folder/$project" \
            -DCMAKE_PREFIX_PATH="$folder/stage" -DCMAKE_CXX_COMPILER="$compiler"
        cmake --build "$folder/$project"
        "$folder/$project/host"
    done
else
    "$here/WithPkgConfig.sh" "$compiler" "$projects/README" norvex "$folder/stage/$libdir" "$folder/host"
    "$here/WithPkgConfig.sh" "$compiler" "$projects/adding" norvex "$folder/stage/$libdir" "$folder/adding"
    "$here/WithPkgConfig.sh" "$compiler" "$projects/preset-document" norvex-document "$folder/stage/$libdir" \
        "$folder/reader"
fi
