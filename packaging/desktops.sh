#!/usr/bin/env bash
# Tries the package of trixie (Debian 13), which `./dev fresh trixie` leaves in build/fresh/trixie, on real desktops:
# installs it with the desktops in one fresh system, starts each desktop on a virtual screen, and walks through the
# program with mouse and keyboard (tests/endtoend/desktop/tour.py). Prints what it saw; the pictures come into
# build/desktops. Needs root, some gigabytes of disk, and a quarter of an hour.
#
# usage: desktops.sh [DESKTOP…]   without one, all
set -euo pipefail

say() { printf '%s\n' "desktops: $*" >&2; }

common='xvfb xdotool imagemagick procps python3-minimal dbus-daemon dbus-bin libglib2.0-bin dconf-gsettings-backend
  gsettings-desktop-schemas adwaita-icon-theme libgl1-mesa-dri fonts-inter fonts-dejavu-core'
declare -A packages=(
  [xfce]='openbox xfce4-panel'
  [lxqt]='openbox lxqt-panel'
  [mate]='openbox mate-panel'
  [cinnamon]='cinnamon xapp-sn-watcher'
  [plasma]='plasma-desktop plasma-workspace kwin-x11 breeze-icon-theme plasma-integration xdg-desktop-portal-kde'
  [gnome]='gnome-shell gnome-shell-extension-appindicator mutter gnome-settings-daemon xdg-desktop-portal-gtk'
  [labwc]='labwc waybar qt6-wayland qml6-module-org-kde-layershell'
  [sway]='sway waybar qt6-wayland qml6-module-org-kde-layershell'
)

# In the system, as root.
if [ "${1:-}" = --inside ]; then
  shift
  mkdir -p /tmp/.X11-unix /run/dbus
  chmod 1777 /tmp /tmp/.X11-unix
  failed=()
  for desktop in "$@"; do
    # A process namespace of its own ends whatever the desktop leaves running.
    unshare --pid --fork --kill-child --mount-proc timeout 600 \
      python3 /tour/tour.py "$desktop" /usr/bin/spacemint /usr/bin/spacemintctl /pictures 2>/dev/null || failed+=("$desktop")
  done
  [ "${#failed[@]}" -eq 0 ] || { say "not as expected: ${failed[*]}"; exit 1; }
  exit
fi

[ "$(id -u)" -eq 0 ] || { say "must run as root"; exit 1; }
[ $# -gt 0 ] || set -- xfce lxqt mate cinnamon plasma gnome labwc sway
wanted=$common
for desktop in "$@"; do
  [ -n "${packages[$desktop]:-}" ] || { say "no desktop $desktop; known are ${!packages[*]}"; exit 2; }
  wanted+=" ${packages[$desktop]}"
done
ls build/fresh/trixie/*.deb >/dev/null 2>&1 || { say "no packages: run ./dev fresh trixie first"; exit 1; }

# SPACEMINT_DESKTOPS names a system that has the packages already, to try again quickly.
root=${SPACEMINT_DESKTOPS:-}
if [ -z "$root" ]; then
  root=$(mktemp -d /var/tmp/spacemint-desktops.XXXXXX)
  trap 'rm -rf --one-file-system "$root"' EXIT
  chmod 755 "$root"
  packaging/fresh.sh --make-system trixie "$root"
fi
mkdir -p build/desktops "$root/pictures"
chmod 777 "$root/pictures"
rm -rf "$root/tour"
cp -r tests/endtoend/desktop "$root/tour"
cp build/fresh/trixie/*.deb "$root/"
install -m 755 "$0" "$root/tour/desktops.sh"
export wanted
unshare --mount --pid --fork --kill-child --propagation private bash -euc '
  root=$1
  shift
  mount -t proc proc "$root/proc"
  mount --rbind /dev "$root/dev"
  mount -t tmpfs -o mode=1777 tmpfs "$root/dev/shm"
  mount --bind build/desktops "$root/pictures"
  exec chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 \
    DEBIAN_FRONTEND=noninteractive wanted="$wanted" /bin/bash -euc "
      apt-get -qq update >/dev/null
      apt-get -qq -y --no-install-recommends install \$wanted /spacemint*.deb >/var/log/desktops-apt.log 2>&1 ||
        { tail -n 20 /var/log/desktops-apt.log >&2; exit 1; }
      exec /bin/bash /tour/desktops.sh --inside \"\$@\"" - "$@"' - "$root" "$@"
