#!/bin/bash
# sharedLibrary.sh LIBRARY NM READELF: the shared library exports the public interface, all of it and
# nothing else, has its SONAME, and needs the C and C++ libraries alone.
set -euo pipefail
library=$1 nm=$2 readelf=$3
status=0
fail() {
    echo "$*"
    status=1
}

exported=$("$nm" --dynamic --defined-only --demangle "$library" | cut -d' ' -f3-)
headers=$(dirname "$0")/../../h
classes=$(sed -n 's/^class BCI_API \([A-Za-z]*\).*/\1/p' "$headers"/message.h "$headers"/bci*.h)
public="(commonStream|$(paste -sd'|' <<<"$classes"))"
others=$(grep -vE "^((vtable|VTT) for |construction vtable for |(non-)?virtual thunk to )?$public(::|$|-in-)" \
    <<<"$exported" | grep -vE '^(getTagContents|insertArraySubscripts)\(' || true)
[ -z "$others" ] || fail "exported, but not public:"$'\n'"$others"

while read -r name; do
    grep -qF -- "$name" <<<"$exported" || fail "not exported: $name"
done <<'END'
commonStream::streambase::attachBuffer(
commonStream::istreambase::seekg(
commonStream::ostreambase::seekp(
commonStream::istream_binary::operator>>(
commonStream::istream_text::operator>>(
commonStream::ostream_binary::operator<<(
commonStream::ostream_text::operator<<(
getTagContents(char const*, char const*, char*, int&)
getTagContents(char const*, char const*, char*, unsigned int, int&)
insertArraySubscripts(
MessageBase::DELIM
BciMessageBase::s_bciRegistrationMap
BciMessageBase::instantiateBciMsgFromText(
BciMsgRegistry::registerSupportedMsgClasses()
END

# The 27 message classes: from outside, a factory and a virtual table each.
messages=$(grep -v -e Base -e Registry <<<"$classes")
[ "$(wc -l <<<"$messages")" -eq 27 ] || fail "message classes:"$'\n'"$messages"
for class in $messages; do
    for name in "$class::instantiateBciMsg(" "$class::$class(" "vtable for $class"; do
        grep -qF -- "$name" <<<"$exported" || fail "not exported: $name"
    done
done

# Offset, no type information, and the two slots of a virtual destructor: a stream has nothing else virtual.
word=$("$readelf" --file-header "$library" | awk '$1 == "Class:" { print $2 == "ELF64" ? 8 : 4 }')
for class in streambase istreambase istream_binary istream_text ostreambase ostream_binary ostream_text; do
    size=$("$nm" --dynamic --print-size --demangle "$library" |
        sed -n "s/^[0-9a-f]* \([0-9a-f]*\) . vtable for commonStream::$class\$/\1/p")
    # The classes below the virtual base have its offset, and a second part for it.
    words=$([ "$class" = streambase ] && echo 4 || echo 10)
    [ $((16#${size:-0})) -eq $((words * word)) ] || fail "virtual table of $class: 0x$size bytes"
done

dynamic=$("$readelf" --dynamic --wide "$library")
grep -q 'SONAME.*\[libbci\.so\.[0-9]*\]' <<<"$dynamic" || fail "no SONAME"
needed=$(sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' <<<"$dynamic" |
    grep -vE '^(libc\.so|libm\.so|libstdc\+\+\.so|libgcc_s\.so|ld[a-z0-9-]*\.so)' || true)
[ -z "$needed" ] || fail "needs more than the C and C++ libraries: $needed"
exit "$status"
