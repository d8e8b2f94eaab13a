#!/usr/bin/env bash
# Builds the Debian package from a built build folder (the argument, by
# default build/), installs it, and runs the installed program as a user who
# is not root, offscreen, as a new user would: the free game is prepared,
# the main window comes up, and the user's files land in that user's data
# folder. Then the package is removed.
# As root the user is a throwaway one; otherwise it is you, with a fresh
# temporary home, so your own settings stay untouched.
set -euo pipefail
build=$(realpath "${1:-$(dirname "$0")/../build}")
cd "$(dirname "$0")/.."
scripts/deps.sh
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"

log=""
fail() {
    echo "package test: $*" >&2
    [ -n "$log" ] && [ -s "$log" ] && sed 's/^/  halvane: /' "$log" >&2
    exit 1
}

(cd "$build" && rm -f halvane_*.deb && cpack -G DEB >/dev/null)
package=$(ls "$build"/halvane_*.deb)
[[ $(basename "$package") =~ ^halvane_[0-9.]+_[a-z0-9]+\.deb$ ]] || fail "package named $package"
depends=$(dpkg-deb -f "$package" Depends | sed 's/ *([^)]*)//g; s/, */\n/g')
for needed in libqt6widgets6 libqt6gui6 libqt6core6 zlib1g qt6-image-formats-plugins; do
    grep -qx "$needed" <<<"$depends" || fail "Depends lacks $needed"
done
[ "$(dpkg-deb -f "$package" Recommends)" = "ioquake3-server, openarena-server" ] ||
    fail "Recommends: $(dpkg-deb -f "$package" Recommends)"
# Debian's own checks (copyright, changelog, manual page, description...):
# what it says is shown, an error fails the test.
checked=0
lint=$(lintian --fail-on error --tag-display-limit 0 "$package" 2>&1) || checked=$?
grep -v 'root privileges' <<<"$lint" >&2 || true
[ "$checked" -eq 0 ] || fail "lintian found errors in $(basename "$package")"

user="" home="" program=""
cleanup() {
    if [ -n "$program" ]; then
        kill "$program" 2>/dev/null || true
        wait "$program" 2>/dev/null || true
    fi
    if [ "$(id -u)" -eq 0 ] && [ -n "$user" ]; then
        userdel --remove "$user" 2>/dev/null || true
    elif [ -n "$home" ]; then
        rm -rf "$home"
    fi
    $sudo apt-get purge -y -q halvane >/dev/null 2>&1 || true
}
trap cleanup EXIT

# Through apt, so the package's dependencies must resolve.
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -q --reinstall "$package" >/dev/null
desktop-file-validate /usr/share/applications/halvane.desktop
appstreamcli validate --no-net /usr/share/metainfo/org.example.halvane.metainfo.xml >/dev/null
installed=$(dpkg -L halvane | grep '^/usr/share/halvane/' | sort)

as_user=()
if [ "$(id -u)" -eq 0 ]; then
    user="halvane-test-$$"
    home="/tmp/$user"
    useradd --create-home --home-dir "$home" --shell /bin/sh "$user"
    as_user=(setpriv --reuid="$user" --regid="$user" --init-groups)
else
    user=$(id -un)
    home=$(mktemp -d)
fi
# A fresh session of that user; each part execs the next, so a program
# started in the background keeps the id the shell reports.
run=("${as_user[@]}" env -i HOME="$home" USER="$user" PATH=/usr/bin:/bin LANG=C.UTF-8
     XDG_RUNTIME_DIR="$home/run" QT_QPA_PLATFORM=offscreen)
"${as_user[@]}" mkdir -m 700 "$home/run"

folder="$home/.local/share/Halvane/program"
"${run[@]}" halvane --prepare-first-run
[ -x "$home/.local/share/Halvane/openarena/quake3.exe" ] || fail "the free game was not prepared"
grep -q "^Path=$home/.local/share/Halvane/openarena" "$home/.config/Halvane/Halvane.ini" ||
    fail "the game location was not stored"
cmp "$folder/botlist.txt" /usr/share/halvane/botlist.txt || fail "the bot list was not copied"
[ -s "$folder/maplist.txt" ] && [ -s "$folder/mapsel.txt" ] || fail "no maps offered in $folder"

# The main window's load makes the user's catalogue from the installed one
# and imports the offered maps, deleting the import list; the program then
# waits in its window.
log="$home/halvane.log"
"${run[@]}" halvane 2>"$log" &
program=$!
for _ in $(seq 1 100); do
    [ -s "$folder/maps.dat" ] && [ ! -e "$folder/maplist.txt" ] && break
    kill -0 "$program" 2>/dev/null || fail "halvane ended during start-up"
    sleep 0.2
done
[ ! -e "$folder/maplist.txt" ] || fail "the main window did not load"
sleep 1
kill -0 "$program" 2>/dev/null || fail "halvane ended after start-up"
grep -q oa_dm1 "$folder/maps.dat" || fail "the offered maps are not in $folder/maps.dat"
[ "$(stat -c %U "$folder/maps.dat")" = "$user" ] || fail "maps.dat does not belong to $user"
[ "$(find /usr/share/halvane | sort)" = "$(printf '/usr/share/halvane\n%s' "$installed" | sort)" ] ||
    fail "the program wrote into /usr/share/halvane"
echo "package test: $(basename "$package") installed and ran for $user"
