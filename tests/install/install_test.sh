#!/usr/bin/env bash
# A program of somebody else's, built against an installed copy in every way that is offered.
#   install_test.sh BUILD COMPILER FLAGS LIBDIR
set -euo pipefail
build=$1 compiler=$2 flags=$3 libdir=$4
source=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null

fail() {
    echo "FAILED: $*"
    exit 1
}

libraries=$prefix/$libdir
for file in include/sorvaneusb.h share/doc/SorvaneUSB/{README,docs/virtual_boards}.md; do
    [ -e "$prefix/$file" ] || fail "$file is not installed"
done
readelf -d "$libraries/libsorvaneusb.so" | grep -q 'SONAME.*libsorvaneusb.so.13' || fail "the soname is not 13"

changed=$(sed -n 's/^## //p' "$source/CHANGELOG.md" | head -n 1)
grep -qx "Version: $changed" "$libraries/pkgconfig/sorvaneusb.pc" || fail "the newest change is that of $changed"

# Only the public class and its three functions are exported.
strangers=$(nm -DC --defined-only "$libraries/libsorvaneusb.so" | grep ' [TDBRVW] ' |
    grep -vE ' (SorvaneUSB::|GetBoardType\(int\)|LocalGetBoardSpeed\(int\)|usbErrorText\(int\))' || true)
case $flags in
*sanitize* | *coverage*) ;;
*) [ -z "$strangers" ] || fail "exported besides the public interface: $strangers" ;;
esac

cat >"$work/game.cpp" <<'PROGRAM'
#include <sorvaneusb.h>
int main(int arguments, char **)
{
    SorvaneUSB board;
    unsigned char version[3];
    if (arguments > 1 && !board.init(0))
        return 2;
    return board.GetDllVersion(version) && version[0] == '1' && version[1] == '3' ? 0 : 1;
}
PROGRAM

# Null literals find the form that the board's interface lists, in every form that was added beside one.
cat >"$work/nulls.cpp" <<'PROGRAM'
#include <cstddef>
#include <sorvaneusb.h>
int main()
{
    SorvaneUSB b;
    const _usbSerialPort port = usbSerialPort0;
    int done = b.ConfigureEEPROM(&E24LC256) + b.ConfigureEEPROM(nullptr) + b.ConfigureEEPROM(NULL);
    done += b.ConfigureEEPROM(0);
#define FOR_EACH(NOTHING, NUMBER) \
    done += b.Get8051Version(NOTHING) + b.Get8051Version(NOTHING, NUMBER) + b.GetPICVersion(NOTHING) + \
        b.GetPICVersion(NOTHING, NUMBER) + b.GetPICSerialNumber(NOTHING) + b.GetPICSerialNumber(NOTHING, NUMBER) + \
        b.GetDallasSerialNumber(NOTHING, NOTHING) + b.GetDallasSerialNumber(NOTHING, NOTHING, NUMBER) + \
        b.ReadDiagnosticData(NOTHING, NUMBER, NOTHING, NOTHING) + \
        b.ReadDiagnosticData(NOTHING, NUMBER, NOTHING, NOTHING, NUMBER) + b.Receive(port, NOTHING, NOTHING) + \
        b.Receive(port, NOTHING, NOTHING, NUMBER) + b.Receive9BitData(port, NOTHING, NOTHING) + \
        b.Receive9BitData(port, NOTHING, NOTHING, NUMBER) + \
        b.ReceivePolledMessage(port, NUMBER, NOTHING, NOTHING, NOTHING) + \
        b.ReceivePolledMessage(port, NUMBER, NOTHING, NOTHING, NOTHING, NUMBER) + \
        b.SendSPI(NUMBER, NOTHING, NUMBER, NUMBER, NOTHING) + \
        b.SendSPI(NUMBER, NOTHING, NUMBER, NUMBER, NOTHING, NUMBER) + \
        b.SendSEC(NUMBER, NUMBER, NUMBER, NOTHING, NUMBER, NUMBER, NOTHING) + \
        b.SendSEC(NUMBER, NUMBER, NUMBER, NOTHING, NUMBER, NUMBER, NOTHING, NUMBER)
    FOR_EACH(nullptr, 0);
    FOR_EACH(NULL, 0);
    FOR_EACH(0, 0);
    b = SorvaneUSB();
    return done;
}
PROGRAM
for standard in c++11 c++20; do
    # shellcheck disable=SC2086 # the flags are several words
    "$compiler" $flags -std=$standard -Wall -Wextra -pedantic -Werror "$work/nulls.cpp" -o "$work/nulls" \
        -I"$prefix/include" "$libraries/libsorvaneusb.a" || fail "null literals do not compile as $standard"
    "$work/nulls" || fail "an operation without a board did not fail"
done

