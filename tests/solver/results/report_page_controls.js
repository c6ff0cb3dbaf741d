'use strict';
// Uses a report page as a reader does and writes what it finds into the body's data: report_page_controls.sh compares.
addEventListener('error', (event) => { document.body.dataset.error = event.message; });
(() => {
  const said = document.body.dataset, byId = (id) => document.getElementById(id), stage = byId('stage');
  const press = (target, key, more = {}) => target.dispatchEvent(new KeyboardEvent('keydown', { key, bubbles: true, cancelable: true, ...more }));
  const plots = () => [...document.querySelectorAll('.chart')];
  const curves = (plot) => plot.querySelectorAll('.key > span').length;
  said.badge = byId('outcome').textContent;
  said.warnings = [...document.querySelectorAll('#warnings li')].map((line) => line.textContent).join('|');
  said.opening = clock.time < clock.end - 1e-9 ? 'earlier' : 'end';

  // Curves of a plot that is about more of them than it draws, and all of them on demand.
  const heights = plots().find((plot) => plot.querySelector('header b').textContent === 'Height of bodies');
  said.share = heights.querySelector('.share').hidden ? '' : heights.querySelector('.share span').textContent;
  const before = curves(heights);
  if (said.share) heights.querySelector('.share button').click();
  said.curves = `${before} then ${curves(heights)}`;
  said.drawn = byId('drawn-count').textContent;
  byId('new-plot').click();
  document.querySelector('#column-list input').click();
  said.chosen = curves(plots().pop());

  // Equal curves have styles of their own.
  const column = (name) => page.columnByName.get(name);
  const twins = ['ball_number_1.z', 'ball_number_2.z'].map(column).filter(Boolean);
  said.twins = curveStyle.stylesOf(twins).map(({ dash, mark }) => `${dash.join('-') || 'solid'} ${mark}`).join('|');

  const angle = column('swivel.angle_z');
  if (angle) {
    said.turned = Math.max(...angle.values).toFixed(1);
    said.jump = Math.max(...angle.values.map((v, k) => k ? Math.abs(v - angle.values[k - 1]) : 0)) < 1 ? 'no' : 'yes';
  }

  // Keys move the time and the camera, and leave texts that are typed alone.
  const times = [];
  press(document.body, 'End');
  for (const key of ['ArrowLeft', ',', '.', 'Home', 'ArrowRight']) {
    press(document.body, key);
    times.push(page.indexAt(page.arrays.frame_times, clock.time) - page.frames);
  }
  said.frames = times.join(' ');
  press(byId('search'), 'End');
  said.typed = clock.time < clock.end ? 'no' : 'yes';
  const pictures = [];
  savePicture = (url) => pictures.push(url);
  byId('picture').click();
  const moves = [['ArrowLeft'], ['ArrowUp'], ['ArrowRight', { shiftKey: true }], ['+'], ['ArrowDown'], ['-']];
  for (const [key, more] of moves) {
    press(stage, key, more);
    byId('picture').click();
  }
  press(document.body, 'Home');
  press(stage, 'ArrowLeft');
  said.camera = new Set(pictures).size === pictures.length ? 'moves' : 'stands';
  said.stayed = clock.time === clock.start ? 'yes' : 'no';

  // Names for screen readers, and what a thumb may do.
  const named = (part) => (part.getAttribute('aria-label') || part.textContent || (part.labels && part.labels[0] && part.labels[0].textContent) || '').trim();
  said.unnamed = [...document.querySelectorAll('button, select, input, [role=img], [role=group]')].filter((part) => !/\w/.test(named(part)))
    .map((part) => part.outerHTML.slice(0, 80)).join('|');
  said.silent = [...document.querySelectorAll('canvas')].filter((c) => !c.getAttribute('aria-label') && !c.getAttribute('aria-hidden') && !c.closest('[aria-hidden]')).length;
  said.touch = [stage, byId('view'), document.querySelector('.plot')].map((part) => getComputedStyle(part).touchAction).join(' ');

  // Names of bodies lie beside each other.
  byId('picture').click();
  const boxes = [...document.querySelectorAll('#labels span')].filter((label) => !label.hidden).map((label) => label.getBoundingClientRect());
  said.labels = boxes.length;
  said.overlaps = boxes.filter((a, k) => boxes.some((b, j) => j < k && a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom)).length;
  // In level water each line of a hull's picture from the side is wet or dry, however large the patches are.
  if ((page.data.hulls || []).length) {
    for (const id of ['water-sheet', 'resultants']) if (byId(id).checked) byId(id).click();
    document.querySelector('[data-view=side]').click();
    byId('picture').click();
    const image = new Image();
    image.onload = () => {
      const copy = Object.assign(document.createElement('canvas'), { width: image.width, height: image.height }), ink = copy.getContext('2d');
      ink.drawImage(image, 0, 0);
      const lines = { wet: 0, dry: 0, mixed: 0 };
      for (let y = 0; y < copy.height; ++y) {
        const line = ink.getImageData(0, y, copy.width, 1).data, found = { wet: 0, dry: 0 };
        for (let k = 0; k < line.length; k += 4) if (line[k + 3] > 250 && Math.abs(line[k] - line[k + 2]) > 30) ++found[line[k] < line[k + 2] ? 'wet' : 'dry'];
        if (found.wet + found.dry < 20) continue;
        ++lines[Math.min(found.wet, found.dry) > 0.05 * (found.wet + found.dry) ? 'mixed' : found.wet > found.dry ? 'wet' : 'dry'];
      }
      said.waterline = lines.mixed <= 3 && lines.wet > 20 && lines.dry > 20 ? 'level' : JSON.stringify(lines).replace(/"/g, '');
    };
    image.src = pictures.pop();
  }
  // Nothing reaches over the edge of what holds it.
  const right = (part) => part.getBoundingClientRect().right;
  said.width = innerWidth;
  said.sideways = document.documentElement.scrollWidth > innerWidth ? 'page' : plots().some((plot) => right(plot.querySelector('canvas')) > right(plot)) ? 'plot' : 'no';
  said.ground = getComputedStyle(document.documentElement).backgroundColor;
  said.grid = Chart.getChart(document.querySelector('.plot canvas')).options.scales.x.grid.color;
  if (parent !== window) parent.postMessage({ ...said }, '*');
})();
