#!/bin/sh
# Installs packages in a root, uses what they bring, removes them and looks for anything left:
# use-packages.sh ROOT FOLDER, where FOLDER has the .deb files, consumer/ and perhaps the source of LASzip.
set -eu
root=$1
folder=$2

inside() { chroot "$root" env LC_ALL=C.UTF-8 HOME=/tmp/home DEBIAN_FRONTEND=noninteractive "$@"; }
install() { inside apt-get -qq -y --no-install-recommends -o Dpkg::Use-Pty=0 install "$@" >/dev/null; }
step() { echo "== $*"; }

mkdir -p "$root/tmp/packages" "$root/tmp/home"
cp "$folder"/*.deb "$root/tmp/packages"
cp -r "$folder/consumer" "$root/tmp/consumer"
if [ -e "$folder/laszip.sources" ]; then
    cp "$folder/laszip.sources" "$root/etc/apt/sources.list.d/laszip.sources"
    cp "$folder/laszip.pref" "$root/etc/apt/preferences.d/laszip"
    inside apt-get -qq update
fi

step 'programs'
# The shell of the root expands the pattern.
install $(inside sh -c 'ls /tmp/packages/*.deb' | grep -v -- -dev_)
for program in orvex-inspect orvex-companion orvex-cloud-server orvex-host; do
    inside $program --version
done
inside env QT_QPA_PLATFORM=offscreen orvex-host --drive --project /tmp/project >"$root/tmp/record"
tail -n 3 "$root/tmp/record"
inside orvex-inspect --csv /tmp/project >"$root/tmp/report"
echo "loadable files of its project: $(grep -c ',true,' "$root/tmp/report")"

step 'development files'
install $(inside sh -c 'ls /tmp/packages/*-dev_*.deb') g++ cmake make pkg-config
inside cmake -S /tmp/consumer -B /tmp/consumer/build >/dev/null
inside cmake --build /tmp/consumer/build >/dev/null
inside /tmp/consumer/build/consumer
inside /tmp/consumer/build/consumer-c
inside sh -c 'g++ /tmp/consumer/main.cpp -o /tmp/consumer/by-pkg-config $(pkg-config --cflags --libs orvexcommon)'
inside /tmp/consumer/by-pkg-config

step 'removal'
rm -rf "$root/tmp/packages" "$root/tmp/home" "$root/tmp/record" "$root/tmp/report" "$root/tmp/consumer" "$root/tmp/project"
inside apt-get -qq -y -o Dpkg::Use-Pty=0 purge liborvexcommon-dev liborvexcommon0 orvexcommon-data orvexcommon-tools >/dev/null
left=$(cd "$root" && find . -xdev -iname '*orvex*' -not -path './proc/*')
if [ -n "$left" ]; then
    echo "left behind: $left" >&2
    exit 1
fi
echo 'nothing is left'
