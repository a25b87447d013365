#!/usr/bin/env bash
# Every script answers --help with its own head and refuses what it doesn't know.
set -u
bad=0
for script in "$1"/*; do
  [ "$(basename "$script")" = common.sh ] && continue
  help=$("$script" --help) || { echo "$script --help fails"; bad=1; }
  case $help in
    *"scripts/$(basename "$script")"*) ;;
    *) echo "$script --help doesn't show how to call it"; bad=1 ;;
  esac
done
for script in setup build demo lint; do
  "$1/$script" --no-such-option >/dev/null 2>&1
  [ $? -eq 2 ] || { echo "$script takes an unknown option"; bad=1; }
done
exit $bad
