#!/bin/sh
# Opens a run's report page in a headless browser: no error may come up, the plots and the 3D picture must be drawn.
# Columns of the whole model stand under headings of their own: the energies, and the model's variables and equations.
#   report_page_in_browser.sh <qvbrisk> <model.toml> <work folder> [columns of variables and equations]
# Ends with 77, "skipped", where there is no browser.
set -eu
command=$1 model=$2 folder=$3 states=${4:-}

browser=$(command -v chromium || command -v chromium-browser || command -v google-chrome || true)
[ -n "$browser" ] || { echo "no chromium here"; exit 77; }

rm -rf "$folder"
mkdir -p "$folder/profile"
cp "$model" "$folder/model.toml"
cd "$folder"
"$command" run model.toml --out results --quiet

# A copy that looks at its own pictures: the number of colours in the 3D view and in each plot, and whether hiding the
# water changes the view.
probe='<script>
addEventListener("error", (event) => { document.body.dataset.error = event.message; });
const colors = (canvas) => new Set(new Uint32Array(canvas.getContext("2d").getImageData(0, 0, canvas.width, canvas.height).data.buffer)).size;
const urls = [];
savePicture = (url) => {
  if (urls.push(url) > 1) return;
  const image = new Image();
  image.onload = () => {
    const copy = document.createElement("canvas");
    copy.width = image.width;
    copy.height = image.height;
    copy.getContext("2d").drawImage(image, 0, 0);
    document.body.dataset.viewColors = colors(copy);
  };
  image.src = url;
};
const listed = (heading) => [...document.querySelectorAll("#column-list .group")].filter((g) => g.querySelector("summary").firstChild.data === heading)
  .map((g) => [...g.querySelectorAll("label")].map((line) => line.querySelector("input").nextSibling.data).join(" ")).join(" and ");
document.body.dataset.states = listed("Variables and equations");
document.body.dataset.energies = listed("Energies");
document.getElementById("play").click();
document.getElementById("back").click();
for (const id of ["arrows", "terrain-mesh", "terrain-clear", "clear-bodies", "hull-net"]) document.getElementById(id).click();
document.querySelector("#column-list input").click();
document.getElementById("new-plot").click();
document.getElementById("picture").click();
document.getElementById("water-sheet").click();
document.getElementById("picture").click();
document.body.dataset.water = urls[0] === urls[1] ? "no" : "yes";
document.getElementById("hull-paint").click();
document.body.dataset.plotColors = Math.min(...[...document.querySelectorAll(".plot canvas")].map(colors));
</script>'
awk -v probe="$probe" '{ if ($0 == "</body>") print probe; print }' results/report.html > probed.html

"$browser" --headless --no-sandbox --disable-gpu --use-angle=swiftshader --enable-unsafe-swiftshader --disable-quic \
  --no-first-run --disable-background-networking --disable-component-update --disable-sync \
  --user-data-dir="$folder/profile" --window-size=1400,1000 --virtual-time-budget=10000 --enable-logging=stderr \
  --dump-dom "file://$folder/probed.html" > dom.html 2> log.txt

fail() { echo "$1"; grep CONSOLE log.txt || true; exit 1; }
# The software renderer tells of its own slowness; all else on the console is a fault.
if grep CONSOLE log.txt | grep -v "GL Driver Message"; then fail "the console is not empty"; fi
body=$(grep -o '<body[^>]*>' dom.html | head -n 1)
value() { echo "$body" | sed -n "s/.*data-$1=\"\([^\"]*\)\".*/\1/p"; }
[ "$(value ready)" = yes ] || fail "the scripts did not reach their end: $body"
[ -z "$(value error)" ] || fail "$(value error)"
view=$(value view-colors) plots=$(value plot-colors)
[ "${view:-0}" -gt 200 ] || fail "the 3D view has ${view:-0} colours: nothing is drawn"
[ "${plots:-0}" -gt 5 ] || fail "a plot has ${plots:-0} colours: nothing is drawn"
wanted=no
if grep -q '^type = "hull"' model.toml; then wanted=yes; fi
[ "$(value water)" = "$wanted" ] || fail "water in the 3D view: $(value water), not $wanted"
[ "$(value states)" = "$states" ] || fail "variables and equations in the list: '$(value states)', not '$states'"
[ "$(value energies)" = "kinetic_energy potential_energy kinetic_and_potential_energy" ] || fail "energies in the list: $(value energies)"
echo "3D view: $view colours; plots: $plots or more"
