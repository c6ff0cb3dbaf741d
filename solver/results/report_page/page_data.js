'use strict';
// Reads what the page shows, the JSON and the base64 arrays beside it, and offers helpers for numbers and texts.
// Loaded before all scripts that use `page`; needs nothing but the document.
const page = (() => {
  const data = JSON.parse(document.getElementById('page-data').textContent);

  const kinds = { f32: Float32Array, f64: Float64Array, u32: Uint32Array, u16: Uint16Array, u8: Uint8Array };
  const arrays = {};
  for (const [name, info] of Object.entries(data.arrays)) {
    const text = atob(document.getElementById('array-' + name).textContent);
    const bytes = new Uint8Array(text.length);
    for (let k = 0; k < text.length; ++k) bytes[k] = text.charCodeAt(k);
    arrays[name] = new kinds[info.type](bytes.buffer);
  }

  // Index of the first contact point of each frame.
  const firstPoint = [0];
  for (const count of arrays.point_counts) firstPoint.push(firstPoint[firstPoint.length - 1] + count);

  // Names and quantities may hold dots, so the longest name that fits owns a column.
  const names = [...data.bodies.map((b) => b.name), ...data.joints, ...data.elements.map((e) => e.name)].sort((a, b) => b.length - a.length);
  function ownerOf(column) {
    const owner = names.find((name) => column.startsWith(name + '.'));
    return owner !== undefined ? owner : column.slice(0, Math.max(column.lastIndexOf('.'), 0));
  }

  // Columns as { name, owner, quantity, unit, values, isState }; a column of the whole run has the owner ''. Variables
  // and equations are states; a state may have the same name as a body.
  const states = new Set(data.states);
  const rows = arrays.row_times.length;
  const columns = (data.columns || []).slice(1).map((header, k) => {
    const match = /^(.*?)(?: \[(.*)\])?$/.exec(header);
    const isState = states.has(match[1]), owner = isState ? '' : ownerOf(match[1]);
    return {
      name: match[1], owner, isState, quantity: owner ? match[1].slice(owner.length + 1) : match[1],
      unit: match[2] || '', values: arrays.columns.subarray(k * rows, (k + 1) * rows),
    };
  });
  const columnByName = new Map(columns.map((c) => [c.name, c]));

  function derive(owner, quantity, unit, value) {
    const values = Float32Array.from({ length: rows }, (_, k) => value(k));
    const column = { name: owner ? owner + '.' + quantity : quantity, owner, quantity, unit, values, derived: true };
    if (columnByName.has(column.name)) return;
    columns.push(column);
    columnByName.set(column.name, column);
  }
  for (const body of data.bodies) {
    const v = ['vx', 'vy', 'vz'].map((q) => columnByName.get(body.name + '.' + q));
    if (v.every(Boolean)) derive(body.name, 'speed', v[0].unit, (k) => Math.hypot(v[0].values[k], v[1].values[k], v[2].values[k]));
  }
  // Angles that come back into one turn jump from one end of it to the other. Here they go on instead, by whole turns,
  // from a start within half a turn of 0. Only angles that are computed from an orientation come back: those of reports,
  // and of the joints whose speeds are components of an angular velocity. The angle of a hinge counts its turns.
  function unwrapped(values, turn) {
    const whole = Float32Array.from(values);
    let shift = 0, last = 0;
    for (let k = 0; k < whole.length; ++k) {
      if (!Number.isFinite(values[k])) continue;
      shift -= turn * Math.round((values[k] + shift - last) / turn);
      last = whole[k] = values[k] + shift;
    }
    return whole;
  }
  const comesBack = (c) => data.joints.includes(c.owner) ? columnByName.has(c.owner + '.w_x') : data.elements.some((e) => e.name === c.owner);
  for (const column of columns) {
    const turn = { deg: 360, rad: 2 * Math.PI }[column.unit];
    if (turn && comesBack(column)) column.values = unwrapped(column.values, turn);
  }
  const kinetic = columnByName.get('kinetic_energy'), potential = columnByName.get('potential_energy');
  if (kinetic && potential) derive('', 'kinetic_and_potential_energy', kinetic.unit, (k) => kinetic.values[k] + potential.values[k]);

  // A number as text, with 4 digits and without trailing zeros.
  function number(value, digits = 4) {
    if (!Number.isFinite(value)) return String(value);
    if (value === 0) return '0';
    const size = Math.abs(value);
    if (size >= 1e6 || size < 1e-4) return value.toExponential(digits - 1).replace(/\.?0+e/, 'e').replace('e+', 'e');
    return String(Number(value.toPrecision(digits)));
  }
  const withUnit = (value, unit) => number(value) + (unit ? ' ' + unit : '');

  // The next round number not below a value; its quarters have few digits.
  function roundUp(value) {
    if (!(value > 0)) return value;
    const power = 10 ** Math.floor(Math.log10(value));
    return power * [1, 1.2, 1.6, 2, 2.4, 3, 4, 5, 6, 8, 10].find((round) => round * power >= value * (1 - 1e-6));
  }

  // The number 1, 2 or 5 times a power of ten that is near a value.
  function niceStep(value) {
    const power = 10 ** Math.floor(Math.log10(value));
    const factor = value / power;
    return power * (factor < 1.5 ? 1 : factor < 3.5 ? 2 : factor < 7.5 ? 5 : 10);
  }

  // The last index whose time is not after `time`; 0 if there is none. `times` increase.
  function indexAt(times, time) {
    let low = 0, high = times.length - 1;
    while (low < high) {
      const middle = (low + high + 1) >> 1;
      if (times[middle] <= time + 1e-12) low = middle; else high = middle - 1;
    }
    return low;
  }

  return { data, arrays, columns, columnByName, firstPoint, rows, frames: arrays.frame_times.length,
           number, withUnit, niceStep, roundUp, indexAt, byId: (id) => document.getElementById(id) };
})();
