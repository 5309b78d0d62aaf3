#!/bin/bash
# installed.sh REPOSITORY VERSION ARCH: installs the packages of dist/, uses them as a developer and a user would, and
# removes them. To be run where the changes do no harm.
set -euo pipefail
repository=$1 version=$2 arch=$3
cd /tmp

fail() {
    echo "$*"
    exit 1
}

packages=(libbci0 libbci-dev bci bci-wireshark)
cd "$repository/dist"
# Some machines leave documents out of everything they install.
dpkg --path-include="*" -i "${packages[@]/%/_${version}_$arch.deb}" "bci-doc_${version}_all.deb" >/tmp/log 2>&1 || fail "$(cat /tmp/log)"
cd /tmp
for package in "${packages[@]}" bci-doc; do
    [ -z "$(dpkg --verify "$package")" ] || fail "$package is not whole"
done

# The command, as one who has never seen the sources.
[ "$(bci --version)" = "bci $version" ] || fail "bci --version: $(bci --version)"
bci decode /usr/share/doc/bci/examples/auditCfm.xml | grep -q '^signal .*BCI_AUDIT_CFM' || fail "bci decode"
gzip -c /usr/share/doc/bci/examples/auditCfm.txt >packed.gz
bci check packed.gz | grep -q '^1 record, 0 damaged' || fail "bci check: $(bci check packed.gz)"
for page in bci bci-decode bci-gen; do
    [ -f "/usr/share/man/man1/$page.1.gz" ] || fail "no manual page $page"
    zcat "/usr/share/man/man1/$page.1.gz" | mandoc -T lint -W warning || fail "manual page $page"
done
# shellcheck disable=SC2016 # for the other shell
bash -c '. /usr/share/bash-completion/completions/bci && complete -p bci' >/dev/null || fail "no completion"
[ -f /usr/share/zsh/vendor-completions/_bci ] || fail "no completion for zsh"
[ -f /usr/share/fish/vendor_completions.d/bci.fish ] || fail "no completion for fish"

# The documentation.
documents=/usr/share/doc/bci/html
grep -q 'Signals of the board control interface' $documents/index.html || fail "no documentation"
[ "$(find $documents -name 'page-docs-catalogue-BCI_*.html' | wc -l)" -eq 66 ] || fail "not all signals are in the catalogue"

# Wireshark finds the plugin.
bci convert --to pcap packed.gz >packed.pcap
tshark -r packed.pcap -V 2>/dev/null | grep -q BCI_AUDIT_CFM || fail "tshark: $(tshark -r packed.pcap -V 2>&1)"

# The library, without being told where it is.
expected="15 characters: 23430145:1:2:3:"$'\n'"main state: 3"
program=/usr/share/doc/bci/examples/auditCfm.cpp
# shellcheck disable=SC2046 # several flags
g++ -std=c++11 "$program" $(pkg-config --cflags --libs bci) -o byPkgConfig
[ "$(./byPkgConfig)" = "$expected" ] || fail "by pkg-config: $(./byPkgConfig)"
ldd byPkgConfig | grep -q 'libbci.so.0 => /' || fail "not linked with libbci.so.0"
mkdir project
cat >project/CMakeLists.txt <<END
cmake_minimum_required(VERSION 3.25)
project(user LANGUAGES CXX)
find_package(bci ${version%.*} REQUIRED)
foreach(library bci bci_static)
  add_executable(with-\${library} $program)
  target_link_libraries(with-\${library} PRIVATE bci::\${library})
endforeach()
END
{ cmake -G Ninja -S project -B built && cmake --build built; } >log 2>&1 || fail "$(cat log)"
for kind in with-bci with-bci_static; do
    [ "$("built/$kind")" = "$expected" ] || fail "$kind: $("built/$kind")"
done

dpkg --remove libbci0 >log 2>&1 && fail "libbci0 was removed from under libbci-dev"
dpkg --purge "${packages[@]}" bci-doc >log 2>&1 || fail "$(cat log)"
if ./byPkgConfig 2>/dev/null; then
    fail "the library is still found"
fi
# What dpkg and its triggers note for themselves is theirs.
cd /tmp/changes
left=$(find . \( -path ./tmp -o -path ./var/cache -o -path ./var/lib/dpkg -o -path ./var/log \) -prune -o -print |
    while read -r path; do
        [ -d "$path" ] && [ -d "/tmp/before/$path" ] || echo "$path"
    done | grep -vxF ./etc/ld.so.cache || true)
[ -z "$left" ] || fail "changed or left behind:"$'\n'"$left"
