'use strict';
// The ground: shaded, with grid lines, and with the track that contact points leave. The track is a plan-view texture
// of the deepest sinkage so far, so that it is as sharp as the contact points are dense, on any mesh. Needs THREE,
// `page` and `colorMap`; replay.js calls makeTerrain.

// Direction in plan, as [cos, sin], along which an element's points are sorted: the level part of its body's y axis, or
// of its x axis if y is upright. The points of a row or column share a coordinate along or across it, so that gaps
// between coordinates are gaps of the grid.
function planFrame(element, frame, axisA, axisB) {
  const body = page.data.elements[element].body, bodies = page.data.bodies.length;
  const turn = new THREE.Quaternion();
  if (body >= 0) turn.fromArray(page.arrays.poses, 7 * (frame * bodies + body) + 3);
  for (const axis of [1, 0]) {
    const v = new THREE.Vector3().setComponent(axis, 1).applyQuaternion(turn);
    const along = [v.getComponent(axisA), v.getComponent(axisB)], length = Math.hypot(...along);
    if (length > 0.3) return [along[0] / length, along[1] / length];
  }
  return [1, 0];
}

// Median gap between the rows of a grid; `values` are the coordinates of its points.
function rowGap(values) {
  values.sort((a, b) => a - b);
  const slack = 0.2 * (values[values.length - 1] - values[0]) / values.length ** 0.75;
  const gaps = [];
  for (let k = 1; k < values.length; ++k) if (values[k] - values[k - 1] > slack) gaps.push(values[k] - values[k - 1]);
  return gaps.length ? gaps.sort((a, b) => a - b)[gaps.length >> 1] : 0;
}

// Half the size of the grid cell that a point stands for, per element: [along, across] in the direction of planFrame.
function halfCells(axisA, axisB) {
  const { arrays, data, firstPoint } = page;
  const fullest = data.elements.map(() => ({ frame: -1, count: 0 }));
  for (let frame = 0; frame < page.frames; ++frame) {
    const counts = data.elements.map(() => 0);
    for (let k = firstPoint[frame]; k < firstPoint[frame + 1]; ++k) ++counts[arrays.point_elements[k]];
    counts.forEach((count, e) => { if (count > fullest[e].count) fullest[e] = { frame, count }; });
  }
  return fullest.map(({ frame, count }, element) => {
    if (!count) return [0, 0];
    const [c, s] = planFrame(element, frame, axisA, axisB), along = [], across = [];
    for (let k = firstPoint[frame]; k < firstPoint[frame + 1]; ++k) {
      if (arrays.point_elements[k] !== element) continue;
      const a = arrays.points[8 * k + axisA], b = arrays.points[8 * k + axisB];
      along.push(c * a + s * b);
      across.push(c * b - s * a);
    }
    const gaps = [rowGap(along), rowGap(across)];
    return gaps.map((gap, k) => 0.55 * (gap || gaps[1 - k]));
  });
}

function makeTrack(axisA, axisB, deepest) {
  const points = page.arrays.points, count = points.length / 8, halves = halfCells(axisA, axisB);
  const finest = Math.min(...halves.flat().filter((half) => half > 0));
  if (!count || !(finest < Infinity) || !(deepest > 0)) return null;
  const margin = 2 * Math.max(...halves.flat());
  const low = [Infinity, Infinity], high = [-Infinity, -Infinity];
  for (let k = 0; k < count; ++k) {
    [axisA, axisB].forEach((axis, c) => {
      low[c] = Math.min(low[c], points[8 * k + axis] - margin);
      high[c] = Math.max(high[c], points[8 * k + axis] + margin);
    });
  }
  const texel = Math.max(finest / 2, (high[0] - low[0]) / 2048, (high[1] - low[1]) / 2048);
  const width = Math.ceil((high[0] - low[0]) / texel), height = Math.ceil((high[1] - low[1]) / texel);
  const depth = new Float32Array(width * height), pixels = new Uint8Array(4 * width * height);
  const texture = new THREE.DataTexture(pixels, width, height, THREE.RGBAFormat);
  texture.magFilter = texture.minFilter = THREE.LinearFilter;
  let shown = -1;

  function press(k, [c, s], half) {
    const d = points[8 * k + 6], color = colorMap.color('viridis', d / deepest);
    const a = (points[8 * k + axisA] - low[0]) / texel - 0.5, b = (points[8 * k + axisB] - low[1]) / texel - 0.5;
    const along = Math.max(half[0] / texel, 0.71), across = Math.max(half[1] / texel, 0.71), reach = Math.hypot(along, across);
    for (let y = Math.max(0, Math.ceil(b - reach)); y <= Math.min(height - 1, b + reach); ++y) {
      for (let x = Math.max(0, Math.ceil(a - reach)); x <= Math.min(width - 1, a + reach); ++x) {
        const at = y * width + x;
        if (d <= depth[at] || Math.abs(c * (x - a) + s * (y - b)) > along || Math.abs(c * (y - b) - s * (x - a)) > across) continue;
        depth[at] = d;
        for (let i = 0; i < 3; ++i) pixels[4 * at + i] = 255 * color[i];
        pixels[4 * at + 3] = 255;
      }
    }
  }
  function show(frame) {
    if (frame === shown) return;
    if (frame < shown) {
      depth.fill(0);
      pixels.fill(0);
      shown = -1;
    }
    for (let f = shown + 1; f <= frame; ++f) {
      const turns = page.data.elements.map((_, e) => planFrame(e, f, axisA, axisB));
      for (let k = page.firstPoint[f]; k < page.firstPoint[f + 1]; ++k) {
        const element = page.arrays.point_elements[k];
        press(k, turns[element], halves[element]);
      }
    }
    shown = frame;
    texture.needsUpdate = true;
  }
  return { texture, show, box: new THREE.Vector4(low[0], low[1], width * texel, height * texel) };
}

