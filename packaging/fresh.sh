#!/usr/bin/env bash
# Builds, tests and installs the program on a fresh Debian. Each system is made by debootstrap from the mirror that this
# machine's apt uses.
#
# In the first system, ./dev tests the last commit and makes the packages, which are left in build/fresh/RELEASE. The
# second system installs the package for the terminal with its dependencies, none of which may be of a desktop, and
# scans; then the application's, which it starts on a virtual screen as an ordinary user. It makes a scan with the panel,
# removes the packages and checks that no file is left. Needs root.
#
# usage: fresh.sh [RELEASE [FOLDER]]   with a folder of packages, only the second system
set -euo pipefail

suite=bookworm
user=ann
work=

say() { printf '%s\n' "fresh: $*" >&2; }
fail() { say "FAILED: $*"; exit 1; }

# The mirrors of a release: those that this machine's apt uses.
mirrors() {
  local here
  here=$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)
  apt-get indextargets --format '$(SITE) $(RELEASE) $(COMPONENT)' |
    sed -n "s|^\([^ ]*\) $here\(-[a-z]*\)\{0,1\} main\$|\1 \2|p" | sort -u |
    while read -r site part; do printf 'deb %s %s%s main\n' "$site" "$suite" "$part"; done
}

make_system() {
  local root=$1 mirror
  mirror=$(mirrors | sed -n "s|^deb \(.*\) $suite main\$|\1|p" | head -n 1)
  [ -n "$mirror" ] || fail "this machine's apt has no mirror of Debian"
  debootstrap --variant=minbase "$suite" "$root" "$mirror" >"$root.log" 2>&1 ||
    { tail -n 20 "$root.log" >&2; fail "debootstrap"; }
  mirrors >"$root/etc/apt/sources.list"
  # The system is deleted afterwards, so dpkg need not flush its files.
  echo force-unsafe-io >"$root/etc/dpkg/dpkg.cfg.d/fresh"
  # Keep packages from starting services.
  printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d"
  chmod +x "$root/usr/sbin/policy-rc.d"
  install -D -m 755 "$0" "$root/fresh/fresh.sh"
  say "a fresh $suite, $(du -sm "$root" | cut -f1) MB"
}

# Runs this script in the system. In namespaces of its own, so that all mounts and processes end together.
enter() {
  local root=$1
  shift
  unshare --mount --pid --fork --kill-child --propagation private bash -euc '
    root=$1 cache=$2
    shift 2
    # Inside, "/" must be a mount, as it is on every system: programs look up the volume of a file.
    mount --bind "$root" "$root"
    mount -t proc proc "$root/proc"
    if [ -n "$cache" ]; then
      mkdir -p "$root/ccache"
      mount --bind "$cache" "$root/ccache"
      mount --rbind /dev "$root/dev"
      mount -t sysfs sysfs "$root/sys" 2>/dev/null || mount --rbind /sys "$root/sys"
    fi
    exec chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 "$@"' - \
    "$root" "${cache:-}" ${SOURCE_DATE_EPOCH:+"SOURCE_DATE_EPOCH=$SOURCE_DATE_EPOCH"} /bin/bash /fresh/fresh.sh "$@"
}

# In a network of its own: the screens of this system's tests have the same numbers as those of the machine, and a program
# would otherwise find the machine's.
alone() { unshare --net -- "$@"; }

# Tests the last commit on a fresh system and makes the package there.
build() {
  local root=$work/build cache=$PWD/build/fresh/ccache-$suite
  make_system "$root"
  mkdir -p "$root/src" "$cache"
  git archive HEAD | tar -x -C "$root/src"
  SOURCE_DATE_EPOCH=$(git log -1 --format=%ct) enter "$root" --build
  rm -rf "build/fresh/$suite"
  cp -r "$root/src/build/release/package" "build/fresh/$suite"
  rm -rf "build/fresh/$suite/_CPack_Packages"
  rm -rf --one-file-system "$root"
}

# In the first system, as root.
build_inside() {
  apt update
  # The first two are not needed, but save time.
  apt install ccache mold iproute2 $(sed -n 's/^\(build\|test\): *//p' /src/packages.txt)
  export CCACHE_DIR=/ccache CCACHE_MAXSIZE=5G
  cd /src
  alone bash -c 'ip link set lo up && ./dev test'
  ./dev package
}

apt() {
  DEBIAN_FRONTEND=noninteractive apt-get -qq -y --no-install-recommends "$@" >/var/log/fresh-apt.log 2>&1 ||
    { tail -n 20 /var/log/fresh-apt.log >&2; fail "apt-get $*"; }
}

# Lists all files except those of users and the kernel, and the files that apt, dpkg and logs write.
files() {
  find / \( -path /proc -o -path /sys -o -path /dev -o -path /run -o -path /tmp -o -path /home -o -path /packages \
    -o -path /var/lib/apt -o -path /var/lib/dpkg -o -path /var/cache -o -path /var/log -o -path /fresh \) -prune \
    -o -print | sort
}

