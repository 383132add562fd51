#!/usr/bin/env bash
# Proves a package on a Debian 12 that has never seen this project: made by debootstrap from the mirror that apt
# of this machine uses, the package installed with what it depends on, the program started on a screen of its own
# as an ordinary user, one scan made by its panel, and the package removed without a trace. Needs root.
#
# usage: fresh.sh PACKAGE.deb
set -euo pipefail

suite=bookworm
user=ann

say() { printf '%s\n' "fresh: $*" >&2; }
fail() { say "FAILED: $*"; exit 1; }

# The lines of a sources.list, as this machine's apt reads its own.
sources() {
  apt-get indextargets --format '$(SITE) $(RELEASE) $(COMPONENT) $(CREATED_BY)' |
    sed -n "s|^\([^ ]*\) \(${suite}[^ ]*\) main Packages$|deb \1 \2 main|p" | sort -u
}

make_system() {
  local root=$1 mirror
  mirror=$(sources | sed -n "s|^deb \(.*\) $suite main\$|\1|p" | head -n 1)
  [ -n "$mirror" ] || fail "apt of this machine knows no $suite"
  debootstrap --variant=minbase "$suite" "$root" "$mirror" >"$root.log" 2>&1 ||
    { tail -n 20 "$root.log" >&2; fail "debootstrap"; }
  sources >"$root/etc/apt/sources.list"
  # A system that is thrown away needs no care for a loss of power.
  echo force-unsafe-io >"$root/etc/dpkg/dpkg.cfg.d/fresh"
  # Nothing that a package wants to start is started here.
  printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d"
  chmod +x "$root/usr/sbin/policy-rc.d"
}

apt() {
  DEBIAN_FRONTEND=noninteractive apt-get -qq -y --no-install-recommends "$@" >/var/log/fresh-apt.log 2>&1 ||
    { tail -n 20 /var/log/fresh-apt.log >&2; fail "apt-get $*"; }
}

# Every file but those of users, of the kernel, and what apt, dpkg and logs write about themselves.
files() {
  find / \( -path /proc -o -path /sys -o -path /dev -o -path /run -o -path /tmp -o -path /home -o -path /package.deb \
    -o -path /var/lib/apt -o -path /var/lib/dpkg -o -path /var/cache -o -path /var/log -o -path /fresh \) -prune \
    -o -print | sort
}

# In the new system, as root.
inside() {
  mount -t proc proc /proc
  mount -t tmpfs tmpfs /dev/shm 2>/dev/null || { mkdir -p /dev/shm && mount -t tmpfs tmpfs /dev/shm; }
  mkdir -p /fresh
  apt update
  apt install xvfb xauth xdotool dbus dbus-daemon openbox
  useradd --create-home --uid 1000 "$user"
  install -d -m 700 -o "$user" /run/user/1000
  # Apt's own way, with what the package depends on; what that brought stays for the comparison.
  apt install /package.deb
  say "installed, $(dpkg-query -W -f='${Installed-Size}' spacemint) kB of its own"
  apt purge spacemint
  files >/fresh/before
  apt install /package.deb
  runuser -u "$user" -- env -i HOME="/home/$user" USER="$user" PATH=/usr/bin:/bin LANG=C.UTF-8 \
    XDG_RUNTIME_DIR=/run/user/1000 dbus-run-session -- \
    xvfb-run --auto-servernum --server-args='-screen 0 1280x800x24' /bin/bash /fresh/fresh.sh --as-user
  apt purge spacemint
  files >/fresh/after
  diff /fresh/before /fresh/after >&2 || fail "this is left, or gone, after the package was removed"
  say "removed, and nothing is left"
}

# Waits until a command has something to say, and says it.
await() {
  local what=$1 deadline=$((SECONDS + 120)) said
  shift
  until said=$("$@" 2>/dev/null) && [ -n "$said" ]; do
    [ "$SECONDS" -lt "$deadline" ] || { cat "$HOME/errors" >&2; fail "no $what within two minutes"; }
    sleep 0.1
  done
  printf '%s\n' "$said"
}

# On a screen and a bus of its own, as an ordinary user who starts it for the first time.
as_user() {
  local program window start=$EPOCHREALTIME
  openbox >/dev/null 2>&1 &
  mkdir -p "$HOME/Documents"
  # Larger than anything that is installed: the first scan may be of the whole disk.
  fallocate -l 500M "$HOME/Documents/large"
  spacemint 2>"$HOME/errors" &
  program=$!
  window=$(await window xdotool search --onlyvisible --name '^Spacemint$')
  say "its window is there after $(awk "BEGIN { printf \"%.1f\", $EPOCHREALTIME - $start }") s"
  # The welcome page starts the first scan by Return.
  xdotool windowactivate --sync "${window%%$'\n'*}" key Return
  await scan find "$HOME/.local/share/Spacemint/Snapshots" -name '*.json' >/dev/null
  spacemintctl files --top 1 | grep -q 'Documents/large' || fail "the scan does not have the large file"
  say "its first scan, $(spacemintctl history | head -n 1 | sed 's/  */ /g'), is stored"
  kill -TERM "$program"
  wait "$program" || fail "it ended with $?"
  [ ! -s "$HOME/errors" ] || { cat "$HOME/errors" >&2; fail "it complained"; }
  say "it ended when it was told to"
}

case ${1:-} in
  --inside) inside ;;
  --as-user) as_user ;;
  *)
    package=$(realpath "${1:?the package to prove}")
    [ "$(id -u)" -eq 0 ] || fail "only root can make a system to try it in"
    root=$(mktemp -d /var/tmp/spacemint-fresh.XXXXXX)
    trap 'rm -rf --one-file-system "$root" "$root.log"' EXIT
    chmod 755 "$root"
    make_system "$root"
    say "a fresh $suite, $(du -sm "$root" | cut -f1) MB"
    install -D -m 755 "$0" "$root/fresh/fresh.sh"
    cp "$package" "$root/package.deb"
    # In namespaces of its own: what was mounted and started there ends with it.
    unshare --mount --pid --fork --kill-child --propagation private \
      chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 /bin/bash /fresh/fresh.sh --inside
    say "all is well"
    ;;
esac
