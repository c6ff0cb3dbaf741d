'use strict';
// The 3D picture of the run at a time: bodies, ground, hulls and water, contact points and forces. Needs THREE,
// `page`, `theme`, `colorMap`, `bodyShapes` and the makers of camera, labels, terrain and hulls. Throws if the browser has no WebGL.
function makeReplay() {
  const { data, arrays, byId } = page;
  const stage = byId('stage'), canvas = byId('view');
  const bodies = data.bodies.length, loads = (data.load_elements || []).length;
  const up = new THREE.Vector3().setComponent(data.up.axis, data.up.sign);
  const context = ['webgl2', 'webgl'].reduce((found, kind) => found || canvas.getContext(kind, { antialias: true, alpha: true }), null);
  if (!context) throw new Error('no WebGL');
  const renderer = new THREE.WebGLRenderer({ canvas, context, antialias: true, alpha: true });
  renderer.setPixelRatio(Math.min(window.devicePixelRatio || 1, 2));
  renderer.setClearColor(0x000000, 0);
  const scene = new THREE.Scene();
  const orbit = makeOrbitCamera(stage, canvas, up, request);
  const state = { frame: 0, time: 0, follow: 'free', pointColor: 'depth', pointRange: 'run', arrows: false,
                  resultants: true, arrowScale: 1 };

  // --- poses ---------------------------------------------------------------------------------------------------
  const placeOf = (frame, body, out = new THREE.Vector3()) => out.fromArray(arrays.poses, 7 * (frame * bodies + body));
  const turnOf = (frame, body, out = new THREE.Quaternion()) => out.fromArray(arrays.poses, 7 * (frame * bodies + body) + 3);
  const finite = (v) => Number.isFinite(v.x + v.y + v.z);  // a failed run may end in values that are not finite
  const afloat = makeAfloat();
  const reach = data.bodies.map((b, k) => Math.max(bodyShapes.reach(b.shape), afloat ? afloat.reach(k) : 0));

  function centroid(frame) {
    const sum = new THREE.Vector3(), p = new THREE.Vector3();
    for (let b = 0; b < bodies; ++b) sum.add(placeOf(frame, b, p));
    return sum.divideScalar(Math.max(bodies, 1));
  }
  // How far the bodies reach from their middle, with the places that `place` gives.
  function radiusOf(place) {
    const middle = new THREE.Vector3(), p = new THREE.Vector3();
    for (let b = 0; b < bodies; ++b) middle.add(place(b, p));
    middle.divideScalar(Math.max(bodies, 1));
    let most = 0;
    for (let b = 0; b < bodies; ++b) most = Math.max(most, place(b, p).distanceTo(middle) + reach[b] || 0);
    return most;
  }
  const spread = (frame) => radiusOf((b, p) => placeOf(frame, b, p));
  let widest = 0;
  const bounds = new THREE.Box3();
  for (let k = 0; k < page.frames; ++k) {
    widest = Math.max(widest, spread(k));
    for (let b = 0; b < bodies; ++b) {
      const p = placeOf(k, b);
      if (!finite(p)) continue;
      if (afloat && afloat.covers(b, data.bodies[b].shape)) afloat.enclose(bounds, b, p, turnOf(k, b));
      else bounds.union(new THREE.Box3(p.clone().subScalar(reach[b]), p.clone().addScalar(reach[b])));
    }
  }
  const travel = centroid(page.frames - 1).distanceTo(centroid(0));

  // --- values of contact points --------------------------------------------------------------------------------
  const pointCount = arrays.points.length / 8;
  const pointValue = {
    depth: (k) => arrays.points[8 * k + 6],
    normal: (k) => arrays.points[8 * k + 7],
    shear: (k) => {
      const f = (c) => arrays.points[8 * k + c], n = f(7);
      return Math.sqrt(Math.max(0, f(3) * f(3) + f(4) * f(4) + f(5) * f(5) - n * n));
    },
    none: () => 0,
  };
  const pointTitle = { depth: ['Sinkage', data.units.length], normal: ['Normal force of a point', data.units.force],
                       shear: ['Shear force of a point', data.units.force] };
  const runMost = {};
  for (const kind of ['depth', 'normal', 'shear']) {
    runMost[kind] = 0;
    for (let k = 0; k < pointCount; ++k) runMost[kind] = Math.max(runMost[kind], pointValue[kind](k) || 0);
    runMost[kind] = page.roundUp(runMost[kind]);
  }
  let loadMost = 0;
  for (let k = 0; k < arrays.loads.length; k += 6) loadMost = Math.max(loadMost, Math.hypot(arrays.loads[k + 3], arrays.loads[k + 4], arrays.loads[k + 5]) || 0);

  // --- the scene -----------------------------------------------------------------------------------------------
  const largest = Math.max(0, ...reach);
  // Grid lines are about a body's size apart, but at most some tens of them cross the terrain.
  const ground = new THREE.Box3().setFromArray(arrays.terrain_points).getSize(new THREE.Vector3()).length();
  const gridStep = page.niceStep(Math.max(1.6 * largest, 0.01 * ground, 1e-9));
  const terrain = makeTerrain(runMost.depth, gridStep);
  const axisSize = largest || 0.05 * bounds.getSize(new THREE.Vector3()).length() || 1;
  const shapes = data.bodies.map((b, k) => afloat && afloat.covers(k, b.shape) ? new THREE.Group() : bodyShapes.make(b.shape, k, axisSize));
  shapes.forEach((shape) => scene.add(shape));
  if (afloat) afloat.attach(scene, shapes);
  scene.add(new THREE.HemisphereLight(0xffffff, 0xa39d92, 0.85));
  const sun = new THREE.DirectionalLight(0xffffff, 0.52);
  scene.add(sun, sun.target);
  if (terrain) scene.add(terrain.mesh);
  else if (!afloat || !afloat.hasSheet) {
    let floor = makeFloor();
    scene.add(floor);
    theme.onChange(() => {
      scene.remove(floor);
      scene.add(floor = makeFloor());
      request();
    });
  }

  // A grid under the lowest place of the run, for a model without a terrain.
  function makeFloor() {
    const size = bounds.getSize(new THREE.Vector3());
    size.setComponent(data.up.axis, 0);
    const step = page.niceStep(Math.max(size.length(), 4 * largest, 1e-6) / 12);
    const lines = 2 * Math.ceil(Math.max(size.length(), 6 * largest, step) * 0.9 / step);
    const floor = new THREE.GridHelper(lines * step, lines, theme.isDark() ? 0x66747f : 0x8795a3, theme.isDark() ? 0x38444f : 0xc3ccd5);
    floor.quaternion.setFromUnitVectors(new THREE.Vector3(0, 1, 0), up);
    bounds.getCenter(floor.position);
    const edge = data.up.sign > 0 ? bounds.min : bounds.max;
    floor.position.setComponent(data.up.axis, edge.getComponent(data.up.axis));
    byId('scale').textContent = 'grid ' + page.withUnit(step, data.units.length);
    return floor;
  }
  if (terrain) byId('scale').textContent = 'grid ' + page.withUnit(gridStep, data.units.length);
  else if (afloat && afloat.hasSheet) byId('scale').textContent = 'grid on the water ' + page.withUnit(afloat.step, data.units.length);

  const paths = data.bodies.map((_, b) => {
    const places = new Float32Array(3 * page.frames);
    for (let k = 0; k < page.frames; ++k) placeOf(k, b).toArray(places, 3 * k);
    const geometry = new THREE.BufferGeometry();
    geometry.setAttribute('position', new THREE.BufferAttribute(places, 3));
    const line = new THREE.Line(geometry, new THREE.LineBasicMaterial({ color: bodyShapes.colors[b % bodyShapes.colors.length], transparent: true, opacity: 0.8 }));
    line.frustumCulled = false;
    scene.add(line);
    return line;
  });

  // Contact points lie under the ground, so they are drawn over everything.
  const most = Math.max(1, ...arrays.point_counts);
  const dot = document.createElement('canvas');
  dot.width = dot.height = 32;
  const ink = dot.getContext('2d');
  ink.fillStyle = '#fff';
  ink.arc(16, 16, 14, 0, 7);
  ink.fill();
  const pointGeometry = dynamicGeometry(most);
  const points = new THREE.Points(pointGeometry, new THREE.PointsMaterial({ vertexColors: THREE.VertexColors, size: 7,
    sizeAttenuation: false, map: new THREE.CanvasTexture(dot), alphaTest: 0.5, depthTest: false, transparent: true }));
  const arrowGeometry = dynamicGeometry(2 * most);
  const arrows = new THREE.LineSegments(arrowGeometry, new THREE.LineBasicMaterial({ vertexColors: THREE.VertexColors, depthTest: false, transparent: true }));
  points.renderOrder = 2;
  arrows.renderOrder = 1;
  points.frustumCulled = arrows.frustumCulled = false;
  scene.add(points, arrows);

  function dynamicGeometry(count) {
    const geometry = new THREE.BufferGeometry();
    for (const name of ['position', 'color']) {
      geometry.setAttribute(name, new THREE.BufferAttribute(new Float32Array(3 * count), 3).setUsage(THREE.DynamicDrawUsage));
    }
    return geometry;
  }
  const resultants = Array.from({ length: loads }, () => {
    const material = new THREE.MeshPhongMaterial({ color: 0xd1254b, emissive: 0x5c0a1c, depthTest: false, transparent: true });
    const shaft = new THREE.Mesh(new THREE.CylinderBufferGeometry(1, 1, 1, 16).translate(0, 0.5, 0), material);
    const head = new THREE.Mesh(new THREE.ConeBufferGeometry(1, 1, 24).translate(0, -0.5, 0), material);
    const arrow = new THREE.Group();
    arrow.add(shaft, head);
    shaft.renderOrder = head.renderOrder = 3;
    scene.add(arrow);
    return { arrow, shaft, head };
  });

  // --- names ---------------------------------------------------------------------------------------------------
  const labels = makeLabels(byId('labels'), data.bodies.map((b, k) => ({ text: b.name, color: bodyShapes.colors[k % bodyShapes.colors.length] })));
  function showNames(shown) {
    const { clientWidth, clientHeight } = canvas;
    labels.place(shown ? shapes.map((shape, b) => {
      const p = shape.position.clone().addScaledVector(up, reach[b] * 1.12).project(orbit.camera);
      const inside = p.z < 1 && Math.abs(p.x) < 1 && Math.abs(p.y) < 1;
      return inside ? { x: (p.x + 1) / 2 * clientWidth, y: (1 - p.y) / 2 * clientHeight, depth: p.z } : null;
    }) : [], clientWidth);
  }

  // --- one moment ----------------------------------------------------------------------------------------------
  const arrowLength = () => (afloat ? 1.1 : 1.6) * (largest || axisSize) * state.arrowScale;

  function showBodies(frame, next, fraction) {
    for (let b = 0; b < bodies; ++b) {
      shapes[b].position.copy(placeOf(frame, b)).lerp(placeOf(next, b), fraction);
      shapes[b].quaternion.copy(turnOf(frame, b)).slerp(turnOf(next, b), fraction);
    }
  }
  // Between frames the points of a contact move with its body; returns this displacement.
  function drift(element, frame) {
    const body = data.elements[element].body;
    return body < 0 ? new THREE.Vector3() : shapes[body].position.clone().sub(placeOf(frame, body));
  }
  function showPoints(frame) {
    const first = page.firstPoint[frame], count = arrays.point_counts[frame], kind = state.pointColor;
    const drifts = data.elements.map((_, e) => drift(e, frame));
    let top = state.pointRange === 'run' ? runMost[kind] : 0;
    if (state.pointRange === 'frame') for (let k = first; k < first + count; ++k) top = Math.max(top, pointValue[kind](k));
    top = page.roundUp(top);
    const place = pointGeometry.attributes.position.array, paint = pointGeometry.attributes.color.array;
    const ends = arrowGeometry.attributes.position.array, endPaint = arrowGeometry.attributes.color.array;
    const scale = runMost.normal > 0 ? 0.6 * arrowLength() / runMost.normal : 0;
    for (let i = 0; i < count; ++i) {
      const k = first + i, move = drifts[arrays.point_elements[k]];
      const color = colorMap.color('viridis', top > 0 ? pointValue[kind](k) / top : 0);
      for (let c = 0; c < 3; ++c) {
        const at = arrays.points[8 * k + c] + move.getComponent(c);
        place[3 * i + c] = ends[6 * i + c] = at;
        ends[6 * i + 3 + c] = at + scale * arrays.points[8 * k + 3 + c];
        paint[3 * i + c] = color[c];
        endPaint[6 * i + c] = endPaint[6 * i + 3 + c] = kind === 'none' ? [0.82, 0.15, 0.3][c] : color[c] * 0.85;
      }
    }
    pointGeometry.setDrawRange(0, count);
    arrowGeometry.setDrawRange(0, 2 * count);
    for (const geometry of [pointGeometry, arrowGeometry]) {
      geometry.attributes.position.needsUpdate = geometry.attributes.color.needsUpdate = true;
    }
    points.visible = count > 0 && kind !== 'none';
    arrows.visible = count > 0 && state.arrows;
    return top;
  }
  function showLoads(frame) {
    resultants.forEach(({ arrow, shaft, head }, i) => {
      const at = 6 * (frame * loads + i), f = new THREE.Vector3().fromArray(arrays.loads, at + 3), size = f.length();
      const length = loadMost > 0 ? 1.5 * arrowLength() * size / loadMost : 0;
      arrow.visible = state.resultants && length > 0.02 * arrowLength();
      if (!arrow.visible) return;
      const thick = Math.min(0.03 * (largest || axisSize), afloat ? 0.1 * length : Infinity), tip = Math.min(0.45 * length, 4.5 * thick);
      arrow.position.fromArray(arrays.loads, at).add(drift(data.load_elements[i], frame));
      arrow.quaternion.setFromUnitVectors(new THREE.Vector3(0, 1, 0), f.divideScalar(size));
      shaft.scale.set(thick, length - tip, thick);
      head.position.y = length;
      head.scale.set(2.4 * thick, tip, 2.4 * thick);
    });
  }
  function showLegends(top) {
    const box = byId('legends');
    box.textContent = '';
    const kind = state.pointColor, tracked = byId('terrain-color').value === 'trace' && terrain && terrain.hasTrack;
    if (afloat && afloat.isPainted()) box.append(colorMap.key('Hulls', [[afloatColors.wet, 'under water'], [afloatColors.dry, 'above it']]));
    if (pointCount && kind !== 'none') {
      const same = kind === 'depth' && state.pointRange === 'run' && tracked;
      box.append(colorMap.legend(pointTitle[kind][0] + (same ? ', points and track' : ''), 'viridis', 0, top || runMost[kind], pointTitle[kind][1]));
      if (same) return;
    }
    if (tracked) box.append(colorMap.legend('Track: deepest sinkage so far', 'viridis', 0, runMost.depth, data.units.length));
    if (terrain && byId('terrain-color').value === 'height') box.append(colorMap.legend('Height of the terrain', 'earth', ...terrain.heights, data.units.length));
  }

  // --- camera --------------------------------------------------------------------------------------------------
  function followed() {
    if (state.follow === 'free' || !bodies) return null;
    if (state.follow !== 'all') return shapes[Number(state.follow)].position.clone();
    return shapes.reduce((sum, shape) => sum.add(shape.position), new THREE.Vector3()).divideScalar(bodies);
  }
  // All bodies keep the room that they take in the picture when they scatter or gather.
  const radiusNow = () => radiusOf((b, p) => p.copy(shapes[b].position));
  let last = null, lastRadius = 0;
  function follow() {
    const now = followed();
    if (now && !finite(now)) return;
    if (now && last) orbit.target.add(now.clone().sub(last));
    last = now;
    const radius = state.follow === 'all' ? radiusNow() : 0;
    if (radius > 0 && lastRadius > 0) orbit.distance *= radius / lastRadius;
    lastRadius = radius;
  }
  const distanceFor = (radius) => {
    const half = orbit.camera.fov * Math.PI / 360, aspect = Math.min(1, canvas.clientWidth / Math.max(canvas.clientHeight, 1));
    return (radius || 1) / Math.sin(half) / aspect;
  };
  function fit() {
    const now = followed();
    if (now && finite(now)) {
      orbit.target.copy(now);
      const radius = state.follow === 'all' ? radiusNow() : reach[Number(state.follow)] || axisSize;
      orbit.distance = distanceFor((afloat ? 3 : terrain || state.follow !== 'all' ? 2.1 : 1.3) * radius);  // around something afloat the water is shown too
    } else {
      bounds.getCenter(orbit.target);
      orbit.distance = distanceFor(0.62 * bounds.getSize(new THREE.Vector3()).length() + 0.3 * largest);
    }
    last = now && finite(now) ? now : null;
    lastRadius = last && state.follow === 'all' ? radiusNow() : 0;
  }
  const views = { front: [-Math.PI / 2, 0.06], side: [0, 0.06], top: [-Math.PI / 2, 1.55], iso: [-1.05, 0.42] };
  function look(view) {
    if (view === 'fit') fit();
    else [orbit.azimuth, orbit.elevation] = views[view];
    request();
  }

  // --- drawing -------------------------------------------------------------------------------------------------
  let due = false;
  function request() {
    if (due) return;
    due = true;
    requestAnimationFrame(draw);
  }
  function resize() {
    const w = canvas.clientWidth, h = canvas.clientHeight;
    renderer.setSize(w, h, false);
    orbit.camera.aspect = w / Math.max(h, 1);
  }
  function draw() {
    due = false;
    orbit.place();
    sun.position.copy(orbit.target).add(new THREE.Vector3(-0.4, -0.55, 0).multiplyScalar(orbit.distance)).addScaledVector(up, orbit.distance);
    sun.target.position.copy(orbit.target);
    renderer.render(scene, orbit.camera);
    showNames(byId('names').checked);
    drawGizmo(orbit.camera);
    stage.dataset.drawn = 'yes';
  }
  // Shows a time: contacts of the frame at or before it, and bodies and water interpolated towards the next frame.
  function show(time) {
    const times = arrays.frame_times, frame = page.indexAt(times, time), next = Math.min(frame + 1, page.frames - 1);
    const fraction = next > frame ? Math.min(Math.max((time - times[frame]) / (times[next] - times[frame]), 0), 1) : 0;
    Object.assign(state, { time, frame });
    showBodies(frame, next, fraction);
    const top = showPoints(frame);
    showLoads(frame);
    if (terrain) terrain.show(frame);
    if (afloat) afloat.show(frame, next, fraction);
    if (state.pointRange === 'frame' || !byId('legends').childElementCount) showLegends(top);
    follow();
    request();
  }
  function refresh() {
    showLegends(showPoints(state.frame));
    show(state.time);
  }
  function set(name, value) {
    state[name] = value;
    if (name === 'follow') fit();
    refresh();
  }
  // Text on the contact point under the pointer; null if there is none.
  function describe(x, y) {
    if (!points.visible) return null;
    const place = pointGeometry.attributes.position.array, p = new THREE.Vector3();
    let best = 9, found = -1;
    for (let i = 0; i < arrays.point_counts[state.frame]; ++i) {
      p.fromArray(place, 3 * i).project(orbit.camera);
      const d = Math.hypot((p.x + 1) / 2 * canvas.clientWidth - x, (1 - p.y) / 2 * canvas.clientHeight - y);
      if (d < best) [best, found] = [d, i];
    }
    if (found < 0) return null;
    const k = page.firstPoint[state.frame] + found, { length, force } = data.units;
    const at = [0, 1, 2].map((c) => page.number(arrays.points[8 * k + c] + (data.origin[c] || 0))).join(', ');
    return `${data.elements[arrays.point_elements[k]].name}\nsinkage  ${page.withUnit(pointValue.depth(k), length)}\n` +
      `normal   ${page.withUnit(pointValue.normal(k), force)}\nshear    ${page.withUnit(pointValue.shear(k), force)}\nat       ${at} ${length}`;
  }
  function picture() {
    draw();
    return canvas.toDataURL('image/png');
  }
  // A new size empties the canvas, so the picture is drawn again at once.
  new ResizeObserver(() => { resize(); draw(); }).observe(stage);
  resize();
  // Bodies that would be dots in a picture of their whole way are followed.
  const wholeWay = 0.62 * bounds.getSize(new THREE.Vector3()).length();
  const far = travel > 1.2 * widest || (!afloat && !terrain && largest > 0 && largest < 0.04 * wholeWay);
  state.follow = far && bodies ? (bodies === 1 ? '0' : 'all') : 'free';

  // The moment at which the page opens: the end, which shows the whole track and how a failed run ended. Bodies that
  // have scattered by then, so that they are dots, are shown at the last moment at which they are none.
  function openingTime() {
    const end = page.frames - 1, largeEnough = (frame) => largest >= 0.1 * spread(frame);
    if (data.run.outcome !== 'finished' || state.follow !== 'all' || !(largest > 0) || terrain || largeEnough(end)) return clock.end;
    let best = 0;
    for (let k = 0; k <= end; ++k) if (largeEnough(k) || spread(k) < spread(best)) best = k;
    return arrays.frame_times[best];
  }
  const opening = openingTime();
  show(opening);
  fit();
  return { show, opening, set, look, refresh, request, describe, picture, terrain, afloat, state, hasPoints: pointCount > 0, hasLoads: loads > 0 && loadMost > 0,
           setPaths: (shown) => { paths.forEach((line) => { line.visible = shown; }); request(); },
           setClearBodies: (clear) => {
             shapes.forEach(({ material }) => { if (material && material.color) Object.assign(material, { transparent: clear, opacity: clear ? 0.35 : 1, depthWrite: !clear, needsUpdate: true }); });
             if (afloat) afloat.setClear(clear);
             request();
           } };
}

// Draws the ground axes in the corner.
function drawGizmo(camera) {
  const canvas = page.byId('gizmo'), g = canvas.getContext('2d'), half = canvas.width / 2;
  g.clearRect(0, 0, canvas.width, canvas.height);
  g.lineWidth = 4;
  g.font = '600 22px system-ui, sans-serif';
  g.textAlign = 'center';
  g.textBaseline = 'middle';
  const turn = camera.quaternion.clone().inverse();
  const ends = ['x', 'y', 'z'].map((name, k) => ({ name, color: ['#c23b3b', '#2f8f46', '#2f62c2'][k], at: new THREE.Vector3().setComponent(k, 1).applyQuaternion(turn) }));
  for (const { name, color, at } of ends.sort((a, b) => a.at.z - b.at.z)) {
    g.strokeStyle = g.fillStyle = color;
    g.beginPath();
    g.moveTo(half, half);
    g.lineTo(half + at.x * half * 0.66, half - at.y * half * 0.66);
    g.stroke();
    g.fillText(name, half + at.x * half * 0.84, half - at.y * half * 0.84);
  }
}