# The packages that came since the list of packages was written.
came() {
  dpkg-query -W -f '${Package}\n' | comm -13 /fresh/packages - | tr '\n' ' '
}

# In the second system, as root.
inside() {
  mount -t tmpfs tmpfs /dev/shm 2>/dev/null || { mkdir -p /dev/shm && mount -t tmpfs tmpfs /dev/shm; }
  mkdir -p /fresh
  apt update
  dpkg-query -W -f '${Package}\n' >/fresh/packages
  useradd --create-home --uid 1000 "$user"
  install -d -m 700 -o "$user" /run/user/1000
  # Install once and purge, so that both lists of files contain the packages' dependencies.
  apt install /packages/spacemintctl_*.deb
  say "for the terminal, $(dpkg-query -W -f='${Installed-Size}' spacemintctl) kB of its own, came: $(came)"
  ! came | grep -qE 'qt|x11|wayland|dbus' || fail "the package for the terminal needs a desktop"
  spacemintctl scan /etc --top 1 | grep -q '^/etc: ' || fail "spacemintctl does not scan"
  apt install xvfb xauth xdotool dbus dbus-daemon openbox
  apt install /packages/*.deb
  say "installed, $(dpkg-query -W -f='${Installed-Size}' spacemint) kB of its own"
  apt purge spacemint spacemintctl
  files >/fresh/before
  apt install /packages/*.deb
  alone runuser -u "$user" -- env -i HOME="/home/$user" USER="$user" PATH=/usr/bin:/bin LANG=C.UTF-8 \
    XDG_RUNTIME_DIR=/run/user/1000 dbus-run-session -- \
    xvfb-run --auto-servernum --server-args='-screen 0 1280x800x24 -noreset' /bin/bash /fresh/fresh.sh --as-user
  apt purge spacemint spacemintctl
  files >/fresh/after
  diff /fresh/before /fresh/after >&2 || fail "removing the package left or deleted these files"
  say "removed; no file is left"
}

# Waits until a command succeeds and prints something, and prints that. Fails after two minutes.
await() {
  local what=$1 deadline=$((SECONDS + 120)) said
  shift
  until said=$("$@" 2>/dev/null) && [ -n "$said" ]; do
    [ "$SECONDS" -lt "$deadline" ] || { cat "$HOME/errors" >&2; fail "no $what within two minutes"; }
    sleep 0.1
  done
  printf '%s\n' "$said"
}

# Runs as an ordinary user on a virtual screen with its own session bus: starts the program for the first
# time.
as_user() {
  local program window start=$EPOCHREALTIME
  openbox >/dev/null 2>&1 &
  mkdir -p "$HOME/Documents"
  # Larger than all installed files, because the first scan may be of the whole disk.
  fallocate -l 500M "$HOME/Documents/large"
  spacemint 2>"$HOME/errors" &
  program=$!
  window=$(await window xdotool search --onlyvisible --name '^Spacemint$')
  say "the window is shown after $(awk "BEGIN { printf \"%.1f\", $EPOCHREALTIME - $start }") s"
  # Return on the welcome page starts the first scan.
  xdotool windowactivate --sync "${window%%$'\n'*}" key Return
  await scan find "$HOME/.local/share/Spacemint/Snapshots" -name '*.json' >/dev/null
  spacemintctl files --top 1 | grep -q 'Documents/large' || fail "the scan does not contain the large file"
  say "the first scan, $(spacemintctl history | head -n 1 | sed 's/  */ /g'), is stored"
  kill -TERM "$program"
  wait "$program" || fail "the program ended with status $?"
  [ ! -s "$HOME/errors" ] || { cat "$HOME/errors" >&2; fail "the program wrote to standard error"; }
  say "the program ended on SIGTERM"
}

# Tries the packages on a fresh system.
try() {
  local root=$work/try
  make_system "$root"
  mkdir "$root/packages"
  cp "$1"/spacemint*.deb "$root/packages"
  cache='' enter "$root" --inside
}

case ${1:-} in
  --build) build_inside ;;
  --make-system) suite=$2 && make_system "$3" ;;
  --inside) inside ;;
  --as-user) as_user ;;
  *)
    suite=${1:-$suite}
    case $suite in bookworm | trixie) ;; *) fail "no release $suite; bookworm and trixie are known" ;; esac
    [ "$(id -u)" -eq 0 ] || fail "must run as root"
    work=$(mktemp -d /var/tmp/spacemint-fresh.XXXXXX)
    trap 'rm -rf --one-file-system "$work"' EXIT
    chmod 755 "$work"
    [ $# -ge 2 ] || build
    packages=${2:-build/fresh/$suite}
    try "$packages"
    say "all is well: $packages"
    ;;
esac
