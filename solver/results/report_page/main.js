'use strict';
// Puts the page together and connects its controls; loaded last, it needs all other scripts. If the replay cannot
// work, the rest of the page still does.
(() => {
  const { data, byId } = page;
  fillHeader();
  fillTimeSpent();
  makePlots();
  let replay = null;
  if (!page.frames) noReplay('The run ended before its first frame: there is nothing to replay.');
  else if (!data.bodies.length && !page.arrays.terrain_triangles.length) noReplay('The model has no bodies and no terrain to show.');
  else {
    try {
      replay = makeReplay();
    } catch (error) {
      noReplay(/WebGL/.test(error.message) ? 'No 3D replay: this browser offers no WebGL. Everything else on the page works.'
        : 'No 3D replay: ' + error.message);
      if (!/WebGL/.test(error.message)) console.error(error);
    }
  }
  function noReplay(text) {
    byId('stage').classList.add('empty-stage');
    for (const part of [...byId('stage').children]) part.hidden = true;
    byId('options').hidden = true;
    byId('stage-note').hidden = false;
    byId('stage-note').textContent = text;
    if (!page.frames && !page.rows) document.querySelector('.player').hidden = true;
  }
  makePlayer();
  if (replay) connect();

  function connect() {
    const follow = byId('follow');
    const choices = [['free', 'nothing']];
    if (data.bodies.length > 1) choices.push(['all', 'all bodies']);
    data.bodies.forEach((body, k) => choices.push([String(k), body.name]));
    for (const [value, text] of choices) follow.append(new Option(text, value));
    follow.value = replay.state.follow;
    follow.onchange = () => replay.set('follow', follow.value);
    for (const button of document.querySelectorAll('[data-view]')) button.onclick = () => replay.look(button.dataset.view);

    byId('contact-options').hidden = !replay.hasPoints;
    byId('load-options').hidden = !replay.hasPoints && !replay.hasLoads;
    byId('resultants').parentElement.hidden = !replay.hasLoads;
    byId('point-color').onchange = (e) => replay.set('pointColor', e.target.value);
    byId('point-range').onchange = (e) => replay.set('pointRange', e.target.value);
    byId('arrows').onchange = (e) => replay.set('arrows', e.target.checked);
    byId('resultants').onchange = (e) => replay.set('resultants', e.target.checked);
    byId('arrow-scale').oninput = (e) => replay.set('arrowScale', 10 ** Number(e.target.value));

    byId('terrain-options').hidden = !replay.terrain;
    if (replay.terrain) {
      const { terrain } = replay;
      if (!terrain.hasTrack) {
        byId('terrain-color').options[0].remove();
        terrain.setColor('height');
      }
      byId('terrain-color').onchange = (e) => { terrain.setColor(e.target.value); replay.refresh(); };
      byId('terrain-clear').onchange = (e) => { terrain.setClear(e.target.checked); replay.request(); };
      byId('terrain-mesh').onchange = (e) => { terrain.setMesh(e.target.checked); replay.request(); };
      byId('terrain-grid').onchange = (e) => { terrain.setGrid(e.target.checked); replay.request(); };
    }
    byId('afloat-options').hidden = !replay.afloat;
    if (replay.afloat) {
      const { afloat } = replay;
      byId('water-sheet').parentElement.hidden = !afloat.hasSheet;
      byId('hull-paint').onchange = (e) => { afloat.setPainted(e.target.checked); replay.refresh(); };
      byId('hull-net').onchange = (e) => { afloat.setNet(e.target.checked); replay.request(); };
      byId('water-sheet').onchange = (e) => { afloat.setSheet(e.target.checked); replay.request(); };
    }
    byId('names').onchange = () => replay.request();
    byId('paths').onchange = (e) => replay.setPaths(e.target.checked);
    byId('clear-bodies').onchange = (e) => replay.setClearBodies(e.target.checked);
    byId('stage').addEventListener('keydown', (event) => {
      if (event.key === '0' && event.target === byId('stage')) replay.look('fit');
    });
    byId('picture').onclick = () => savePicture(replay.picture(), 'replay');
    byId('view').addEventListener('pointermove', (event) => {
      const box = byId('view').getBoundingClientRect(), x = event.clientX - box.left, y = event.clientY - box.top;
      const text = event.buttons ? null : replay.describe(x, y), tip = byId('tooltip');
      tip.hidden = !text;
      if (!text) return;
      tip.textContent = text;
      tip.style.transform = `translate(${Math.min(x + 14, box.width - 240)}px, ${Math.min(y + 14, box.height - 110)}px)`;
    });
    byId('view').addEventListener('pointerleave', () => { byId('tooltip').hidden = true; });
    clock.onChange((time) => replay.show(time));
    replay.refresh();
  }

  // The replay knows a moment worth seeing. With `#t=1.5` in the address the page starts at this time.
  const asked = /(?:^#|&)t=([-+.\de]+)/.exec(location.hash);
  clock.set(asked ? Number(asked[1]) : replay ? replay.opening : clock.end);
  document.body.dataset.ready = 'yes';
})();
