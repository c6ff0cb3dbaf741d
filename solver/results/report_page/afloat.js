'use strict';
// Draws the hulls, with wet patches in another colour than dry ones, and the water as a sheet over its columns.
// Needs THREE, `page`, `colorMap` and `bodyShapes`; replay.js calls makeAfloat.
const afloatColors = { wet: '#1f6f93', dry: '#e3b25c', line: '#1f5673' };

// Colours each pixel of a hull by the height of the water at its place, so that the waterline runs through the patches.
// The levels of a water are a texture over x, in the frame of the water's marker.
const k_levels = 1024;
const hullShader = {
  varyings: 'varying vec3 vWater;\n',
  vertex: `#include <begin_vertex>
    vWater = (waterFromHull * vec4(position, 1.0)).xyz;`,
  uniforms: `uniform sampler2D levels; uniform vec2 levelRange; uniform float painted; uniform vec3 wetColor; uniform vec3 dryColor;
`,
  color: `#include <color_fragment>
    if (painted > 0.5) {
      float along = (vWater.x - levelRange.x) / levelRange.y * ${(k_levels - 1).toFixed(1)};
      float cell = clamp(floor(along), 0.0, ${(k_levels - 2).toFixed(1)});
      float low = texture2D(levels, vec2((cell + 0.5) / ${k_levels.toFixed(1)}, 0.5)).r;
      float high = texture2D(levels, vec2((cell + 1.5) / ${k_levels.toFixed(1)}, 0.5)).r;
      float over = vWater.z - mix(low, high, along - cell);
      #if __VERSION__ >= 300
        float width = 0.7 * fwidth(over);
      #else
        float width = 0.0;
      #endif
      float dry = smoothstep(-width, width + 1e-9, over);
      if (along < 0.0 || along > ${(k_levels - 1).toFixed(1)}) dry = 1.0;  // no water beyond the table
      diffuseColor.rgb = mix(wetColor, dryColor, dry);
    }`,
};

// Mesh of a hull. Patches do not share corners, so that each patch has its own colour. Nodes are in the axes of the
// hull's body.
function makeHull(info, firstNode, firstPatch) {
  const nodes = page.arrays.hull_nodes, corners = page.arrays.hull_patches, count = 9 * info.patches;
  const places = new Float32Array(count), box = new THREE.Box3(), p = new THREE.Vector3();
  let reach = 0;
  for (let k = 0; k < 3 * info.patches; ++k) {
    p.fromArray(nodes, 3 * (firstNode + corners[3 * firstPatch + k])).toArray(places, 3 * k);
    box.expandByPoint(p);
    reach = Math.max(reach, p.length());
  }
  const geometry = new THREE.BufferGeometry(), paints = new Float32Array(count);
  geometry.setAttribute('position', new THREE.BufferAttribute(places, 3));
  geometry.setAttribute('color', new THREE.BufferAttribute(paints, 3));
  const material = new THREE.MeshPhongMaterial({ vertexColors: THREE.VertexColors, side: THREE.DoubleSide, flatShading: true, shininess: 20,
    specular: 0x222222, polygonOffset: true, polygonOffsetFactor: -1, polygonOffsetUnits: -1 });
  const mesh = new THREE.Mesh(geometry, material);
  const edges = new THREE.LineSegments(new THREE.EdgesGeometry(geometry, 25), new THREE.LineBasicMaterial({ color: 0x17222d, transparent: true, opacity: 0.5 }));
  const net = new THREE.Mesh(geometry, new THREE.MeshBasicMaterial({ color: 0x17222d, wireframe: true, transparent: true, opacity: 0.22 }));
  net.visible = false;
  mesh.add(edges, net);
  const wet = new THREE.Color(afloatColors.wet).toArray(), dry = new THREE.Color(afloatColors.dry).toArray();
  const plain = new THREE.Color(bodyShapes.colors[Math.max(info.body, 0) % bodyShapes.colors.length]).toArray();

  let sheet = null;
  const painting = { value: 1 };
  // The sheet of water that the hull floats in; it must be known before the hull is first drawn.
  function setSheet(water) {
    sheet = water;
    const uniforms = { waterFromHull: { value: new THREE.Matrix4() }, levels: { value: sheet.levels }, levelRange: { value: sheet.range },
      painted: painting, wetColor: { value: new THREE.Color(afloatColors.wet) }, dryColor: { value: new THREE.Color(afloatColors.dry) } };
    material.onBeforeCompile = (shader) => {
      Object.assign(shader.uniforms, uniforms);
      shader.vertexShader = 'uniform mat4 waterFromHull; ' + hullShader.varyings + shader.vertexShader.replace('#include <begin_vertex>', hullShader.vertex);
      shader.fragmentShader = hullShader.varyings + hullShader.uniforms + shader.fragmentShader.replace('#include <color_fragment>', hullShader.color);
    };
    mesh.onBeforeRender = () => uniforms.waterFromHull.value.getInverse(sheet.group.matrixWorld).multiply(mesh.matrixWorld);
  }

  // Colours a hull without a sheet of water patch by patch; `bits` holds one bit per patch of all hulls, 1 if wet, and
  // starts at a frame's first byte.
  function paint(bits, painted) {
    painting.value = painted ? 1 : 0;
    for (let patch = 0; patch < info.patches; ++patch) {
      const bit = firstPatch + patch, color = !painted || sheet ? plain : bits[bit >> 3] >> (bit & 7) & 1 ? wet : dry;
      for (let k = 9 * patch; k < 9 * patch + 9; k += 3) paints.set(color, k);
    }
    geometry.attributes.color.needsUpdate = true;
  }
  return { body: info.body, water: info.water, mesh, net, box, reach, paint, setSheet };
}

