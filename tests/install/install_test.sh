#!/usr/bin/env bash
# A program of somebody else's, built against an installed copy in every way that is offered.
#   install_test.sh BUILD COMPILER FLAGS
set -euo pipefail
build=$1 compiler=$2 flags=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null

fail() {
    echo "FAILED: $*"
    exit 1
}

for file in include/sorvaneusb.h lib/libsorvaneusb.so lib/libsorvaneusb.so.13 lib/libsorvaneusb.a; do
    [ -e "$prefix/$file" ] || fail "$file is not installed"
done
readelf -d "$prefix/lib/libsorvaneusb.so" | grep -q 'SONAME.*libsorvaneusb.so.13' || fail "the soname is not 13"

# Only the public class and its three functions are exported.
strangers=$(nm -DC --defined-only "$prefix/lib/libsorvaneusb.so" | grep ' [TDBRVW] ' |
    grep -vE ' (SorvaneUSB::|GetBoardType\(int\)|LocalGetBoardSpeed\(int\)|usbErrorText\(int\))' || true)
case $flags in
*sanitize* | *coverage*) ;;
*) [ -z "$strangers" ] || fail "exported besides the public interface: $strangers" ;;
esac

cat >"$work/game.cpp" <<'PROGRAM'
#include <sorvaneusb.h>
int main()
{
    SorvaneUSB board;
    unsigned char version[3];
    return board.GetDllVersion(version) && version[0] == '1' && version[1] == '3' ? 0 : 1;
}
PROGRAM

# shellcheck disable=SC2086 # the flags are several words
build_with() {
    local name=$1
    shift
    "$compiler" $flags -std=c++11 -Wall -Wextra -pedantic -Werror "$work/game.cpp" -o "$work/$name" "$@"
    # On an own kernel: LD_LIBRARY_PATH finds the shared library.
    LD_LIBRARY_PATH=$prefix/lib "$work/$name" || fail "$name does not run"
}
build_with shared -I"$prefix/include" -L"$prefix/lib" -lsorvaneusb
build_with static -I"$prefix/include" "$prefix/lib/libsorvaneusb.a"
if command -v pkg-config >/dev/null; then
    build_with pkgconfig $(PKG_CONFIG_PATH="$prefix/lib/pkgconfig" pkg-config --cflags --libs sorvaneusb)
fi

mkdir "$work/consumer"
cat >"$work/consumer/CMakeLists.txt" <<'PROJECT'
cmake_minimum_required(VERSION 3.25)
project(consumer CXX)
find_package(SorvaneUSB 13 REQUIRED)
add_executable(game ../game.cpp)
target_link_libraries(game PRIVATE SorvaneUSB::sorvaneusb)
PROJECT
cmake -S "$work/consumer" -B "$work/consumer/build" -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="$flags" \
    -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/consumer/build" >/dev/null
"$work/consumer/build/game" || fail "the CMake consumer does not run"
echo "Installed, built against and run in every way"
