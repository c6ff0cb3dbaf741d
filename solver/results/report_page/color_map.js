'use strict';
// Colour maps whose steps look even: `color` gives [r, g, b] from 0 to 1 for a value from 0 to 1, `legend` and
// `key` make legends of them. Needs `page`.
const colorMap = (() => {
  const table = (text) => text.split(' ').map((hex) => [0, 2, 4].map((k) => parseInt(hex.substr(k, 2), 16) / 255));
  const maps = {
    viridis: table('440154 482173 433e85 38588c 2d708e 25858e 1e9b8a 2ab07f 52c569 86d549 c2df23 fde725'),
    water: table('3f86ad 5b9fc1 7bb6d1 9fcde0 c8e4ee'),
    earth: table('5f6f6a 76806f 8f9178 a8a284 bfb292 d2c3a4 e2d4b9 efe5d0'),
  };
  function color(name, value) {
    const map = maps[name];
    const at = Math.min(Math.max(value || 0, 0), 1) * (map.length - 1);
    const k = Math.min(Math.floor(at), map.length - 2), f = at - k;
    return [0, 1, 2].map((c) => map[k][c] * (1 - f) + map[k + 1][c] * f);
  }
  const css = (name) => 'linear-gradient(90deg,' + maps[name].map((c) => 'rgb(' + c.map((v) => Math.round(v * 255)).join() + ')').join() + ')';

  function legend(title, name, low, high, unit) {
    const box = document.createElement('div');
    box.className = 'legend';
    const head = document.createElement('b');
    head.textContent = title + (unit ? ' [' + unit + ']' : '');
    const bar = document.createElement('div');
    bar.className = 'bar';
    bar.style.background = css(name);
    const marks = document.createElement('div');
    marks.className = 'marks';
    for (let k = 0; k <= 4; ++k) {
      const mark = document.createElement('span');
      mark.textContent = page.number(low + (high - low) * k / 4, 3);
      marks.append(mark);
    }
    box.append(head, bar, marks);
    return box;
  }
  // Legend of single colours: `entries` are pairs of a colour and what it stands for.
  function key(title, entries) {
    const box = document.createElement('div'), head = document.createElement('b'), line = document.createElement('div');
    box.className = 'legend';
    head.textContent = title;
    line.className = 'swatches';
    for (const [paint, text] of entries) {
      const item = document.createElement('span'), swatch = document.createElement('i');
      swatch.style.background = paint;
      item.append(swatch, document.createTextNode(text));
      line.append(item);
    }
    box.append(head, line);
    return box;
  }
  return { color, legend, key };
})();