// The surface of a water over its columns, in the frame of its marker, with a grid of lines every `step`.
function makeSheet(info, first, step, [lowest, highest]) {
  const xs = page.arrays.water_x.subarray(first, first + info.columns), columns = info.columns, [low, high] = info.y;
  const group = new THREE.Group(), axis = (k) => new THREE.Vector3().fromArray(info.axes, 3 * k);
  group.quaternion.setFromRotationMatrix(new THREE.Matrix4().makeBasis(axis(0), axis(1), axis(2)));
  group.position.fromArray(info.place);
  const level = new Float32Array(columns);

  const geometry = new THREE.BufferGeometry(), triangles = [];
  for (const name of ['position', 'normal', 'color']) geometry.setAttribute(name, new THREE.BufferAttribute(new Float32Array(6 * columns), 3).setUsage(THREE.DynamicDrawUsage));
  for (let k = 0; k + 1 < columns; ++k) triangles.push(2 * k, 2 * k + 2, 2 * k + 3, 2 * k, 2 * k + 3, 2 * k + 1);
  geometry.setIndex(triangles);
  const sheet = new THREE.Mesh(geometry, new THREE.MeshPhongMaterial({ vertexColors: THREE.VertexColors, transparent: true, opacity: 0.42,
    side: THREE.DoubleSide, depthWrite: false, shininess: 60, specular: 0x445566 }));

  // Lines along x follow the columns; a line across x lies between two columns and interpolates their levels.
  const multiples = (from, to) => Array.from({ length: Math.max(0, Math.floor(to / step) - Math.ceil(from / step) + 1) }, (_, k) => (Math.ceil(from / step) + k) * step);
  const rims = [low, ...multiples(low, high), high];
  const across = columns > 1 ? [xs[0], ...multiples(xs[0], xs[columns - 1]), xs[columns - 1]] : [];
  const between = across.map((x) => {
    const k = Math.min(page.indexAt(xs, x), columns - 2);
    return { k, share: (x - xs[k]) / (xs[k + 1] - xs[k]) };
  });
  const lineGeometry = new THREE.BufferGeometry();
  lineGeometry.setAttribute('position', new THREE.BufferAttribute(new Float32Array(6 * (rims.length * Math.max(columns - 1, 0) + across.length)), 3).setUsage(THREE.DynamicDrawUsage));
  const lines = new THREE.LineSegments(lineGeometry, new THREE.LineBasicMaterial({ color: afloatColors.line, transparent: true, opacity: 0.3, depthWrite: false }));
  sheet.frustumCulled = lines.frustumCulled = false;
  group.add(sheet, lines);

  function placeSheet() {
    const place = geometry.attributes.position.array, normal = geometry.attributes.normal.array, paint = geometry.attributes.color.array;
    for (let k = 0; k < columns; ++k) {
      const a = Math.max(k - 1, 0), b = Math.min(k + 1, columns - 1), slope = b > a ? (level[b] - level[a]) / (xs[b] - xs[a]) : 0, size = Math.hypot(slope, 1);
      place.set([xs[k], low, level[k], xs[k], high, level[k]], 6 * k);
      const color = colorMap.color('water', highest > lowest ? (level[k] - lowest) / (highest - lowest) : 0.5);
      paint.set([...color, ...color], 6 * k);
      normal.set([-slope / size, 0, 1 / size, -slope / size, 0, 1 / size], 6 * k);
    }
    for (const name of ['position', 'normal', 'color']) geometry.attributes[name].needsUpdate = true;
  }
  function placeLines() {
    const ends = lineGeometry.attributes.position.array;
    let at = 0;
    for (const y of rims) for (let k = 0; k + 1 < columns; ++k, at += 6) ends.set([xs[k], y, level[k], xs[k + 1], y, level[k + 1]], at);
    across.forEach((x, i) => {
      const { k, share } = between[i], z = level[k] * (1 - share) + level[k + 1] * share;
      ends.set([x, low, z, x, high, z], at);
      at += 6;
    });
    lineGeometry.attributes.position.needsUpdate = true;
  }
  // The levels again at even distances, for the hulls' waterlines.
  const texels = new Float32Array(4 * k_levels), texture = new THREE.DataTexture(texels, k_levels, 1, THREE.RGBAFormat, THREE.FloatType);
  texture.minFilter = texture.magFilter = THREE.NearestFilter;
  const range = new THREE.Vector2(xs[0], xs[columns - 1] - xs[0]);
  function placeTexels() {
    for (let i = 0, k = 0; i < k_levels; ++i) {
      const x = range.x + range.y * i / (k_levels - 1);
      while (k < columns - 2 && xs[k + 1] < x) ++k;
      texels[4 * i] = level[k] + (level[k + 1] - level[k]) * Math.min((x - xs[k]) / (xs[k + 1] - xs[k]), 1);
    }
    texture.needsUpdate = true;
  }
  // Shows the levels between frame `now` and frame `next`; `fraction` runs from 0 to 1 between them.
  function show(now, next, fraction) {
    for (let k = 0; k < columns; ++k) level[k] = now[first + k] * (1 - fraction) + next[first + k] * fraction;
    placeSheet();
    placeLines();
    placeTexels();
  }
  return { body: info.body, group, show, levels: texture, range };
}

