#!/usr/bin/env bash
# check_rooms.sh LINKS DOCUMENT: compares the table of rooms in DOCUMENT with what the build links (LINKS: a room a line,
# behind it the rooms that it links). Fails, and tells each difference, where a room has no row, a row no room, a row
# names other rooms than are linked, or a room stands above one that it links.
set -euo pipefail

awk -v document="$2" '
  function tell(text) { print document ": " text; failed = 1 }
  NR == FNR { built[$1] = 1; for (i = 2; i <= NF; ++i) linked[$1, $i] = 1; next }
  /^\| Room \|/ { table = 1; next }
  table && !/^\|/ { table = 0 }
  !table || /^\|-/ { next }
  {
    split($0, cells, "|")
    # The cells hold names in backticks: the row of one room, or that of a few folders that are none.
    count = split(cells[2], names, "`")
    room = names[2]
    if (count > 3 || !(room in built)) {
      for (i = 2; i <= count; i += 2) others[names[i]] = 1
      next
    }
    listed[room] = 1
    count = split(cells[4], names, "`")
    for (i = 2; i <= count; i += 2) {
      if (!(names[i] in built) || names[i] == room) continue
      allowed[room, names[i]] = 1
      if (!((room, names[i]) in linked)) tell("`" room "` does not link `" names[i] "`, which its row names")
      if (!(names[i] in listed)) tell("`" room "` stands above `" names[i] "`, which it links")
    }
  }
  END {
    for (room in built) if (!(room in listed)) tell("`" room "` has no row")
    for (pair in linked) {
      split(pair, rooms, SUBSEP)
      if (!(pair in allowed)) tell("the row of `" rooms[1] "` leaves out `" rooms[2] "`, which it links")
    }
    for (name in others) {
      if (system("test -d " name) != 0) tell("there is no room `" name "`")
    }
    exit failed
  }' "$1" "$2" >&2
