#!/bin/sh
# The Debian packages, for `./dev package`, on Debian 12:
#
#   build   builds them from the files of the checkout, changes that are not committed included, into build/packages, and
#           has lintian look them over
#   check   installs those in a new, bare system below build/packages/root, builds and runs programs against them there
#           and runs the tool, removes them, and compares what is left with what was there before. Needs root rights
set -eu
cd "$(dirname "$0")/.."

place=$PWD/build/packages
version=$(sed -n '1s/.*(\([^-]*\)-.*/\1/p' debian/changelog)
root=$place/root

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

say() { printf '== %s\n' "$*"; }

build() {
    sources=$place/corvane-regexp-$version
    rm -rf "$sources"
    mkdir -p "$sources"
    find "$place" -maxdepth 1 -type f -delete
    git ls-files --cached --others --exclude-standard | while IFS= read -r file; do
        [ ! -e "$file" ] || printf '%s\n' "$file"
    done | tar -c -T - -f - | tar -x -C "$sources" -f -
    say "building the packages of $version"
    # Builders give themselves an empty home, in which the cache of the compiler would be cold.
    if command -v ccache >/dev/null; then
        CCACHE_DIR=$(ccache --get-config cache_dir)
        export CCACHE_DIR
    fi
    (cd "$sources" && DEB_BUILD_OPTIONS="parallel=${CORVANE_JOBS:-$(nproc)} ${DEB_BUILD_OPTIONS:-}" \
        dpkg-buildpackage -b -uc -us) >"$place/build.log" 2>&1 || { tail -n 40 "$place/build.log"; exit 1; }
    say "lintian"
    lintian --fail-on error,warning --display-info "$place"/*.changes
    ls -l "$place"/*.deb
}

# A bare system of this release with a compiler, new each time from a tape that is made once.
make_root() {
    tape=$PWD/build/bare-system.tar
    as_root rm -rf "$root"
    if [ ! -e "$tape" ]; then
        # shellcheck disable=SC2016 # variables of apt
        archive=$(apt-get indextargets --format '$(REPO_URI) $(CODENAME)' 'Created-By: Packages' |
            sed -n 's/ bookworm$//p' | head -n 1)
        say "making a bare system"
        as_root debootstrap --variant=minbase bookworm "$root" "$archive" >"$place/debootstrap.log"
        as_root cp /etc/resolv.conf "$root/etc/resolv.conf"
        in_root apt-get install -qq -y --no-install-recommends g++ cmake make pkg-config \
            libboost-dev libboost-program-options-dev libicu72 liblua5.4-0 >"$place/debootstrap.log"
        in_root apt-get clean
        as_root tar -C "$root" --one-file-system -cf "$tape" .
    else
        as_root mkdir -p "$root"
        as_root tar -C "$root" -xf "$tape"
    fi
}

in_root() {
    as_root chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
        ${http_proxy:+"http_proxy=$http_proxy"} "$@"
}

# What the files of a system are, except for the states and logs that programs of the system itself write.
files_of_root() {
    as_root find "$root" -xdev -path "$root/proc" -prune -o -path "$root/tmp" -prune -o -path "$root/var/cache" -prune -o \
        -path "$root/var/lib/apt" -prune -o -path "$root/var/lib/dpkg" -prune -o -path "$root/var/log" -prune -o -print |
        sort
}

check() {
    packages=$(find "$place" -maxdepth 1 -name '*.deb' ! -name '*dbgsym*' | sort)
    make_root
    files_of_root >"$place/before"
    as_root mkdir -p "$root/tmp/packages" "$root/tmp/sources/tests"
    # shellcheck disable=SC2086 # a list of words
    as_root cp $packages "$root/tmp/packages"
    as_root cp -r examples "$root/tmp/sources"
    as_root cp -r tests/consumer "$root/tmp/sources/tests"
    as_root cp debian/tests/applications "$root/tmp/sources"
    say "installing the packages"
    in_root sh -c 'apt-get install -qq -y --no-install-recommends /tmp/packages/*.deb' >"$place/install.log"
    in_root sh -c 'cd /tmp/sources && ./applications'
    say "removing them and what they brought along"
    # shellcheck disable=SC2046
    in_root apt-get purge -qq -y --auto-remove $(for file in $packages; do basename "$file" | sed 's/_.*//'; done) >>"$place/install.log"
    files_of_root >"$place/after"
    if ! diff "$place/before" "$place/after"; then
        echo "the packages left this behind"
        exit 1
    fi
    say "nothing is left of them"
}

mkdir -p "$place"
case ${1:-} in
    build) build ;;
    check) check ;;
    *) exit 2 ;;
esac