// Hulls and waters of the run; null if the model has no hull.
function makeAfloat() {
  const { data, arrays } = page;
  if (!(data.hulls || []).length || !page.frames) return null;
  const hulls = [], sheets = [];
  let node = 0, patch = 0, painted = true, shown = -1;
  for (const info of data.hulls) {
    hulls.push(makeHull(info, node, patch));
    node += info.nodes;
    patch += info.patches;
  }
  const columns = arrays.water_x.length, bytes = Math.ceil(patch / 8);
  const levels = (frame) => arrays.water_levels.subarray(frame * columns, (frame + 1) * columns);
  const largest = Math.max(...hulls.map((hull) => hull.reach));
  const span = Math.max(0, ...data.waters.map((water) => water.y[1] - water.y[0]));
  const step = page.niceStep(Math.max(0.5 * largest, 0.06 * span, 1e-9));
  // Lowest and highest level of `count` columns during the run.
  function extremes(from, count) {
    let low = Infinity, high = -Infinity;
    for (let frame = 0; frame < page.frames; ++frame) {
      for (const level of levels(frame).subarray(from, from + count)) [low, high] = [Math.min(low, level), Math.max(high, level)];
    }
    return [low, high];
  }
  let first = 0;
  data.waters.forEach((water, k) => {
    if (water.columns > 1) {
      const sheet = makeSheet(water, first, step, extremes(first, water.columns));
      sheets.push(sheet);
      for (const hull of hulls) if (hull.water === k) hull.setSheet(sheet);
    }
    first += water.columns;
  });

  const ofBody = (body) => hulls.filter((hull) => hull.body === body);
  // Widens a box by the hulls of a body at a pose.
  function enclose(bounds, body, place, turn) {
    const pose = new THREE.Matrix4().compose(place, turn, new THREE.Vector3(1, 1, 1));
    for (const hull of ofBody(body)) bounds.union(hull.box.clone().applyMatrix4(pose));
  }
  // Whether the hulls of a body replace its shape: the body has no shape, or it lies inside the hulls' box.
  function covers(body, shape) {
    const box = ofBody(body).reduce((sum, hull) => sum.union(hull.box), new THREE.Box3());
    if (box.isEmpty()) return false;
    if (!shape) return true;
    const half = bodyShapes.halfSize(shape);
    return box.expandByScalar(0.02 * box.getSize(new THREE.Vector3()).length()).containsBox(new THREE.Box3(half.clone().negate(), half));
  }
  function attach(scene, shapes) {
    const carrier = (body) => body < 0 ? scene : shapes[body];
    for (const hull of hulls) carrier(hull.body).add(hull.mesh);
    for (const sheet of sheets) carrier(sheet.body).add(sheet.group);
  }
  function show(frame, next, fraction) {
    for (const sheet of sheets) sheet.show(levels(frame), levels(next), fraction);
    if (frame === shown) return;
    shown = frame;
    for (const hull of hulls) hull.paint(arrays.hull_wet.subarray(frame * bytes, (frame + 1) * bytes), painted);
  }
  function setPainted(on) {
    painted = on;
    shown = -1;
  }
  function setClear(clear) {
    for (const { mesh } of hulls) Object.assign(mesh.material, { transparent: clear, opacity: clear ? 0.35 : 1, depthWrite: !clear, needsUpdate: true });
  }
  return { reach: (body) => Math.max(0, ...ofBody(body).map((hull) => hull.reach)), covers, enclose, attach, show, setPainted, setClear, step,
           hasSheet: sheets.length > 0, isPainted: () => painted,
           setSheet: (on) => sheets.forEach(({ group }) => { group.visible = on; }),
           setNet: (on) => hulls.forEach(({ net }) => { net.visible = on; }) };
}
