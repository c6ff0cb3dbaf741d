'use strict';
// Makes meshes of bodies. Sectors in two shades show that a wheel or ball turns. Needs THREE.
const bodyShapes = (() => {
  const colors = ['#2f6db3', '#d0762c', '#3c8f5a', '#8d5bb0', '#b8443f', '#5f6b76', '#b0932b', '#2b98a8'];

  function geometryOf(shape) {
    if (shape.kind === 'box') return new THREE.BoxBufferGeometry(...shape.size);
    if (shape.kind === 'sphere') return new THREE.SphereBufferGeometry(shape.radius, 48, 32);
    const geometry = new THREE.CylinderBufferGeometry(shape.radius, shape.radius, shape.length, 96, 1);
    if (shape.axis === 0) geometry.rotateZ(-Math.PI / 2);
    if (shape.axis === 2) geometry.rotateX(Math.PI / 2);
    return geometry;
  }

  // Shade, 0 or 1, of a place on the surface.
  function sector(shape, p) {
    if (shape.kind === 'sphere') return (p[0] > 0) ^ (p[1] > 0) ^ (p[2] > 0);
    if (shape.kind !== 'cylinder') return 0;
    const a = p[(shape.axis + 1) % 3], b = p[(shape.axis + 2) % 3];
    return Math.floor((Math.atan2(b, a) + Math.PI) / (Math.PI / 6)) % 2;
  }

  function paint(geometry, shape, color) {
    const flat = geometry.toNonIndexed();
    const place = flat.attributes.position.array;
    const paints = new Float32Array(place.length);
    const shades = [new THREE.Color(color), new THREE.Color(color).lerp(new THREE.Color('#ffffff'), 0.42)];
    for (let k = 0; k < place.length; k += 9) {
      const middle = [0, 1, 2].map((c) => (place[k + c] + place[k + 3 + c] + place[k + 6 + c]) / 3);
      const shade = shades[sector(shape, middle)];
      for (let corner = 0; corner < 9; corner += 3) shade.toArray(paints, k + corner);
    }
    flat.setAttribute('color', new THREE.BufferAttribute(paints, 3));
    return flat;
  }

  // Half the extents of a shape along the body's axes.
  function halfSize(shape) {
    const half = new THREE.Vector3();
    if (shape.kind === 'box') return half.fromArray(shape.size).multiplyScalar(0.5);
    half.setScalar(shape.radius);
    return shape.kind === 'sphere' ? half : half.setComponent(shape.axis, shape.length / 2);
  }

  // Distance from the centre to the farthest point of a shape; 0 without a shape.
  function reach(shape) {
    if (!shape) return 0;
    if (shape.kind === 'box') return Math.hypot(...shape.size) / 2;
    return shape.kind === 'sphere' ? shape.radius : Math.hypot(shape.radius, shape.length / 2);
  }

  // Draws a pale copy of the parts that something else hides, so that a wheel shows through the ground. The shapes
  // are convex, so their own faces never hide a front face.
  function ghost(geometry, color) {
    const mesh = new THREE.Mesh(geometry, new THREE.MeshBasicMaterial({ color, transparent: true, opacity: 0.28,
      depthFunc: THREE.GreaterDepth, depthWrite: false }));
    mesh.renderOrder = 1;
    return mesh;
  }

  function make(shape, index, size) {
    if (!shape) return new THREE.AxesHelper(size);
    const geometry = geometryOf(shape);
    const mesh = new THREE.Mesh(paint(geometry, shape, colors[index % colors.length]),
      new THREE.MeshPhongMaterial({ vertexColors: THREE.VertexColors, shininess: 35, specular: 0x333333 }));
    const edges = new THREE.LineSegments(new THREE.EdgesGeometry(geometry, 30),
      new THREE.LineBasicMaterial({ color: 0x17222d, transparent: true, opacity: 0.55 }));
    mesh.add(edges, ghost(geometry, colors[index % colors.length]));
    return mesh;
  }
  return { make, reach, halfSize, colors };
})();
