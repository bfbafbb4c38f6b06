#!/usr/bin/env bash
# demo.sh QELUTIL [FOLDER]: converts the example phone's calendar to iCalendar into FOLDER (default:
# beside the program's build), shows the result, and one of its rules in words and as month grids.
set -euo pipefail
qelutil=$1
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
folder=${2:-$(dirname "$qelutil")/..}
result=$(cd "$folder" && pwd)/phone.ics

"$qelutil" convert --to ics -o "$result" "$here/phone.vcs"
echo
echo "== phone.vcs as iCalendar"
echo
tr -d '\r' <"$result"
echo
echo "== its first rule"
echo
"$qelutil" rule "W2 MO WE FR #10" --start 20050615 --calendar
echo
echo "The whole file is $result"
