#!/usr/bin/env bash
# Installs a build into a staging prefix, moves that elsewhere, and builds and runs the examples there
# with nothing but find_package(Kelvane): what a user of a package has.
#
#   scripts/check-install.sh BUILD_FOLDER
set -euo pipefail
build=$(cd "$1" && pwd)
source=$(cd "$(dirname "$0")/.." && pwd)
stage=$build/staging
rm -rf "$stage"
mkdir -p "$stage"

cmake --install "$build" --prefix "$stage/first" >"$stage/install.log" ||
    { cat "$stage/install.log"; exit 1; }
mv "$stage/first" "$stage/prefix" # a prefix may move: nothing installed knows where it was

cmake -S "$source/examples/installed" -B "$stage/build" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_PREFIX_PATH="$stage/prefix"
cmake --build "$stage/build"
(cd "$stage/build" && ctest --output-on-failure --no-tests=error)

# The catalog of coordinate systems travels with the library.
KELVANE_USER_DIR=$stage/user "$stage/prefix/bin/kelvane" cs show "RGF93 v1 / Lambert-93" >/dev/null

# The Python package lies beside the library, and finds in a project what the library selects there.
python=/usr/bin/python3
if $python -c "import numpy, zstandard" 2>/dev/null; then
    count=$(cd "$stage" && build/select_samples 2>/dev/null)
    PYTHONPATH=$stage/prefix/lib/python3/dist-packages $python -B -m kelvane \
        "$stage/study" campaign "rich ore" | grep -qx "$count of 100000 samples"
else
    echo "check-install: the Python package was not tried: NumPy or zstandard is not installed"
fi

if ldd "$stage"/prefix/lib*/libkelvane_util.so "$stage/prefix/bin/kelvane" |
    grep -E "not found|$build/lib/"; then
    echo "check-install: the libraries above are missing, or come from the build folder" >&2
    exit 1
fi
