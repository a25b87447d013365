# Shared by the scripts; sourced, not run.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
# Packages that scripts/setup unpacked below the project, where it had no right to install them.
[ -f "$root/.deps/env" ] && . "$root/.deps/env"

# The two cores of a small machine are the measure; QFD_JOBS says otherwise.
jobs=${QFD_JOBS:-$(nproc)}

say() { printf '== %s\n' "$*"; }
fail() { printf '%s: %s\n' "${0##*/}" "$*" >&2; exit 2; }

# Prints the comment at the head of a script: its help text.
usage() { sed -n '2,/^[^#]/{s/^# \{0,1\}//p}' "$0" | sed '/^[^#]*$/!d'; }
