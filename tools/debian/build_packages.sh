#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# build_packages.sh FOLDER [TRACK…]
# Builds the Debian packages of this checkout in clean roots below FOLDER and checks them with
# lintian; installs them in another fresh root and compares program, Python, C and Vamp plugin there
# with each other and with the build tree, on a synthesised track and on TRACKs; builds them again,
# in another folder and at another time, and compares the packages. Needs root, Debian 12's
# debootstrap and autopkgtest, and a mirror ($MIRROR). What was downloaded stays in FOLDER.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
if [[ $# -eq 0 || $EUID -ne 0 ]]; then
    echo "usage, as root: build_packages.sh FOLDER [TRACK…]" >&2
    exit 2
fi
# In mounts of its own: they end with this script, however it ends.
if [[ ! ${BEATATLAS_OWN_MOUNTS:-} ]]; then
    exec env BEATATLAS_OWN_MOUNTS=1 unshare --mount "$0" "$@"
fi
mkdir -p "$1"
folder=$(cd "$1" && pwd)
shift
tracks=("$@")
suite=${SUITE:-bookworm} mirror=${MIRROR:-http://deb.debian.org/debian}
version=$(dpkg-parsechangelog -l "$here/debian/changelog" -S Version)
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8

say() { printf '\n== %s\n' "$*"; }

# timed WHAT COMMAND…: runs it and notes how long it took.
timed() {
    local what=$1 start=$SECONDS
    shift
    say "$what"
    "$@"
    printf '%5d s  %s\n' $((SECONDS - start)) "$what" >>"$folder/times"
}

make_base() {
    if [[ ! -e $folder/base.done ]]; then
        rm -rf "$folder/base"
        debootstrap --variant=minbase "$suite" "$folder/base" "$mirror" >"$folder/debootstrap.log"
        touch "$folder/base.done"
    fi
    chroot "$folder/base" apt-get update -qq
}

# mount_root NAME [LOWER]: a layer over the root LOWER, by default the base; `root` is where it is.
# Nothing in it has to outlive a power cut, so writing does not wait for the disk.
mount_root() {
    local layer=$folder/layers/$1 lower=${2:-$folder/base}
    rm -rf "$layer/work"
    mkdir -p "$layer"/{changes,work,root} "$folder/archives/partial"
    root=$layer/root
    mount -t overlay overlay -o \
        "volatile,lowerdir=$lower,upperdir=$layer/changes,workdir=$layer/work" "$root"
    mount --bind "$folder/archives" "$root/var/cache/apt/archives"
    mount -t proc proc "$root/proc"
    mount -t tmpfs -o mode=1777 tmpfs "$root/dev/shm"
}

# make_root NAME [LOWER]: the same, emptied before.
make_root() {
    rm -rf "$folder/layers/$1"
    mount_root "$@"
    cp /etc/resolv.conf "$root/etc/resolv.conf"
}

# in_root ROOT COMMAND…
in_root() { chroot "$@"; }

install_in() {
    local root=$1
    shift
    in_root "$root" apt-get install -y -qq --no-install-recommends "$@" >>"$folder/apt.log" 2>&1
}

# One copy for all builds: what git knows, as it is in the checkout now.
copy_checkout() {
    rm -rf "$folder/source" && mkdir -p "$folder/source"
    (cd "$here" && git ls-files -z | tar --null --files-from=- --create) |
        tar --extract -C "$folder/source"
}

# copy_source ROOT PLACE: the source, as a user's files.
copy_source() {
    mkdir -p "$1$2"
    cp -a "$folder/source" "$1$2/beatatlas-$version"
    in_root "$1" chown -R builder: "$2"
}

# It is made anew when the packages' needs change.
make_build_root() {
    local needs
    copy_checkout
    needs=$(sha256sum <"$here/debian/control")
    if [[ $(cat "$folder/tools.done" 2>/dev/null) == "$needs" ]]; then
        mount_root tools
        tools=$root
        return
    fi
    rm -f "$folder/tools.done"
    make_root tools
    tools=$root
    in_root "$tools" useradd --create-home builder
    install_in "$tools" build-essential
    copy_source "$tools" /build
    in_root "$tools" apt-get build-dep -y -qq --no-install-recommends \
        "/build/beatatlas-$version" >>"$folder/apt.log" 2>&1
    rm -rf "$tools/build"
    echo "$needs" >"$folder/tools.done"
}

# build_in ROOT PLACE COMMAND…: the packages, by a user who is nobody special.
build_in() {
    local root=$1 place=$2
    shift 2
    copy_source "$root" "$place"
    if ! in_root "$root" runuser -u builder -- env -C "$place/beatatlas-$version" "$@" \
        dpkg-buildpackage -us -uc >"$folder/build${place//\//-}.log" 2>&1; then
        tail -50 "$folder/build${place//\//-}.log"
        echo "the build failed: $folder/build${place//\//-}.log" >&2
        return 1
    fi
}

build_first() {
    make_root first "$tools"
    first=$root
    build_in "$first" /build DEB_BUILD_OPTIONS="parallel=$(nproc)"
    mkdir -p "$folder/packages"
    rm -f "$folder"/packages/*
    find "$first/build" -maxdepth 1 -type f -exec cp -t "$folder/packages" {} +
}

# In another folder, more than a year later, without tests, in another zone and language.
build_again() {
    make_root second "$tools"
    install_in "$root" faketime
    build_in "$root" /srv/another/place DEB_BUILD_OPTIONS="nocheck parallel=3" TZ=Asia/Kathmandu \
        LC_ALL=C LANG=C faketime -f +400d
    say "The packages of both builds"
    (cd "$folder/packages" && sha256sum ./*.deb ./*.dsc ./*.tar.*) | tee "$folder/sums"
    (cd "$root/srv/another/place" && sha256sum --check --strict "$folder/sums")
}

check_by_lintian() {
    make_root lintian
    in_root "$root" useradd --create-home builder
    install_in "$root" lintian
    cp -r "$folder/packages" "$root/packages"
    in_root "$root" runuser -u builder -- sh -c \
        'lintian -EvIL +pedantic --fail-on error,warning /packages/*.changes' 2>&1 |
        tee "$folder/lintian.log"
}

# ask_build_tree: what the program of the build tree says, for the tracks in $folder/tracks.
ask_build_tree() {
    local tree=$first/build/beatatlas-$version track
    tree=$(echo "$tree"/obj-*)
    rm -rf "$folder/tracks" && mkdir -p "$folder/tracks" "$folder/answers"
    in_root "$first" "${tree#"$first"}/tests/support/beatatlas_make_demo_track" /tmp/synthesised.wav
    cp "$first/tmp/synthesised.wav" "${tracks[@]}" "$folder/tracks"
    mkdir -p "$first/tracks" && cp "$folder"/tracks/* "$first/tracks"
    for track in "$folder"/tracks/*; do
        in_root "$first" "${tree#"$first"}/app/beatatlas" analyze --json --waves \
            "/tracks/${track##*/}" >"$folder/answers/${track##*/}.json"
    done
}

# The test of the packages, and the installed program against that of the build tree.
try_packages() {
    local track
    make_root fresh
    mkdir -p "$root/tracks" && cp "$folder"/tracks/* "$root/tracks"
    rm -rf "$folder/autopkgtest"
    autopkgtest --env=BEATATLAS_TRACKS=/tracks --output-dir="$folder/autopkgtest" \
        "$folder"/packages/*.deb "$folder/packages/beatatlas_$version.dsc" -- chroot "$root"
    for track in "$folder"/tracks/*; do
        track=${track##*/}
        in_root "$root" beatatlas analyze --json --waves "/tracks/$track" |
            cmp - "$folder/answers/$track.json"
        echo "$track: the installed program and that of the build tree say the same"
    done
}

say "Times" >"$folder/times"
: >"$folder/apt.log"
timed "A clean root" make_base
timed "Compilers and build dependencies" make_build_root
timed "The packages, with tests" build_first
timed "lintian" check_by_lintian
timed "Answers of the build tree" ask_build_tree
timed "The packages in a fresh root" try_packages
timed "The packages again" build_again
cat "$folder/times"
say "Sizes: bytes of the package, KiB installed"
for package in "$folder"/packages/*.deb; do
    printf '%9d %8d  %s\n' "$(stat -c %s "$package")" \
        "$(dpkg-deb -f "$package" Installed-Size)" "${package##*/}"
done
