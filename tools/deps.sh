# Installs the missing Debian packages of tools/packages.txt and the locale of the second test run; other scripts call
# install_missing with their own lists. Needs root only if something is missing. If apt does not offer LASzip, it is taken
# from the next Debian release, pinned so that no other package can be.
source tools/as_root.sh

# Prints the packages in a list (one name a line) that are not installed.
missing_packages() {
    local wanted
    mapfile -t wanted < <(grep -v '^#' "$1")
    comm -13 \
        <(dpkg-query -W -f='${db:Status-Status} ${Package}\n' "${wanted[@]}" 2>/dev/null | sed -n 's/^installed //p' | sort -u) \
        <(printf '%s\n' "${wanted[@]}" | sort -u)
}

has_test_locale() { locale -a 2>/dev/null | grep -qix 'de_DE\.utf-\?8'; }

# apt-get, without its progress. While another program holds one of apt's locks it waits, after saying so; apt-get itself
# can wait for some of the locks only.
apt_get() {
    local errors told=
    errors=$(mktemp)
    until as_root env LC_ALL=C DEBIAN_FRONTEND=noninteractive apt-get -qq -o Dpkg::Use-Pty=0 "$@" >/dev/null 2>"$errors"; do
        if ! grep -q 'Could not get lock' "$errors"; then
            cat "$errors" >&2
            rm -f "$errors"
            return 1
        fi
        [ -n "$told" ] || echo "orvex: waiting for another program to finish with apt: $(grep -m 1 'Could not get lock' "$errors")" >&2
        told=yes
        sleep 2
    done
    cat "$errors" >&2
    rm -f "$errors"
}

debian_keyring=/usr/share/keyrings/debian-archive-keyring.gpg

machine_release() { . /etc/os-release && echo "${VERSION_CODENAME:-}"; }

# Prints the name of the Debian release that follows this machine's.
next_release() {
    case "$(machine_release)" in
        bookworm) echo trixie ;;
        *)
            echo "orvex: apt offers no LASzip on '$(machine_release)'; please install version 3.4 or newer by hand" >&2
            return 1
            ;;
    esac
}

# Prints the address from which this machine's apt gets the packages of a Debian release.
archive_address() {
    local address
    address=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' "Codename: $1" | head -n 1)
    [ -n "$address" ] || { echo "orvex: apt knows no package list of '$1'" >&2; return 1; }
    echo "$address"
}

# Prints the source of packages that offers LASzip to apt, and the pin that keeps everything else of it away.
laszip_source() {
    local next address
    next=$(next_release)
    address=$(archive_address "$(machine_release)")
    printf 'Types: deb\nURIs: %s\nSuites: %s\nComponents: main\nSigned-By: %s\n' "$address" "$next" "$debian_keyring"
}
laszip_pin() {
    local next
    next=$(next_release)
    printf 'Package: *\nPin: release n=%s\nPin-Priority: -1\n\nPackage: liblaszip-dev liblaszip8 liblaszip-api8\nPin: release n=%s\nPin-Priority: 500\n' \
        "$next" "$next"
}

offer_next_release_laszip() {
    [ -n "$(apt-cache madison liblaszip-dev 2>/dev/null)" ] && return 0
    local file
    file=$(mktemp)
    laszip_source >"$file"
    as_root install -m 644 "$file" /etc/apt/sources.list.d/orvex-laszip.sources
    laszip_pin >"$file"
    as_root install -m 644 "$file" /etc/apt/preferences.d/orvex-laszip
    rm -f "$file"
    apt_get update
}

install_missing() {
    local packages
    mapfile -t packages < <(missing_packages "$1")
    if [ ${#packages[@]} -gt 0 ]; then
        echo "orvex: installing ${packages[*]}"
        apt_get update
        case " ${packages[*]} " in *' liblaszip-dev '*) offer_next_release_laszip ;; esac
        apt_get install -y --no-install-recommends "${packages[@]}"
    fi
}

install_test_locale() {
    if ! has_test_locale; then
        as_root localedef -i de_DE -f UTF-8 de_DE.UTF-8
    fi
}

install_missing tools/packages.txt
install_test_locale
