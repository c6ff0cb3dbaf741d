'use strict';
// `clock` is the time that all parts of the page show; makePlayer connects the controls that move it. Needs `page`.
const clock = (() => {
  const listeners = [];
  const times = page.frames ? page.arrays.frame_times : page.arrays.row_times;
  const start = times.length ? times[0] : 0;
  const end = Math.max(start, times.length ? times[times.length - 1] : 0, page.rows ? page.arrays.row_times[page.rows - 1] : 0);
  const self = { time: start, start, end, set, onChange: (listener) => listeners.push(listener) };
  function set(time) {
    self.time = Math.min(Math.max(time, start), end);
    listeners.forEach((listener) => listener(self.time));
  }
  return self;
})();

function makePlayer() {
  const { arrays, byId } = page;
  const play = byId('play'), scrub = byId('scrub');
  scrub.min = clock.start;
  scrub.max = clock.end;
  let running = false, before = 0;
  const none = clock.end === clock.start;
  if (none) [play, scrub, byId('back'), byId('forward')].forEach((control) => { control.disabled = true; });

  function setRunning(on) {
    running = on && !none;
    play.textContent = running ? '❚❚' : '▶';
    play.setAttribute('aria-label', running ? 'Pause' : 'Play');
    if (!running) return;
    if (clock.time >= clock.end) clock.set(clock.start);
    before = performance.now();
    requestAnimationFrame(tick);
  }
  function tick(now) {
    if (!running) return;
    let time = clock.time + (now - before) / 1000 * Number(byId('speed').value) * secondsPerUnit();
    before = now;
    if (time >= clock.end) {
      if (byId('loop').checked) time = clock.start; else setRunning(false);
    }
    clock.set(time);
    if (running) requestAnimationFrame(tick);
  }
  // One second in the model's unit of time.
  function secondsPerUnit() {
    const unit = { ms: 1000, min: 1 / 60, h: 1 / 3600 }[page.data.units.time];
    return unit || 1;
  }
  function step(by) {
    setRunning(false);
    if (!page.frames) return;
    const k = page.indexAt(arrays.frame_times, clock.time);
    const inside = arrays.frame_times[k] < clock.time - 1e-9 && by < 0 ? 1 : 0;
    clock.set(arrays.frame_times[Math.min(Math.max(k + by + inside, 0), page.frames - 1)]);
  }
  play.onclick = () => setRunning(!running);
  byId('back').onclick = () => step(-1);
  byId('forward').onclick = () => step(1);
  scrub.oninput = () => { setRunning(false); clock.set(Number(scrub.value)); };
  document.addEventListener('keydown', (event) => {
    if (event.defaultPrevented || event.ctrlKey || event.altKey || event.metaKey) return;
    const { tagName, type } = event.target, ticked = type === 'checkbox';
    if (/^(SELECT|TEXTAREA)$/.test(tagName) || (tagName === 'INPUT' && type !== 'range' && !ticked)) return;
    if (event.target !== scrub && type === 'range') return;
    if (event.key === ' ') {
      if (ticked || /^(BUTTON|SUMMARY)$/.test(tagName)) return;  // the space bar presses them
      setRunning(!running);
    } else if (event.key === 'ArrowLeft' || event.key === ',') step(-1);
    else if (event.key === 'ArrowRight' || event.key === '.') step(1);
    else if (event.key === 'Home' || event.key === 'End') {
      setRunning(false);
      clock.set(event.key === 'Home' ? clock.start : clock.end);
    } else return;
    event.preventDefault();
  });
  clock.onChange((time) => {
    scrub.value = time;
    scrub.setAttribute('aria-valuetext', time.toFixed(digits) + ' ' + page.data.units.time);
    const box = byId('clock');
    box.textContent = time.toFixed(digits) + ' ' + page.data.units.time;
    const small = document.createElement('small');
    small.textContent = page.frames ? `frame ${page.indexAt(arrays.frame_times, time) + 1} of ${page.frames}` : 'no frames';
    box.append(small);
  });
  const digits = clock.end - clock.start >= 100 ? 2 : clock.end - clock.start >= 1 ? 3 : 5;
}
