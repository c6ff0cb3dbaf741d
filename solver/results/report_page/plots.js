'use strict';
// Plots of columns over time. One plot is active, and ticks in the list of columns add to it; all plots share
// a time span and the cursor. Needs Chart, `page`, `theme`, `curveStyle` and `clock`.
function makePlots() {
  const { data, arrays, columns, byId, rows } = page;
  const charts = [], mostCurves = 8;
  let active = null, span = null;
  if (!rows) {
    byId('no-rows').hidden = false;
    byId('new-plot').disabled = true;
    return;
  }
  Chart.defaults.font.family = getComputedStyle(document.body).fontFamily;
  Chart.defaults.font.size = 11;

  const time = arrays.row_times, timeUnit = data.units.time;
  const series = (column) => Array.from(column.values, (y, k) => ({ x: time[k], y }));
  const unitsOf = (chart) => [...new Set(chart.columns.map((c) => c.unit))];

  function extremes(chosen) {
    let low = Infinity, high = -Infinity;
    for (const { values } of chosen) for (const v of values) if (Number.isFinite(v)) [low, high] = [Math.min(low, v), Math.max(high, v)];
    return [low, high];
  }
  function scalesOf(chart) {
    const scales = { x: { type: 'linear', min: span ? span[0] : time[0], max: span ? span[1] : time[rows - 1] || 1, title: { display: true, text: `time [${timeUnit}]` },
                          ticks: { maxRotation: 0, maxTicksLimit: 11, callback: (v) => page.number(v) }, grid: { color: theme.color('grid') } } };
    unitsOf(chart).forEach((unit, k) => {
      const [low, high] = extremes(chart.columns.filter((c) => c.unit === unit));
      // Values that are constant to single precision get a scale that starts at 0, so that rounding does not look
      // like a signal.
      const flat = high - low <= 1e-5 * Math.max(Math.abs(low), Math.abs(high));
      scales['y' + k] = { type: 'linear', position: k % 2 ? 'right' : 'left', title: { display: Boolean(unit), text: `[${unit}]` },
                          suggestedMin: flat ? Math.min(0, 1.2 * low) : undefined, suggestedMax: flat ? Math.max(0, 1.2 * high) : undefined,
                          ticks: { callback: (v) => page.number(v), maxTicksLimit: 7 }, grid: { color: theme.color('grid'), drawOnChartArea: k === 0 } };
    });
    return scales;
  }
  function datasetsOf(chart) {
    const units = unitsOf(chart);
    // Later curves are dashed where they lie on an earlier one, so they are drawn over it.
    return chart.columns.map((column, k) => ({ label: column.name, data: series(column), yAxisID: 'y' + units.indexOf(column.unit),
      borderColor: chart.styles[k].color, borderWidth: 1.5, borderDash: chart.styles[k].dash, order: -k, pointRadius: rows < 3 ? 3 : 0, spanGaps: false }));
  }
  function redraw(chart) {
    if (chart.plot) chart.plot.destroy();
    chart.values = null;
    chart.styles = curveStyle.stylesOf(chart.columns);
    Chart.defaults.color = theme.color('soft');
    chart.title.textContent = chart.name || chart.columns.map((c) => c.name).join(', ') || 'Empty: tick columns in the list';
    chart.title.title = chart.title.textContent;
    chart.canvas.setAttribute('aria-label', `Plot over time of ${chart.columns.map((c) => c.name).join(', ') || 'nothing yet'}`);
    chart.close.setAttribute('aria-label', 'Remove the plot ' + chart.title.textContent);
    chart.save.setAttribute('aria-label', 'Save the plot as PNG: ' + chart.title.textContent);
    showShare(chart);
    chart.plot = new Chart(chart.canvas, { type: 'line', data: { datasets: datasetsOf(chart) },
      options: { animation: false, parsing: false, normalized: true, responsive: true, maintainAspectRatio: false, events: [], scales: scalesOf(chart),
                 plugins: { legend: { display: false }, tooltip: { enabled: false }, decimation: { enabled: true, algorithm: 'min-max', threshold: 2000 } } },
      plugins: [curveStyle.marks(chart.styles, chart.columns, time), { id: 'cursor', afterRender: (plot) => { chart.plot = plot; showCursor(chart); } }] });
    chart.key.textContent = '';
    chart.values = chart.columns.map((column, k) => {
      const item = document.createElement('span'), value = document.createElement('b');
      item.append(curveStyle.sample(chart.styles[k]), document.createTextNode(column.name), value);
      item.title = column.name;
      chart.key.append(item);
      return value;
    });
    showCursor(chart);
  }
  // "8 of 13 curves", with a button for the rest, where a plot leaves some out of those that it is about.
  function showShare(chart) {
    const drawn = chart.about.filter((c) => chart.columns.includes(c)).length, all = chart.about.length;
    chart.share.hidden = !(drawn < all && drawn > 0);
    chart.share.textContent = '';
    if (chart.share.hidden) return;
    const more = make('button', '', 'Show all');
    more.setAttribute('aria-label', `Show all ${all} curves of ${chart.name || 'this plot'}`);
    more.onclick = () => {
      chart.columns = [...chart.columns, ...chart.about.filter((c) => !chart.columns.includes(c))];
      activate(chart);
      redraw(chart);
      showTicks();
    };
    chart.share.append(make('span', '', `${drawn} of ${all} curves; tick others in the list`), more);
  }
  function showCursor(chart) {
    const x = chart.plot && chart.plot.scales.x, area = chart.plot && chart.plot.chartArea;
    if (!x || !area || !chart.values) return;
    const inside = clock.time >= x.min && clock.time <= x.max;
    chart.cursor.hidden = !inside;
    Object.assign(chart.cursor.style, { left: x.getPixelForValue(clock.time) + 'px', top: area.top + 'px', height: area.height + 'px' });
    const row = page.indexAt(time, clock.time);
    chart.columns.forEach((column, k) => { chart.values[k].textContent = page.withUnit(column.values[row], column.unit); });
  }
  function setSpan(next) {
    span = next;
    byId('reset-range').disabled = !span;
    for (const chart of charts) {
      chart.plot.options.scales = scalesOf(chart);
      chart.plot.update('none');
      showCursor(chart);
    }
  }

  // A click moves the replay to its time, dragging zooms to a span, and a double click shows the whole run.
  function listen(chart, box) {
    let from = null;
    const mark = chart.mark;
    const inside = (event) => {
      const area = chart.plot.chartArea, x = event.clientX - box.getBoundingClientRect().left;
      return Math.min(Math.max(x, area.left), area.right);
    };
    box.addEventListener('pointerdown', (event) => {
      if (event.button) return;
      from = inside(event);
      box.setPointerCapture(event.pointerId);
    });
    box.addEventListener('pointermove', (event) => {
      if (from === null) return;
      const to = inside(event), area = chart.plot.chartArea;
      mark.hidden = Math.abs(to - from) < 6;
      Object.assign(mark.style, { left: Math.min(from, to) + 'px', width: Math.abs(to - from) + 'px', top: area.top + 'px', height: area.height + 'px' });
    });
    box.addEventListener('pointerup', (event) => {
      if (from === null) return;
      const to = inside(event), x = chart.plot.scales.x;
      if (Math.abs(to - from) < 6) clock.set(x.getValueForPixel(to));
      else setSpan([from, to].sort((a, b) => a - b).map((p) => x.getValueForPixel(p)));
      mark.hidden = true;
      from = null;
    });
    box.addEventListener('pointercancel', () => {
      from = null;
      mark.hidden = true;
    });
    box.addEventListener('dblclick', () => setSpan(null));
  }

  const make = (tag, kind, text) => {
    const element = document.createElement(tag);
    if (kind) element.className = kind;
    if (text) element.textContent = text;
    return element;
  };
  // `about` are the columns that the plot is about, of which it draws the first ones.
  function addChart(name, about) {
    const chart = { name, about, columns: about.slice(0, mostCurves), card: make('div', 'chart'), title: make('b'), key: make('div', 'key'),
                    share: make('div', 'share'), save: make('button', '', 'PNG'), close: make('button', '', '✕'),
                    canvas: make('canvas'), cursor: make('div', 'cursor'), mark: make('div', 'span') };
    const head = make('header'), box = make('div', 'plot'), { save, close } = chart;
    chart.canvas.setAttribute('role', 'img');
    save.title = 'Save the plot as PNG';
    close.title = 'Remove the plot';
    head.append(chart.title, save, close);
    box.append(chart.canvas, chart.cursor, chart.mark);
    chart.mark.hidden = true;
    chart.card.append(head, chart.share, chart.key, box);
    byId('charts').append(chart.card);
    charts.push(chart);
    chart.card.addEventListener('pointerdown', () => activate(chart));
    save.onclick = () => savePicture(chart.plot.toBase64Image(), 'plot');
    close.onclick = () => remove(chart);
    listen(chart, box);
    redraw(chart);
    return chart;
  }
  function remove(chart) {
    chart.plot.destroy();
    chart.card.remove();
    charts.splice(charts.indexOf(chart), 1);
    activate(charts[charts.length - 1] || null);
  }
  function activate(chart) {
    active = chart;
    charts.forEach((c) => c.card.classList.toggle('active', c === chart));
    showTicks();
  }

  // --- list of columns -----------------------------------------------------------------------------------------
  const ticks = new Map();
  function showTicks() {
    for (const [column, tick] of ticks) {
      tick.checked = Boolean(active) && active.columns.includes(column);
      tick.parentElement.classList.toggle('here', tick.checked);
    }
    const drawn = new Set(charts.flatMap((chart) => chart.columns)).size;
    byId('drawn-count').textContent = `${drawn} of ${columns.length} columns are drawn, in ${charts.length} ${charts.length === 1 ? 'plot' : 'plots'}.`;
  }
  function toggle(column, on) {
    if (!active) activate(addChart('', []));
    active.columns = on ? [...active.columns, column] : active.columns.filter((c) => c !== column);
    if (!active.about.includes(column)) active.name = '';
    redraw(active);
    showTicks();
  }
  const kindOf = (owner) => owner === '' ? 'whole model' : data.bodies.some((b) => b.name === owner) ? 'body'
    : data.elements.some((e) => e.name === owner) ? 'element' : data.joints.includes(owner) ? 'joint' : '';
  function fillList() {
    const groups = new Map();
    for (const column of columns) {
      const [kind, owner] = column.isState ? ['', 'Variables and equations'] : [kindOf(column.owner), column.owner || 'Energies'];
      if (!groups.has(owner)) groups.set(owner, { kind, members: [] });
      groups.get(owner).members.push(column);
    }
    for (const [owner, { kind, members }] of groups) {
      const group = make('details', 'group'), head = make('summary', '', owner);
      head.append(make('small', '', kind));
      group.append(head);
      group.open = groups.size <= 6;
      for (const column of members) {
        const line = make('label'), tick = make('input');
        tick.type = 'checkbox';
        tick.onchange = () => toggle(column, tick.checked);
        line.append(tick, document.createTextNode(column.quantity));
        line.append(make('i', '', column.unit));
        ticks.set(column, tick);
        group.append(line);
      }
      byId('column-list').append(group);
    }
  }
  byId('search').oninput = () => {
    const words = byId('search').value.toLowerCase().split(/\s+/).filter(Boolean);
    for (const group of byId('column-list').children) group.hidden = true;
    for (const [column, tick] of ticks) {
      const hit = words.every((word) => column.name.toLowerCase().includes(word));
      tick.parentElement.hidden = !hit;
      if (!hit) continue;
      tick.closest('.group').hidden = false;
      if (words.length) tick.closest('.group').open = true;
    }
  };

  // --- what is shown at first ----------------------------------------------------------------------------------
  function firstCharts() {
    const upName = 'xyz'[data.up.axis];
    const changes = (c) => c.values.some((v) => Number.isFinite(v) && v !== 0);
    const owned = (kind, test) => columns.filter((c) => kindOf(c.owner) === kind && test(c));
    const runs = (owner, subroutine) => data.elements.some((e) => e.name === owner && subroutine.test(e.subroutine));
    const isAfloat = (owner) => runs(owner, /^qvhydro_/);
    const force = (c) => /^force_[xyz]$/.test(c.quantity) && !runs(c.owner, /^qvhydro_report$/) && changes(c);
    const wanted = [
      ['Height of bodies', owned('body', (c) => c.quantity === upName)],
      ['Speed of bodies', owned('body', (c) => c.quantity === 'speed')],
      ['Vertical force of elements', owned('element', (c) => force(c) && c.quantity === 'force_' + upName)],
      ['Roll and pitch', owned('element', (c) => runs(c.owner, /^qvhydro_report$/) && /^(roll|pitch)$/.test(c.quantity))],
      ['Height of check points over the water frame', owned('element', (c) => isAfloat(c.owner) && /^point_\d+_height$/.test(c.quantity))],
      ['Submerged volume', owned('element', (c) => c.quantity === 'submerged_volume' && changes(c))],
      ['Horizontal force of elements', owned('element', (c) => force(c) && c.quantity !== 'force_' + upName)],
      ['Contact area', owned('element', (c) => /area/.test(c.quantity) && changes(c))],
      ['Energies of the whole model', owned('whole model', (c) => !c.isState && /energy/.test(c.quantity))],
    ];
    for (const [name, chosen] of wanted) if (chosen.length) addChart(name, chosen);
    // Each element that reports something else gets one plot, of the columns with its most frequent unit.
    const others = owned('element', (c) => !/^(force|torque|moment)_|area/.test(c.quantity) && !isAfloat(c.owner) && changes(c));
    for (const owner of [...new Set(others.map((c) => c.owner))].slice(0, 4)) {
      const mine = others.filter((c) => c.owner === owner), count = (unit) => mine.filter((c) => c.unit === unit).length;
      const unit = mine.map((c) => c.unit).reduce((best, next) => count(next) > count(best) ? next : best);
      addChart(owner, mine.filter((c) => c.unit === unit));
    }
    if (!charts.length && columns.length) addChart('', columns.slice(0, 1));
    activate(charts[0]);
  }
  fillList();
  firstCharts();
  byId('new-plot').onclick = () => {
    activate(addChart('', []));
    active.card.scrollIntoView({ block: 'nearest' });
  };
  byId('reset-range').onclick = () => setSpan(null);
  clock.onChange(() => charts.forEach(showCursor));
  theme.onChange(() => charts.forEach(redraw));
}

function savePicture(url, name) {
  const link = document.createElement('a');
  link.href = url;
  link.download = name + '.png';
  link.click();
}
