#!/usr/bin/env bash
# `qfd frame` as its users run it: exit codes, the first line, its input, its signals.
#
#   program.sh QFD
set -u
qfd=$1
bad=0
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# check WHAT WANTED FOUND
check() {
  [ "$2" = "$3" ] && return
  printf '%s\n  wanted: %s\n  found:  %s\n' "$1" "$2" "$3" >&2
  bad=1
}

# fails WANTED-ERROR ARGUMENT...: exit code 2, nothing on standard output
fails() {
  local wanted=$1 output
  shift
  output=$("$qfd" frame "$@" 2>"$work/error" </dev/null)
  check "exit code of frame $*" 2 $?
  check "output of frame $*" "" "$output"
  check "error of frame $*" "$wanted" "$(cat "$work/error")"
}

# begin ARGUMENT...: a frame on a free port, its input and output on descriptors 7 and 8
begin() {
  coproc frame { exec "$qfd" frame --no-time --port 0 "$@"; }
  pid=$frame_PID
  exec 8<&"${frame[0]}" 7>&"${frame[1]}" {frame[1]}>&-
  read -r -t 30 first <&8 || first="no line"
}
# ends WHAT: the exit code is 0
ends() { wait "$pid"; check "exit code after $1" 0 $?; }
# answers: the next line
answer() { read -r -t 30 line <&8 && printf '%s' "$line"; }

printf '{"behaviour": 1}' >"$work/bad.json"
fails "qfd frame: $work/bad.json:1:15: \"behaviour\" must be a string, not a number
{\"behaviour\": 1}
              ^" --model "$work/bad.json"
fails "qfd frame: $work/none.json: No such file or directory" --model "$work/none.json"
fails "--port: Value 70000 not in range 0 to 65535
Run with --help for more information." --port 70000

printf '# comment\nat 1s freeze\n  on connect x thaw\n' >"$work/bad.scenario"
fails "qfd frame: $work/bad.scenario:3:14: CLIENT must be a number from 1 to 1000000000, not 'x'
  on connect x thaw
             ^" --scenario "$work/bad.scenario"
fails "qfd frame: $work/none: No such file or directory" --scenario "$work/none"

printf 'at 1ms cut\non connect 1 break to 1 0 this\nthen 10ms restart model %s\n' \
  "$(dirname "$0")/../../../installation/frame/sample-switcher.json" >"$work/good.scenario"
begin --scenario "$work/good.scenario"
port=${first#*port=} port=${port%% *}
check "a time" 'scenario line=1 action="cut"' "$(answer)"
exec 9<>"/dev/tcp/127.0.0.1/$port"
check "a connection" "#1 connected" "$(answer | cut -d' ' -f1,2)"
check "a trigger" '#1 scenario line=2 action="break to 1 0 this"' "$(answer)"
check "a cut" '#1 closed reason="cut at byte 0 of message 1 to the panel"' "$(answer)"
exec 9>&-
check "what follows" '#1 scenario line=3 action="restart model' "$(answer | cut -d' ' -f1-5)"
check "a restart" 'restarted model="sample switcher"' "$(answer)"
check "the return" 'returned' "$(answer)"
echo "dump --json" >&7
check "an empty dump" "ok command=dump" "$(answer)"
echo "quit" >&7
ends "a scenario"

begin
port=${first#*port=} port=${port%% *}
check "the first line" "listening address=127.0.0.1 port=$port model=\"sample switcher\"" "$first"
fails "qfd frame: cannot listen on 127.0.0.1:$port: Address already in use" --port "$port"
echo "get 10 24000000" >&7
check "a value" "parameter pid=10 did=24000000 type=UInt16 value=1" "$(answer)"
check "its end" "ok command=get" "$(answer)"
printf 'quit' >&7  # without a newline: the end of the input completes the line
exec 7>&-
check "quit" "ok command=quit" "$(answer)"
check "the last line" "stopped" "$(answer)"
ends quit

for signal in TERM INT; do
  begin
  port=${first#*port=} port=${port%% *}
  echo "# the end of the input stops nothing" >&7
  exec 7>&-
  for panel in 1 2 3; do
    exec 9<>"/dev/tcp/127.0.0.1/$port"
    check "a connection after the end of the input" "#$panel connected" "$(answer | cut -d' ' -f1,2)"
    exec 9>&-
    check "its end" "#$panel closed reason=\"closed by the panel\"" "$(answer)"
  done
  kill -s "$signal" "$pid"
  check "after SIG$signal" "stopped" "$(answer)"
  ends "SIG$signal"
done

begin --json
check "the first line in JSON" '{"what":"listening"' "${first%%,*}"
printf 'set 51 01000001 "\\x92\\xe9"\nset 61 3e000000 0.1\nquit\n' >&7
check "bytes in JSON" \
  '{"what":"parameter","pid":51,"did":"01000001","type":"String","value":"\u0092\u00e9"}' \
  "$(answer)"
answer >/dev/null
check "a float in JSON" \
  '{"what":"parameter","pid":61,"did":"3e000000","type":"Float","value":0.1}' "$(answer)"
ends quit

[ -n "$("$qfd" frame --help)" ] || check "--help" "a text" ""
"$qfd" --version | grep -q '^qfd [0-9]' || check "--version" "qfd NUMBER" "$("$qfd" --version)"
"$qfd" 2>"$work/error"
check "exit code without a subcommand" 2 $?
exit $bad
