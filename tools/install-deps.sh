#!/usr/bin/env bash
# Installs the Debian packages Mosswick needs to build, test and run.
# Idempotent: packages already installed are skipped, and apt is not touched at all when
# nothing is missing. Uses sudo only when not running as root.
set -euo pipefail

packages=(
  # toolchain
  cmake g++ make pkg-config ninja-build clang libclang-rt-14-dev clang-format
  # Qt 6 (Core, Gui, Widgets, DBus, Network) and the xcb platform plugin
  qt6-base-dev qt6-base-dev-tools qt6-qpa-plugins libgl-dev
  # TIFF images on the clipboard and in drops
  qt6-image-formats-plugins
  # X11 backends
  libx11-dev libx11-xcb-dev libxcb1-dev libxfixes-dev libxi-dev libxkbcommon-dev libxkbcommon-x11-dev
  # update signatures
  libsodium-dev
  # tests and benchmarks
  libgtest-dev libgmock-dev libbenchmark-dev
  # desktop tests: headless X server, window manager, input driving, inspection, screenshots
  xvfb openbox xdotool x11-utils imagemagick xcompmgr dbus dbus-x11 xarchiver zip unzip
  fonts-dejavu-core shared-mime-info bc python3
  # second screen (RandR monitors) and the XEmbed tray for the desktop tests
  x11-xserver-utils trayer
  # a tray that names its icons' colour (and hosts StatusNotifierItems): the tray glyph on a dark panel
  xfce4-panel
  # the settings' desktop test checks the autostart entry it writes
  desktop-file-utils
  # a real browser and a real file manager (with the settings service that sets its view) as drag
  # sources for the desktop tests
  chromium thunar xfconf
  # thumbnailers the preview tests run for real: PDF (evince-thumbnailer), video, and GNOME's
  # thumbnail factory through Python GObject, to check the cache is shared both ways
  evince ffmpegthumbnailer gir1.2-gnomedesktop-3.0 python3-gi
  # packages (make deb, make package-test): Debian's build tools and checkers, and the validators
  # of the desktop entry and the AppStream metainfo
  dpkg-dev debhelper lintian desktop-file-utils appstream
  # the accessibility bus, and the client that reads the shelf through it as a screen reader would
  at-spi2-core python3-pyatspi
  # the keyboard test opens a file through xdg-open's rules with a stand-in default application
  xdg-utils file
  # Wayland sessions run headless for the desktop tests: mutter and KWin with XWayland, a
  # Wayland-native GTK drag source (Python GObject), KWin's fake-input protocol for the pointer
  # injector built by the tests, and the settings stores the shortcut button writes into (gsettings
  # over dconf's service; KDE's kwriteconfig5 and the kglobalaccel5 that runs the command)
  mutter kwin-wayland xwayland gir1.2-gtk-3.0 libwayland-dev plasma-wayland-protocols dconf-cli
  gsettings-desktop-schemas gnome-settings-daemon-common libkf5config-bin
  libglib2.0-bin dconf-service dconf-gsettings-backend libkf5globalaccel-bin
  # GNOME Shell, headless like mutter, to measure what the Shell itself offers (its tray)
  gnome-shell
  # wlroots' Wayland session for the desktop tests: a headless sway with XWayland (its pointer is
  # injected by a virtual-pointer client built from the protocol's XML in tools/sway-input)
  sway
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "Installing: ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
