#!/usr/bin/env bash
# make-dist.sh BUILD OUT VERSION [BINARY]: OUT/mosswick-VERSION-ARCH.tar.gz, a copy of Mosswick that
# installs into the user's home without root. It holds what `make install` installs (the binary
# stripped) the libraries beyond Debian 12's Qt 6 (libsodium, in lib/) and install.sh. BINARY, when
# given, is shipped as bin/mosswick instead of the build's own (the update test's builds).
set -euo pipefail
build=$1 out=$2 version=$3 binary=${4:-}
arch=$(uname -m)
name=mosswick-$version-$arch
stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
DESTDIR= cmake --install "$build" --prefix "$stage/$name" --strip >/dev/null
if [ -n "$binary" ]; then
  strip -o "$stage/$name/bin/mosswick" "$binary"
fi
# Beyond Qt and the X libraries its xcb plugin needs: libsodium, found through the binary's RUNPATH.
mkdir -p "$stage/$name/lib"
for library in $(ldd "$stage/$name/bin/mosswick" | awk '/libsodium/ {print $3}'); do
  cp -L "$library" "$stage/$name/lib/"
done
cat >"$stage/$name/install.sh" <<'SCRIPT'
#!/bin/sh
# Installs this copy of Mosswick for the current user: into $PREFIX (default ~/.local).
set -eu
here=$(cd "$(dirname "$0")" && pwd)
prefix=${PREFIX:-$HOME/.local}
mkdir -p "$prefix"
cp -R "$here/bin" "$here/lib" "$here/share" "$prefix/"
# Marks a copy that updates itself (a build with an update feed and key does).
mkdir -p "$prefix/share/mosswick"
echo "$prefix" >"$prefix/share/mosswick/installed-from-archive"
# The desktop entry names the binary by its full path: ~/.local/bin is not always on the PATH of
# the session that reads it.
sed -i "s|^Exec=mosswick|Exec=$prefix/bin/mosswick|" "$prefix/share/applications/mosswick.desktop"
command -v update-desktop-database >/dev/null && update-desktop-database -q "$prefix/share/applications" || true
command -v gtk-update-icon-cache >/dev/null && gtk-update-icon-cache -q -t "$prefix/share/icons/hicolor" || true
echo "Mosswick is installed in $prefix/bin/mosswick."
SCRIPT
chmod +x "$stage/$name/install.sh"
mkdir -p "$out"
tar -C "$stage" -czf "$out/$name.tar.gz" "$name"
ls -l "$out/$name.tar.gz"