# shellcheck disable=SC2086 # the flags are several words
build_with() {
    local name=$1
    shift
    "$compiler" $flags -std=c++11 -Wall -Wextra -pedantic -Werror "$work/game.cpp" -o "$work/$name" "$@"
    # On an own kernel: LD_LIBRARY_PATH finds the shared library.
    LD_LIBRARY_PATH=$libraries "$work/$name" || fail "$name does not run"
}
build_with shared -I"$prefix/include" -L"$libraries" -lsorvaneusb
build_with static -I"$prefix/include" "$libraries/libsorvaneusb.a"
if command -v pkg-config >/dev/null; then
    build_with pkgconfig $(PKG_CONFIG_PATH="$libraries/pkgconfig" pkg-config --cflags --libs sorvaneusb)
fi

# The same two targets, installed, as a folder of the consumer's tree and by FetchContent. There the library brings no
# tests, no boards and no settings with it, and installs nothing.
mkdir "$work/consumer"
cat >"$work/consumer/CMakeLists.txt" <<'PROJECT'
cmake_minimum_required(VERSION 3.25)
project(consumer CXX)
enable_testing()
include(${HOW}.cmake)
foreach(library sorvaneusb sorvaneusb_static)
    add_executable(game_${library} ../game.cpp)
    target_link_libraries(game_${library} PRIVATE SorvaneUSB::${library})
    add_test(NAME ${library} COMMAND game_${library})
endforeach()
PROJECT
cat >"$work/consumer/package.cmake" <<<'find_package(SorvaneUSB 13 REQUIRED)'
cat >"$work/consumer/folder.cmake" <<<'add_subdirectory(${SOURCE} sorvane)'
cat >"$work/consumer/fetch.cmake" <<'PROJECT'
include(FetchContent)
FetchContent_Declare(sorvane SOURCE_DIR ${SOURCE})
FetchContent_MakeAvailable(sorvane)
PROJECT
consume() { # HOW
    cmake -S "$work/consumer" -B "$work/$1" -DHOW="$1" -DSOURCE="$source" -DCMAKE_CXX_COMPILER="$compiler" \
        -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_ASM_FLAGS="$flags" -DSorvaneUSB_DIR="$libraries/cmake/SorvaneUSB" >/dev/null
    [ "$(ctest --test-dir "$work/$1" -N | tail -n 1)" = "Total Tests: 2" ] || fail "$1 adds tests"
}
consume package
consume folder
consume fetch
cmake --build "$work/fetch" --target help | grep sorvane_sim && fail "a consumer has the virtual boards"
cmake -N -LA "$work/fetch" | grep CMAKE_INSTALL_LIBDIR && fail "a consumer is told where to install"
cmake --build "$work/package" >/dev/null
cmake --build "$work/folder" -j2 >/dev/null
cmake --install "$work/folder" --prefix "$work/nothing" >/dev/null
[ ! -e "$work/nothing" ] || fail "a consumer installs $(find "$work/nothing")"
for how in package folder; do
    ctest --test-dir "$work/$how" >/dev/null || fail "what the consumer builds by $how does not run"
done

# The technician's command, with the module that it loads.
if [ -e "$build/tools/sorvane" ]; then
    "$prefix/bin/sorvane" --version | grep -qx "sorvane $changed" || fail "sorvane is not installed"
    [ -e "$(dirname "$(realpath "$prefix/bin/sorvane")")/sorvane_library.so" ] || fail "sorvane lacks its module"
fi

# Boards inside of programs of both widths that a script starts, each by the library of its width. The other width's is
# a stand-in here; the loader complains where it is handed a wrong one.
if [ -x "$build/sim/command/sorvane-sim" ]; then
    other_flags="-m32 -march=i686" places=(lib/i386-linux-gnu lib32)
    if readelf -h "$libraries/libsorvaneusb.so" | grep -q ELF32; then
        other_flags="-m64 -march=x86-64" places=(lib/x86_64-linux-gnu)
    fi
    other_width() { # shellcheck disable=SC2086
        "$compiler" $flags $other_flags -x c++ - -o "$@"
    }
    other_width "$work/stand_in.so" -shared -fPIC <<<'#include <unistd.h>
        [[gnu::constructor]] static void preloaded() { if (write(1, "preloaded\n", 10) < 0) _exit(1); }'
    other_width "$work/other" <<<'int main() {}'
    for place in "${places[@]}"; do
        install -D "$work/stand_in.so" "$prefix/$place/libsorvane_sim_preload.so"
    done
    output=$("$prefix/bin/sorvane-sim" run --how preload --board 0=R35 -- "$work/other" 2>&1)
    [ "$output" = preloaded ] || fail "a program of the other width: $output"
    output=$("$prefix/bin/sorvane-sim" run --how preload --board 0=R35 -- \
        bash -c '"$0" open && echo opened && "$1"' "$work/static" "$work/other" 2>&1)
    [ "$(sort -u <<<"$output" | xargs)" = "opened preloaded" ] || fail "programs of both widths: $output"
fi
echo "Installed, built against and run in every way"