const terrainShader = {
  head: `varying vec3 vGround;
`,
  vertex: `#include <begin_vertex>
    vGround = position;`,
  uniforms: `varying vec3 vGround; uniform vec3 planA; uniform vec3 planB; uniform vec2 gridOffset; uniform float gridStep;
    uniform float showGrid; uniform float showTrack; uniform sampler2D track; uniform vec4 trackBox;
`,
  color: `#include <color_fragment>
    vec2 plan = vec2(dot(vGround, planA), dot(vGround, planB));
    #if __VERSION__ >= 300
      vec2 cell = (plan + gridOffset) / gridStep;
      vec2 width = fwidth(cell);
      vec2 off = abs(fract(cell - 0.5) - 0.5) / max(width, vec2(1e-6));
      float line = (1.0 - min(min(off.x, off.y), 1.0)) * (1.0 - smoothstep(0.15, 0.5, max(width.x, width.y)));
      diffuseColor.rgb = mix(diffuseColor.rgb, vec3(0.25, 0.28, 0.3), 0.42 * line * showGrid);
    #endif
    vec2 at = (plan - trackBox.xy) / trackBox.zw;
    if (showTrack > 0.5 && all(greaterThan(at, vec2(0.0))) && all(lessThan(at, vec2(1.0)))) {
      vec4 mark = texture2D(track, at);  // premultiplied; all 0 where no point has pressed
      diffuseColor.rgb = diffuseColor.rgb * (1.0 - mark.a) + mark.rgb;
    }`,
};

function makeTerrain(deepest, gridStep) {
  if (!page.arrays.terrain_triangles.length) return null;
  const axis = page.data.up.axis, axisA = (axis + 1) % 3, axisB = (axis + 2) % 3;
  const places = page.arrays.terrain_points;
  const geometry = new THREE.BufferGeometry();
  geometry.setAttribute('position', new THREE.BufferAttribute(places, 3));
  geometry.setIndex(new THREE.BufferAttribute(page.arrays.terrain_triangles, 1));
  geometry.computeVertexNormals();
  geometry.computeBoundingBox();
  const colors = new Float32Array(places.length);
  geometry.setAttribute('color', new THREE.BufferAttribute(colors, 3));

  const low = geometry.boundingBox.min.getComponent(axis), high = geometry.boundingBox.max.getComponent(axis);
  const origin = page.data.origin.map((v) => v || 0);
  const track = makeTrack(axisA, axisB, deepest);
  const unit = (k) => new THREE.Vector3().setComponent(k, 1);
  const uniforms = {
    planA: { value: unit(axisA) }, planB: { value: unit(axisB) }, gridStep: { value: gridStep },
    gridOffset: { value: new THREE.Vector2(origin[axisA] % gridStep, origin[axisB] % gridStep) }, showGrid: { value: 1 },
    showTrack: { value: 1 }, track: { value: track ? track.texture : null },
    trackBox: { value: track ? track.box : new THREE.Vector4(0, 0, 1, 1) },
  };
  const material = new THREE.MeshPhongMaterial({ vertexColors: THREE.VertexColors, side: THREE.DoubleSide, shininess: 4,
    specular: 0x111111, polygonOffset: true, polygonOffsetFactor: 1, polygonOffsetUnits: 1 });
  material.onBeforeCompile = (shader) => {
    Object.assign(shader.uniforms, uniforms);
    shader.vertexShader = terrainShader.head + shader.vertexShader.replace('#include <begin_vertex>', terrainShader.vertex);
    shader.fragmentShader = terrainShader.uniforms + shader.fragmentShader.replace('#include <color_fragment>', terrainShader.color);
  };
  const mesh = new THREE.Mesh(geometry, material);
  let wires = null;

  function setColor(mode) {
    const soil = [0.77, 0.72, 0.63];
    for (let k = 0; k < places.length; k += 3) {
      const c = mode === 'height' ? colorMap.color('earth', (places[k + axis] - low) / (high - low || 1)) : soil;
      colors.set(c, k);
    }
    geometry.attributes.color.needsUpdate = true;
    uniforms.showTrack.value = mode === 'trace' && track ? 1 : 0;
  }
  function setMesh(shown) {
    if (shown && !wires) {
      wires = new THREE.Mesh(geometry, new THREE.MeshBasicMaterial({ color: 0x2c3a45, wireframe: true, transparent: true, opacity: 0.25 }));
      mesh.add(wires);
    }
    if (wires) wires.visible = shown;
  }
  function setClear(clear) {
    material.transparent = clear;
    material.opacity = clear ? 0.45 : 1;
    material.depthWrite = !clear;
    material.needsUpdate = true;
  }
  setColor('trace');
  return { mesh, box: geometry.boundingBox, heights: [low + origin[axis], high + origin[axis]], hasTrack: Boolean(track),
           setColor, setMesh, setClear, setGrid: (shown) => { uniforms.showGrid.value = shown ? 1 : 0; },
           show: (frame) => { if (track) track.show(frame); } };
}
