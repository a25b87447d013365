#!/usr/bin/env bash
# Loads and unloads the driver in fresh processes, several at a time, on addresses of their own.
# Standard error, which has what the driver prints, may hold no more than how it read the panel's
# state file, and every process must end with 0.
set -u
program=$1 installation=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

one() {
  local dir="$work/$1" address="127.90.$(($$ % 250)).$1"
  cp -r "$installation" "$dir"
  # A frame that isn't there: the driver goes on trying while it is told to stop.
  sed -i "s|<value>127.0.0.1</value>|<value>127.91.$(($$ % 250)).$1</value>|" "$dir/Configuration/Settings.xml"
  printf ':wait SID LOADED within 20000\n:quit\n' |
    "$program" panel --dir "$dir" --address "$address" --log off >"$dir/out" 2>"$dir/err"
  local code=$?
  [ $code -eq 0 ] && [ "$(cat "$dir/err")" = 'Loading "config/QISState.dsf"...OK' ] && return 0
  echo "run $1: exit code $code"
  cat "$dir/out" "$dir/err"
  return 1
}

bad=0
for first in $(seq 1 5 50); do
  runs=()
  for number in $(seq "$first" $((first + 4))); do
    one "$number" &
    runs+=($!)
  done
  for run in "${runs[@]}"; do wait "$run" || bad=1; done
done
exit $bad
