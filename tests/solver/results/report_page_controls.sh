#!/bin/sh
# Opens report pages in a headless browser and uses them as a reader does: which curves are drawn, how one chooses others,
# the keyboard, names for screen readers, a finger that scrolls, names of bodies, light and dark, warnings, the waterline.
#   report_page_controls.sh <qvbrisk> <model of thirteen balls> <model of a drop> <model of a box afloat> <work folder>
# Ends with 77, "skipped", where there is no browser.
set -eu
command=$1 balls=$2 drop=$3 box=$4 folder=$5
probe=$(cd "$(dirname "$0")" && pwd)/report_page_controls.js

browser=$(command -v chromium || command -v chromium-browser || command -v google-chrome || true)
[ -n "$browser" ] || { echo "no chromium here"; exit 77; }

rm -rf "$folder"
mkdir -p "$folder"
cd "$folder"
"$command" run "$balls" --out balls --quiet
"$command" run "$drop" --out drop --quiet
cp "$box" box.toml
"$command" run box.toml --out box --quiet

# with_probe <page>: the page with the probe in it, as probed.html.
with_probe() {
  awk -v file="$probe" '{ if ($0 == "</body>") { print "<script>"; while ((getline line < file) > 0) print line; print "</script>" } print }' \
    "$1" > probed.html
}
# browse <page> [option of the browser]: what the probe says.
browse() {
  rm -rf profile
  "$browser" --headless --no-sandbox --disable-gpu --use-angle=swiftshader --enable-unsafe-swiftshader --disable-quic \
    --no-first-run --disable-background-networking --disable-component-update --disable-sync \
    --user-data-dir="$folder/profile" --window-size=1400,1000 --virtual-time-budget=10000 ${2:+"$2"} \
    --dump-dom "file://$folder/$1" > dom.html 2> log.txt
  body=$(grep -o '<body[^>]*>' dom.html | head -n 1)
}
open() {
  with_probe "$1"
  browse probed.html "${2:-}"
}
# A headless window is never as narrow as a phone, a frame in it is.
open_on_a_phone() {
  with_probe "$1"
  cat > phone.html <<'EOF'
<!DOCTYPE html><body><iframe src="probed.html" width="390" height="844"></iframe>
<script>addEventListener("message", (event) => Object.assign(document.body.dataset, event.data));</script></body>
EOF
  browse phone.html
}
value() { echo "$body" | sed -n "s/.* data-$1=\"\([^\"]*\)\".*/\1/p"; }
expect() {
  [ "$(value "$1")" = "$2" ] || { echo "$1: '$(value "$1")', not '$2'"; failed=yes; }
}
failed=no

open balls/report.html
expect error ""
expect badge "Finished"
expect opening end
expect share "8 of 13 curves; tick others in the list"
expect curves "8 then 13"
expect chosen 1
expect twins "solid 1|7-5 2"
expect jump no
expect turned 20.0
expect frames "-2 -3 -2 -81 -80"
expect typed no
expect camera moves
expect stayed yes
expect unnamed ""
expect silent 0
expect touch "pan-y pan-y pan-y"
expect overlaps 0
expect ground "rgb(243, 245, 248)"
[ "$(value labels)" -ge 10 ] || { echo "names shown: $(value labels)"; failed=yes; }
expect sideways no
light=$(value grid)

open_on_a_phone balls/report.html
expect width 390
expect sideways no
expect overlaps 0

open balls/report.html --blink-settings=preferredColorScheme=0
expect ground "rgb(18, 24, 31)"
[ "$(value grid)" != "$light" ] || { echo "the plots' grid is as light in the dark: $light"; failed=yes; }

sed 's/"notes":\[/"warnings":["the body is off the road","a table ends \\u003cearly>"],&/' balls/report.html > warned.html
open warned.html
expect badge "Finished, 2 warnings"
expect warnings "the body is off the road|a table ends &lt;early&gt;"
sed 's/"notes":\[/"warnings":["one"],&/' balls/report.html > warned.html
open warned.html
expect badge "Finished, 1 warning"

open drop/report.html
expect error ""
expect opening earlier

open box/report.html
expect error ""
expect waterline level
[ "$failed" = no ]
