#!/bin/sh
# Makes the Debian packages and the wheel out of what was built, unpacks each in a clean folder as if it were installed,
# and runs the recipes of the pages there.
# Usage: WithPython.sh PYTHON BUILD SOURCE
set -eu
python=$1 build=$2 source=$3
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
cp "$source/README.md" "$source/docs/python.md" .
recipes() {
    for page in README.md python.md; do
        mkdir recipes
        (cd recipes && "$python" -m pytest -q -p no:cacheprovider --doctest-glob='*.md' "$folder/$page")
        rm -r recipes
    done
}

(cd "$build" && cpack -B "$folder/packages" >"$folder/cpack.log" 2>&1) || { cat cpack.log; exit 1; }
for name in libnorvex0 libnorvex-document0 python3-norvex; do
    package=$(echo "packages/$name"*.deb)
    dpkg-deb -f "$package" Package Version Depends
    dpkg-deb -x "$package" root
done
libdir=$(dirname "$(find "$folder/root" -name 'libnorvex.so.*' | head -1)")
PYTHONPATH="$folder/root/usr/lib/python3/dist-packages" LD_LIBRARY_PATH="$libdir" recipes

# A copy of what a wheel is made of: setuptools writes beside its sources.
mkdir checkout
cp -r "$source/python" "$source/pyproject.toml" "$source/setup.py" "$source/CMakeLists.txt" "$source/README.md" checkout
NORVEX_BUILD="$build" "$python" -m pip wheel -q --no-build-isolation --no-deps --no-index -w wheels ./checkout
"$python" -m pip install -q --root-user-action=ignore --no-deps --no-index --target wheel wheels/norvex-*.whl
PYTHONPATH="$folder/wheel" recipes
