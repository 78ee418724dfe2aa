#!/bin/sh
# Builds everything for another machine and runs all tests there: `./dev portable KIND` calls it. On Debian 12 for amd64.
#
#   i386, aarch64 (or arm64), s390x
#           with the cross compiler of Debian, against libraries unpacked below build/portable/KIND/root; run by qemu-user
#   clang   for this machine with clang
#   vectors for this machine, all tests again with each width of vectors that the processor has
#
# Random tests make fewer patterns where an emulator runs them; CORVANE_TEST_ROUNDS says how many.
set -eu
cd "$(dirname "$0")/.."

jobs=${CORVANE_JOBS:-$(nproc)}
kind=$1
place=build/portable/$kind
libraries="libboost-dev libboost-program-options-dev libicu-dev libhwy-dev nlohmann-json3-dev libgtest-dev libpcre2-dev
    liblua5.4-dev"

# apt for the other architecture, with this machine's sources but a state of its own.
foreign_apt() {
    apt-get -qq -o "APT::Architecture=$kind" -o "APT::Architectures=$kind" -o APT::Install-Recommends=false \
        -o "Dir::State::lists=$apt/lists" -o "Dir::State::status=$apt/status" -o "Dir::Cache=$apt" \
        -o APT::Sandbox::User= -o Debug::NoLocking=true "$@"
}

# Packages are unpacked, not installed: nothing of them runs, and this machine's own packages stay as they are.
make_root() {
    apt=$PWD/$place/apt
    [ ! -e "$place/root/complete" ] || return 0
    echo "== unpacking the libraries for $kind"
    mkdir -p "$place/root" "$apt/lists/partial" "$apt/archives/partial"
    : >"$apt/status"
    foreign_apt update || echo "some lists of packages are missing"
    # shellcheck disable=SC2086 # a list of words
    foreign_apt -y --download-only install $libraries
    for package in "$apt"/archives/*.deb; do
        dpkg -x "$package" "$place/root"
    done
    rm -r "$apt"
    touch "$place/root/complete"
}

# With further arguments for cmake.
configure() {
    cmake --preset dev -B "$place/build" "$@" >"$place/configure.log" 2>&1 || { cat "$place/configure.log"; exit 1; }
}

build_and_test() {
    echo "== building"
    cmake --build "$place/build" -j "$jobs"
    echo "== testing"
    status=0
    ctest --test-dir "$place/build" --output-on-failure -j "$jobs" || status=$?
    awk '/^\[  PASSED/ { passed += $4 } /^\[  FAILED.*tests?,/ { failed += $4 } /^\[  SKIPPED.*tests?,/ { skipped += $4 }
        END { printf "%d passed, %d failed, %d skipped\n", passed, failed, skipped }' \
        "$place/build/Testing/Temporary/LastTest.log"
    return "$status"
}

emulated() {
    make_root
    configure --toolchain "$PWD/cmake/toolchains/debian-cross.cmake" "-DCORVANE_TRIPLET=$1" "-DCORVANE_EMULATOR=$2" \
        "-DCMAKE_SYSROOT=$PWD/$place/root" -DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1
    export CORVANE_TEST_ROUNDS="${CORVANE_TEST_ROUNDS:-100}"
    build_and_test
}

# A width that the processor has not ends with the status 77 before any test.
each_width() {
    configure
    cmake --build "$place/build" -j "$jobs"
    for vectors in none SSSE3 SSE4 AVX2 AVX3; do
        echo "== vectors: $vectors"
        status=0
        CORVANE_TEST_VECTORS=$vectors "$place/build/bin/corvane_tests" --gtest_brief=1 || status=$?
        [ "$status" -eq 0 ] || [ "$status" -eq 77 ] || exit "$status"
    done
}

mkdir -p "$place"
case $kind in
    i386) emulated i686-linux-gnu qemu-i386 ;;
    arm64) emulated aarch64-linux-gnu qemu-aarch64 ;;
    s390x) emulated s390x-linux-gnu qemu-s390x ;;
    clang)
        # Headers that one compiler has read are not for the other.
        configure -DCMAKE_CXX_COMPILER=clang++ -DCORVANE_PRECOMPILE_HEADERS=OFF
        build_and_test
        ;;
    vectors) each_width ;;
esac
