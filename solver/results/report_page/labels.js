'use strict';
// Names beside what they name, none over another: a name that would lie on one already placed moves up, with a line down
// to its place, and is left out where there is no room. Needs `theme`.
function makeLabels(box, names) {
  const height = 20, gap = 3, rows = 7;
  const labels = names.map(({ text }) => {
    const label = document.createElement('span');
    label.textContent = text;
    label.hidden = true;
    box.append(label);
    return label;
  });
  const paint = () => labels.forEach((label, k) => { label.style.color = theme.legible(names[k].color); });
  paint();
  theme.onChange(paint);
  const widths = labels.map(() => 0);
  const overlaps = (a, b) => a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;

  // Shows the names at places { x, y, depth } in pixels, null for one that is not shown; the nearest come first.
  function place(places, width) {
    const taken = [], order = places.map((_, k) => k).filter((k) => places[k]).sort((a, b) => places[a].depth - places[b].depth);
    labels.forEach((label, k) => { label.hidden = !places[k]; });
    for (const k of order) if (!widths[k]) widths[k] = labels[k].offsetWidth;
    for (const k of order) {
      const half = widths[k] / 2, x = Math.min(Math.max(places[k].x, half), Math.max(width - half, half));
      let lifted = 0, room = null;
      for (; lifted < rows && !room; ++lifted) {
        const bottom = places[k].y - gap - lifted * height;
        const spot = { left: x - half - 2, right: x + half + 2, top: bottom - height, bottom };
        if (spot.top >= 0 && !taken.some((other) => overlaps(spot, other))) room = spot;
      }
      labels[k].hidden = !room;
      if (!room) continue;
      taken.push(room);
      labels[k].style.transform = `translate(${(x - half).toFixed(1)}px, ${room.top.toFixed(1)}px)`;
      labels[k].style.setProperty('--lead', (lifted - 1) * height + 'px');
    }
  }
  return { place };
}
