#!/usr/bin/env bash
# `qfd panel --compare`: nothing to say about a panel that tells the truth, and every difference
# of one whose subscriptions aren't all there.
set -u
program=$1 installation=$2
work=$(mktemp -d)
address="127.93.$(($$ % 250)).$(($$ / 250 % 250 + 1))"
mkfifo "$work/commands"
trap 'kill $frame 2>/dev/null; rm -rf "$work"' EXIT
"$program" frame --bind "$address" </dev/null >"$work/frame" 2>&1 &
frame=$!
bad=0
fail() { echo "$*"; cat "$work/out" "$work/err"; bad=1; }

await() {  # what is to stand in the file, within 30 seconds
  for _ in $(seq 300); do
    grep -q "$1" "$2" 2>/dev/null && return 0
    sleep 0.1
  done
  fail "no $1"
}

cp -r "$installation" "$work/dir"
sed -i "s|<value>127.0.0.1</value>|<value>$address</value>|" "$work/dir/Configuration/Settings.xml"
await listening "$work/frame"

panel() { "$program" panel --dir "$work/dir" --address 127.0.0.1 --log off "$@" >"$work/out" 2>"$work/err"; }

printf '%s\n' ':wait TID SOURCE16.NAME within 20000' 'ME1.PST.SRC5' 'ME1.CUT' 'PANEL.SHIFT VAL=ON' |
  panel --index 1 --compare
code=$?
[ $code -eq 0 ] || fail "a true panel: exit code $code"
grep -q DIFFERENCE "$work/out" && fail "a true panel differs"

# The whole list is there again when the fresh panel comes.
list="$work/dir/Configuration/System/Subscriptions.xml"
cp "$list" "$work/whole"
sed -i 's|\[50-51\]|50|' "$list"
panel --index 1 <"$work/commands" &
run=$!
exec 3>"$work/commands"
echo ':wait TID SOURCE16.NAME within 20000' >&3
await 'TID SOURCE16.NAME' "$work/out"
cp "$work/whole" "$list"
echo ':compare' >&3
exec 3>&-
wait $run
code=$?
[ $code -eq 1 ] || fail "a panel without a subscription: exit code $code"
[ "$(grep DIFFERENCE "$work/out")" = 'DIFFERENCE TID SHOW.NAME: this panel , a fresh one Sample show' ] ||
  fail "another difference than the one there is"
exit $bad
