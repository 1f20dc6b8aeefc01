#!/bin/sh
# Makes the Debian packages, unpacks them as if they were installed, builds a stranger's program with what is in them,
# and runs it and the programs.
# Usage: WithDebian.sh BUILD COMPILER PROJECT
set -eu
build=$1 compiler=$2 project=$3
here=$(cd "$(dirname "$0")" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
(cd "$build" && cpack -B "$folder/packages" >"$folder/cpack.log" 2>&1) || { cat "$folder/cpack.log"; exit 1; }
for name in libnorvex0 libnorvex-document0 libnorvex-dev norvex-tools; do
    package=$(echo "$folder/packages/$name"*.deb)
    dpkg-deb -f "$package" Package Version Depends
    dpkg-deb -x "$package" "$folder/root"
done
libdir=$(dirname "$(find "$folder/root" -name 'libnorvex.so.*' | head -1)")
"$here/WithPkgConfig.sh" "$compiler" "$project" norvex "$libdir" "$folder/stranger"
export LD_LIBRARY_PATH="$libdir"
"$folder/root/usr/bin/norvex-rules" show format mp4 | grep -q "H.264"
"$folder/root/usr/bin/norvex-export" --version
PATH="$folder/root/usr/bin:$PATH" "$here/WithShells.sh" "$folder/root"
