#!/usr/bin/env bash
# package-test.sh OUT VERSION: checks what `make deb` and `make dist` built in OUT.
#  - lintian finds no error in the package;
#  - the package, unpacked into a scratch root, holds every file it should, its desktop entry and
#    metainfo validate, and its binary runs (--version, --help) and declares its libraries;
#  - `make install` with DESTDIR and PREFIX stages the same files under that prefix;
#  - the archive installs into a scratch home with install.sh, and that copy runs.
set -euo pipefail
out=$1 version=$2
arch=$(dpkg --print-architecture)
deb=$out/deb/mosswick_${version}_${arch}.deb
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
pass() { echo "ok: $*"; }

expected=(
  usr/bin/mosswick
  usr/share/applications/mosswick.desktop
  usr/share/metainfo/org.mosswick.Mosswick.metainfo.xml
  usr/share/man/man1/mosswick.1.gz
  usr/share/bash-completion/completions/mosswick
  usr/share/zsh/vendor-completions/_mosswick
  usr/share/icons/hicolor/scalable/apps/mosswick.svg
  usr/share/icons/hicolor/48x48/apps/mosswick.png
  usr/share/icons/hicolor/256x256/apps/mosswick.png
)

echo "== the package: $(du -h "$deb" | cut -f1) ($(stat -c %s "$deb") bytes)"
lintian_out=$(lintian --tag-display-limit 0 "$deb" 2>&1 || true)
echo "${lintian_out:-(lintian: nothing to report)}"
if grep -q '^E:' <<<"$lintian_out"; then fail "lintian reports errors"; else pass "lintian: no errors"; fi

root=$scratch/root
dpkg-deb -x "$deb" "$root"
for file in "${expected[@]}"; do
  [ -e "$root/$file" ] || fail "the package lacks /$file"
done
desktop-file-validate "$root/usr/share/applications/mosswick.desktop" && pass "desktop entry valid" || fail "desktop entry"
appstreamcli validate --no-net "$root/usr/share/metainfo/org.mosswick.Mosswick.metainfo.xml" >/dev/null \
  && pass "metainfo valid" || fail "metainfo"
[ "$("$root/usr/bin/mosswick" --version)" = "mosswick $version" ] && pass "--version runs" || fail "--version"
"$root/usr/bin/mosswick" --help | grep -q "Exit status" && pass "--help runs" || fail "--help"
depends=$(dpkg-deb -f "$deb" Depends)
for library in libqt6core6 libqt6gui6 libqt6widgets6 libqt6dbus6 libqt6network6 libsodium23 libxkbcommon-x11-0; do
  grep -q "$library" <<<"$depends" || fail "Depends lacks $library: $depends"
done
zcat "$root/usr/share/man/man1/mosswick.1.gz" | grep -q "EXIT STATUS" && pass "manual page with exit codes" || fail "man"

echo "== make install DESTDIR=… PREFIX=/opt/mosswick"
make --no-print-directory install DESTDIR="$scratch/staged" PREFIX=/opt/mosswick >/dev/null
for file in "${expected[@]}"; do
  file=${file#usr/}
  file=${file%.gz}
  [ -e "$scratch/staged/opt/mosswick/$file" ] || fail "make install lacks $file"
done

echo "== the archive, installed into a scratch home"
tar -C "$scratch" -xzf "$out/mosswick-$version-$(uname -m).tar.gz"
HOME=$scratch/home "$scratch/mosswick-$version-$(uname -m)/install.sh" >/dev/null
home_binary=$scratch/home/.local/bin/mosswick
[ "$("$home_binary" --version)" = "mosswick $version" ] && pass "home copy runs" || fail "home copy"
[ -e "$scratch/home/.local/lib/libsodium.so.23" ] && readelf -d "$home_binary" | grep -q 'RUNPATH.*\$ORIGIN/../lib' \
  && pass "home copy carries libsodium" || fail "home copy lacks libsodium or its RUNPATH"
readelf -d "$root/usr/bin/mosswick" | grep -q RUNPATH && fail "the package's binary has a RUNPATH"
grep -q "^Exec=$home_binary --summon" "$scratch/home/.local/share/applications/mosswick.desktop" \
  && pass "home desktop entry names the copy" || fail "home desktop entry"

[ $failures -eq 0 ] && echo "package-test: all passed" || { echo "package-test: $failures failed"; exit 1; }
