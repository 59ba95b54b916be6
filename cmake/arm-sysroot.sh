#!/bin/sh
# Unpacks the libraries of the target that the cross compiler does not bring: zlib, CLI11, JSON, GoogleTest.
# usage: cmake/arm-sysroot.sh DIRECTORY [SECTION]
#
# SECTION of packaging/requirements, sysroot if not given, names the packages.
# apt works on lists and a package database of its own here, so the host learns of no second
# architecture. A directory that is complete is left as it is.
set -eu

if [ $# -lt 1 ] || [ $# -gt 2 ]; then
    echo "usage: $0 DIRECTORY [SECTION]" >&2
    exit 2
fi
packages=$(sed -n "s/^${2:-sysroot}: //p" "$(dirname "$0")/../packaging/requirements")
mkdir -p "$1"
root=$(cd "$1" && pwd)

# Two configurations may start at once.
exec 9>"$root.lock"
flock 9
if [ "$(cat "$root/.complete" 2>/dev/null)" = "$packages" ]; then
    exit 0
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM
mkdir -p "$work/lists/partial" "$work/archives/partial" "$work/debs"
: > "$work/status"

apt() {
    apt-get -qq \
        -o APT::Architecture=armhf -o APT::Architectures::=armhf \
        -o APT::Sandbox::User=root \
        -o Dir::State="$work" -o Dir::State::Lists="$work/lists" -o Dir::State::status="$work/status" \
        -o Dir::Cache="$work" -o Dir::Cache::archives="$work/archives" \
        -o Acquire::Languages=none \
        "$@"
}

# One list that a mirror is just renewing does not matter as long as the packages are in the others.
for attempt in 1 2 3; do
    if { apt update; (cd "$work/debs" && apt download $packages); } 2>"$work/messages"; then
        break
    elif [ $attempt -eq 3 ]; then
        cat "$work/messages" >&2
        echo "$0: cannot download $packages for armhf" >&2
        exit 1
    fi
    sleep 5
done
rm -rf "$root"
mkdir -p "$root"
for package in "$work"/debs/*.deb; do
    dpkg-deb -x "$package" "$root"
done
# Links to absolute paths mean paths of the target.
find "$root" -type l -lname '/*' | while read -r link; do
    ln -snrf "$root$(readlink "$link")" "$link"
done
printf '%s\n' "$packages" > "$root/.complete"
