'use strict';
// A camera on a sphere around a target: the left button orbits, the right button or shift pans, the wheel zooms, two
// fingers pan and zoom; keys do the same while `stage` has the focus. A finger that moves up or down scrolls the page. Needs THREE; `up` is a unit vector along an axis, and `onChange` is called after every move.
function makeOrbitCamera(stage, element, up, onChange) {
  const camera = new THREE.PerspectiveCamera(38, 1, 0.01, 1000);
  camera.up.copy(up);
  // `east` and `north` are level and at right angles: the azimuth counts from east.
  const east = Math.abs(up.x) > 0.5 ? new THREE.Vector3(0, 1, 0) : new THREE.Vector3(1, 0, 0);
  const north = new THREE.Vector3().crossVectors(up, east);
  const orbit = { camera, target: new THREE.Vector3(), distance: 10, azimuth: -1.05, elevation: 0.42, place, look };

  function direction() {
    const c = Math.cos(orbit.elevation);
    return new THREE.Vector3().addScaledVector(east, c * Math.cos(orbit.azimuth))
      .addScaledVector(north, c * Math.sin(orbit.azimuth)).addScaledVector(up, Math.sin(orbit.elevation));
  }
  function place() {
    camera.position.copy(orbit.target).addScaledVector(direction(), orbit.distance);
    camera.near = orbit.distance / 200;
    camera.far = orbit.distance * 200;
    camera.updateProjectionMatrix();
    camera.lookAt(orbit.target);
    camera.updateMatrixWorld();
  }
  function look(azimuth, elevation) {
    orbit.azimuth = azimuth;
    orbit.elevation = elevation;
    onChange();
  }
  function turn(dx, dy) {
    orbit.azimuth -= dx * 0.006;
    orbit.elevation = Math.min(Math.max(orbit.elevation + dy * 0.006, -1.55), 1.55);
  }
  function pan(dx, dy) {
    const size = 2 * orbit.distance * Math.tan(camera.fov * Math.PI / 360) / element.clientHeight;
    const right = new THREE.Vector3().setFromMatrixColumn(camera.matrixWorld, 0);
    const top = new THREE.Vector3().setFromMatrixColumn(camera.matrixWorld, 1);
    orbit.target.addScaledVector(right, -dx * size).addScaledVector(top, dy * size);
  }
  function zoom(factor) { orbit.distance *= Math.min(Math.max(factor, 0.2), 5); }

  const pointers = new Map();
  element.addEventListener('pointerdown', (event) => {
    element.setPointerCapture(event.pointerId);
    pointers.set(event.pointerId, { x: event.clientX, y: event.clientY });
  });
  const release = (event) => pointers.delete(event.pointerId);
  element.addEventListener('pointerup', release);
  element.addEventListener('pointercancel', release);
  element.addEventListener('pointermove', (event) => {
    const last = pointers.get(event.pointerId);
    if (!last) return;
    const dx = event.clientX - last.x, dy = event.clientY - last.y;
    if (pointers.size === 2) {
      const other = [...pointers.entries()].find(([id]) => id !== event.pointerId)[1];
      const before = Math.hypot(last.x - other.x, last.y - other.y);
      const after = Math.hypot(event.clientX - other.x, event.clientY - other.y);
      if (after > 0) zoom(before / after);
      pan(dx / 2, dy / 2);
    } else if (event.shiftKey || (event.buttons & 6)) {
      pan(dx, dy);
    } else {
      turn(dx, dy);
    }
    last.x = event.clientX;
    last.y = event.clientY;
    onChange();
  });
  element.addEventListener('wheel', (event) => {
    event.preventDefault();
    const lines = event.deltaMode === 1 ? 30 : 1;
    zoom(Math.exp(event.deltaY * lines * 0.0011));
    onChange();
  }, { passive: false });
  element.addEventListener('contextmenu', (event) => event.preventDefault());
  // One finger may scroll the page; two belong to the picture.
  for (const kind of ['touchstart', 'touchmove']) {
    element.addEventListener(kind, (event) => { if (event.touches.length > 1) event.preventDefault(); }, { passive: false });
  }
  const arrows = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1] };
  stage.addEventListener('keydown', (event) => {
    if (event.target !== stage || event.ctrlKey || event.altKey || event.metaKey) return;
    const by = arrows[event.key];
    if (by && event.shiftKey) pan(-30 * by[0], -30 * by[1]);
    else if (by) turn(-20 * by[0], -20 * by[1]);
    else if (event.key === '+' || event.key === '=') zoom(1 / 1.2);
    else if (event.key === '-' || event.key === '_') zoom(1.2);
    else return;
    event.preventDefault();
    onChange();
  });
  return orbit;
}
