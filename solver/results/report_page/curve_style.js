'use strict';
// How curves of a plot are told apart: by colour, and curves that lie on each other by dashes and marks too. Needs
// `page` and `theme`.
const curveStyle = (() => {
  const light = ['#1f77b4', '#d95f02', '#2a9d55', '#8e5bb5', '#c0392b', '#7a6a53', '#e377c2', '#0f9aa8', '#a59a1f', '#5b6b7b'];
  const dark = ['#63a9e8', '#f0944d', '#5bc98a', '#bd93e0', '#ee7d70', '#b8a689', '#f0a3d6', '#4ecbd8', '#d3c84e', '#a3b3c2'];
  const dashes = [[], [7, 5], [2, 4], [10, 4, 2, 4]];
  const color = (k) => (theme.isDark() ? dark : light)[k % light.length];

  const extents = new Map();
  function extent(column) {
    if (!extents.has(column)) {
      let low = Infinity, high = -Infinity;
      for (const v of column.values) if (Number.isFinite(v)) [low, high] = [Math.min(low, v), Math.max(high, v)];
      extents.set(column, [low, high]);
    }
    return extents.get(column);
  }
  // Curves that are drawn on each other: hardly anywhere farther apart than half a percent of what the two span.
  function coincide(a, b) {
    if (a.unit !== b.unit) return false;
    const [lowA, highA] = extent(a), [lowB, highB] = extent(b), low = Math.min(lowA, lowB), high = Math.max(highA, highB);
    const near = 0.005 * (high - low) || 1e-6 * Math.abs(high);
    let apart = 0;
    for (let k = 0; k < a.values.length && apart <= 0.05 * a.values.length; ++k) {
      if (!Object.is(a.values[k], b.values[k]) && !(Math.abs(a.values[k] - b.values[k]) <= near)) ++apart;
    }
    return apart <= 0.05 * a.values.length;
  }

  // Style of each of the columns of a plot: { color, dash, mark }. `mark` is 0 for a curve of its own; curves that lie
  // on each other are numbered from 1.
  function stylesOf(columns) {
    const twins = columns.map(() => 0);
    columns.forEach((column, k) => {
      const first = columns.findIndex((other, j) => j < k && twins[j] <= 1 && coincide(other, column));
      if (first < 0) return;
      twins[first] = 1;
      twins[k] = 2 + columns.filter((other, j) => j > first && j < k && twins[j] > 1 && coincide(columns[first], other)).length;
    });
    return columns.map((_, k) => ({ color: color(k), mark: twins[k],
      dash: dashes[(Math.floor(k / light.length) + Math.max(twins[k] - 1, 0)) % dashes.length] }));
  }

  // Draws the mark of a curve: a disc, a square, a triangle, a diamond, and again.
  function drawMark(context, style, x, y) {
    const size = 3.6;
    context.fillStyle = theme.color('panel');
    context.strokeStyle = style.color;
    context.lineWidth = 1.5;
    context.setLineDash([]);
    context.beginPath();
    const corners = [null, [[-1, -1], [1, -1], [1, 1], [-1, 1]], [[0, -1.3], [1.2, 1], [-1.2, 1]], [[0, -1.4], [1.4, 0], [0, 1.4], [-1.4, 0]]][(style.mark - 1) % 4];
    if (corners) corners.forEach(([a, b], k) => context[k ? 'lineTo' : 'moveTo'](x + a * size, y + b * size));
    else context.arc(x, y, size, 0, 7);
    context.closePath();
    context.fill();
    context.stroke();
  }

  // A sample of a curve for a legend.
  function sample(style) {
    const canvas = document.createElement('canvas'), scale = Math.min(window.devicePixelRatio || 1, 3);
    canvas.width = 26 * scale;
    canvas.height = 12 * scale;
    Object.assign(canvas.style, { width: '26px', height: '12px', flex: 'none' });
    canvas.setAttribute('aria-hidden', 'true');
    const context = canvas.getContext('2d');
    context.scale(scale, scale);
    context.strokeStyle = style.color;
    context.lineWidth = 2.2;
    context.setLineDash(style.dash);
    context.beginPath();
    context.moveTo(0, 6);
    context.lineTo(26, 6);
    context.stroke();
    if (style.mark) drawMark(context, style, 13, 6);
    return canvas;
  }

  // Marks along curves that lie on each other, each curve's at places of its own. Needs a plot's styles and times.
  const marks = (styles, columns, times) => ({ id: 'marks', afterDatasetsDraw: (plot) => {
    const { ctx, chartArea, scales } = plot, twins = Math.max(0, ...styles.map((style) => style.mark));
    if (!twins) return;
    const step = Math.max(64, 26 * twins);
    ctx.save();
    styles.forEach((style, k) => {
      if (!style.mark) return;
      const scale = scales[plot.data.datasets[k].yAxisID];
      for (let x = chartArea.left + 12 + step * (style.mark - 1) / twins; x < chartArea.right; x += step) {
        const row = page.indexAt(times, scales.x.getValueForPixel(x)), y = scale.getPixelForValue(columns[k].values[row]);
        const at = scales.x.getPixelForValue(times[row]);
        if (at >= chartArea.left && at <= chartArea.right && y >= chartArea.top && y <= chartArea.bottom) drawMark(ctx, style, at, y);
      }
    });
    ctx.restore();
  } });
  return { stylesOf, sample, marks };
})();
