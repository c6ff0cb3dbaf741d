#!/usr/bin/env bash
# scripts/include-order on small trees, each with one mistake: exit code and text.
#
#   include_order_test.sh SCRIPT
set -euo pipefail
script=$1
unset GIT_DIR GIT_WORK_TREE GIT_INDEX_FILE # of a hook that may run the tests
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0
tree=

# A good tree: public headers, a room with a room inside, one above them, tests over all.
good_tree() { # name
  tree=$work/$1
  mkdir -p "$tree"/{include/qvbrisk,low,low/inner,high,tests/high}
  cd "$tree"
  git init -q
  cat >CONTRIBUTING.md <<'EOF'
# Working on it

| folder | holds | may use |
|---|---|---|
| `elsewhere/` | a table under another heading | nothing |

## Where things are

Read from the bottom.

| folder | holds | may use |
|---|---|---|
| `include/qvbrisk/` | public headers | nothing |
| `low/inner/` | numbers | `include/` |
| `low/` | texts | `low/inner/`, `include/qvbrisk/` |
| `high/` | the rest | `low/`, `low/inner/` |
| `tests/`, `bench/` | tests | everything |

## After it

| folder | holds | may use |
|---|---|---|
| `low/` | not of the table | everything |
EOF
  mkdir bench
  echo '#pragma once' >include/qvbrisk/types.h
  printf '#pragma once\n#include "qvbrisk/types.h"\n' >low/inner/number.h
  printf '#pragma once\n#include <string>\n#include "low/inner/number.h"\n' >low/text.h
  printf '#include "low/text.h"\n#  include "low/inner/number.h"\n' >high/top.cpp
  printf '#include "high/../nowhere"\n' >high/notes.md
  printf '#pragma once\n' >tests/high/scene.h
  printf '#include "tests/high/scene.h"\n#include "low/text.h"\n' >tests/high/top_test.cpp
  printf '#include "tests/high/scene.h"\n' >bench/top.cpp
  git add .
}

expect() { # exit code, line of the output or ""
  local code=0 said
  said=$("$script" "$tree" 2>&1) || code=$?
  if [ "$code" != "$1" ] || { [ -n "$2" ] && ! grep -qxF -- "$2" <<<"$said"; } || { [ -z "$2" ] && [ -n "$said" ]; }; then
    printf '%s: expected exit code %s and "%s"; exit code %s and\n%s\n' "${tree##*/}" "$1" "$2" "$code" "$said"
    status=1
  fi
}
readonly rule='(CONTRIBUTING.md, Where things are)'

good_tree good
expect 0 ""

good_tree backwards
printf '#include "high/top.h"\n' >>low/text.h
touch high/top.h
expect 1 "low/text.h:4: low may not use high $rule"

good_tree room_inside_a_room
printf '\n#include "low/text.h"\n' >>low/inner/number.h
expect 1 "low/inner/number.h:4: low/inner may not use low $rule"

good_tree not_added_yet
printf '#include "tests/high/scene.h"\n' >high/new.cpp
expect 1 "high/new.cpp:1: high may not use tests $rule"

good_tree ignored
echo 'generated.cpp' >.gitignore
printf '#include "tests/high/scene.h"\n' >high/generated.cpp
expect 0 ""

good_tree circle
sed -i 's/| `include\/` |/| `include\/`, `high\/` |/' CONTRIBUTING.md
expect 1 "CONTRIBUTING.md:15: the rooms use each other in a circle: low/inner -> high -> low -> low/inner $rule"

good_tree circle_over_everything
sed -i 's/| `include\/` |/| `tests\/` |/' CONTRIBUTING.md
expect 1 "CONTRIBUTING.md:17: the rooms use each other in a circle: low/inner -> tests -> low/inner $rule"

good_tree unresolved
printf '#include "low/gone.h"\n' >>high/top.cpp
expect 1 "high/top.cpp:3: \"low/gone.h\" is no file from the root of the tree, nor a public header $rule"

good_tree deleted
rm low/inner/number.h
expect 1 "high/top.cpp:2: \"low/inner/number.h\" is no file from the root of the tree, nor a public header $rule"

good_tree from_its_own_folder
printf '#include "text.h"\n' >low/text.cpp
expect 1 "low/text.cpp:1: \"text.h\" is no file from the root of the tree, nor a public header $rule"

good_tree ambiguous
mkdir high/low
touch high/low/text.h
expect 1 "high/top.cpp:1: \"low/text.h\" is more than one file: from the root and from elsewhere $rule"

good_tree no_row
mkdir attic
echo 'int a;' >attic/a.c
expect 1 "attic/a.c: no row covers the folder of this file $rule"

good_tree at_the_root
echo 'int a;' >a.cpp
expect 1 "a.cpp: no row covers the folder of this file $rule"

good_tree unknown_room
sed -i 's/| `include\/` |/| `middle\/` |/' CONTRIBUTING.md
expect 1 "CONTRIBUTING.md:14: low/inner may use middle, which has no row $rule"

good_tree empty_room
sed -i 's/| `high\/` |/| `high\/`, `attic\/` |/' CONTRIBUTING.md
expect 1 "CONTRIBUTING.md:16: no file of the tree is in attic $rule"

good_tree prose_for_rooms
sed -i 's/| `include\/` |/| what it likes |/' CONTRIBUTING.md
expect 1 "CONTRIBUTING.md:14: what low/inner may use is neither folders in backticks, \"nothing\" nor \"everything\" $rule"

good_tree two_rows
sed -i 's/| `high\/` |/| `high\/`, `low\/` |/' CONTRIBUTING.md
expect 1 "CONTRIBUTING.md:16: low has a row already $rule"

good_tree no_table
sed -i 's/^## Where things are/## Where/' CONTRIBUTING.md
expect 1 "CONTRIBUTING.md: there is no table of rooms $rule"

good_tree no_page
rm CONTRIBUTING.md
expect 1 "CONTRIBUTING.md: there is no such file, so no table of rooms"

exit $status
