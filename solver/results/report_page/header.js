'use strict';
// Fills the head and the tables of the page with the run's outcome, figures, messages and settings. Needs `page`.
function fillHeader() {
  const { data, byId, number, withUnit } = page, run = data.run, units = data.units;
  const warnings = data.warnings || run.warnings || [];
  const words = { finished: 'Finished', interrupted: 'Interrupted', stopped: 'Stopped by a subroutine', failed: 'Failed' };
  const badge = byId('outcome');
  badge.textContent = words[run.outcome] || run.outcome;
  badge.classList.add(run.outcome);
  if (warnings.length) {
    if (run.outcome === 'finished') badge.classList.replace('finished', 'warned');
    badge.textContent += `, ${warnings.length} ${warnings.length === 1 ? 'warning' : 'warnings'}`;
    const list = document.createElement('ul');
    for (const text of warnings) addLine(list, 'li', text);
    byId('warnings').append(list);
    byId('warnings').hidden = false;
  }
  byId('subtitle').textContent = [run.model, run.started && 'run of ' + run.started.replace('T', ' ').replace('Z', ' UTC')].filter(Boolean).join(' · ');

  if (run.outcome !== 'finished') {
    const fault = byId('fault');
    fault.hidden = false;
    fault.classList.add(run.outcome);
    fault.textContent = (run.message || 'The run did not reach its end.') +
      `\nThe results are incomplete: time ${withUnit(run.time_reached, units.time)} of ${withUnit(run.settings.end_time, units.time)} was reached.`;
  }
  const factor = run.wall_seconds > 0 && units.time === 's' ? run.time_reached / run.wall_seconds : NaN;
  const points = Math.max(0, ...page.arrays.point_counts);
  const tiles = [
    [withUnit(run.time_reached, units.time), 'simulated'],
    [number(run.wall_seconds, 3) + ' s', 'computing time'],
    [Number.isFinite(factor) && factor > 0 ? number(factor, 2) + ' ×' : '', 'of real time'],
    [run.steps.toLocaleString('en'), 'steps'],
    [run.evaluations.toLocaleString('en'), 'force evaluations'],
    [data.bodies.length, data.bodies.length === 1 ? 'body' : 'bodies'],
    [data.elements.length, data.elements.length === 1 ? 'element' : 'elements'],
    [data.terrain_triangles ? data.terrain_triangles.toLocaleString('en') : '', 'terrain triangles'],
    [points || '', 'most points in contact'],
  ];
  for (const [value, what] of tiles) {
    if (value === '') continue;
    const tile = document.createElement('div'), b = document.createElement('b'), span = document.createElement('span');
    tile.className = 'tile';
    b.textContent = value;
    span.textContent = what;
    tile.append(b, span);
    byId('tiles').append(tile);
  }
  byId('notes').hidden = !data.notes.length;
  for (const text of data.notes) addLine(byId('notes'), 'p', text);

  byId('message-count').textContent = `(${run.messages.length})`;
  for (const text of run.messages) addLine(byId('messages'), 'li', text);
  byId('messages-box').hidden = !run.messages.length;
  byId('messages-box').open = run.outcome !== 'finished';

  const s = run.settings;
  addTable('settings', 'Run', [['Model', run.model], ['Library', run['library']], ['Command', run.command],
    ['Overrides', run.overrides.join('\n')], ['Files', run.files.join(', ')]]);
  addTable('settings', 'Integration', [['Integrator', s.integrator], ['Accuracy', s.accuracy], ['Step', s.step], ['Largest step', s.max_step],
    ['End time', withUnit(s.end_time, units.time)], ['Output step', withUnit(s.output_step, units.time)], ['Frame step', withUnit(s.frame_step, units.time)], ['Results', s.results.join(', ')]]);
  addTable('settings', 'Model', [['Gravity', s.gravity.map((g) => number(g)).join(', ') + ` ${units.length}/${units.time}²`],
    ['Units', Object.values(s.units).join(', ').toLowerCase()]]);
  addTable('settings', 'Versions', Object.entries(run.versions));
  addTable('parts', 'Bodies', data.bodies.map((b) => [b.name, withUnit(b.mass, units.mass) + (b.shape ? ', ' + b.shape.kind : ', no shape')]));
  addTable('parts', 'Joints', data.joints.map((j) => [j, '']));
  addTable('parts', 'Elements', data.elements.map((e) => [e.name, e.subroutine]));

  function addLine(parent, tag, text) {
    const line = document.createElement(tag);
    line.textContent = text;
    parent.append(line);
  }
  function addTable(id, title, entries) {
    const kept = entries.filter(([, value]) => value !== undefined && value !== null && (value !== '' || title === 'Joints'));
    if (!kept.length) return;
    const box = document.createElement('div'), table = document.createElement('table');
    addLine(box, 'h2', title);
    for (const [name, value] of kept) {
      const row = table.insertRow();
      addLine(row, 'th', name);
      row.insertCell().textContent = value;
    }
    box.append(table);
    byId(id).append(box);
  }
}
