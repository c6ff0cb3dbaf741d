'use strict';
// Fills the table of where the run's wall time went: its parts as run.json has them, the longest elements first.
// Needs `page`.
function fillTimeSpent() {
  const { data, byId, number } = page, run = data.run, mostElements = 8, smallestShare = 0.001;
  const words = {
    'start-up': ['Start-up', 'reading files, setting up the elements'],
    engine: ['Bodies', 'their motion, the integrator'],
    expressions: ['Expressions', 'variables, applied forces, equations'],
    services: ['Services', 'what the elements ask the solver for'],
    results: ['Results', 'rows and frames'],
    watch: ['Watch', 'what looks for doubtful results'],
  };
  const parts = run.time_spent.filter((entry) => entry.part !== 'element').map((entry) => [...words[entry.part], entry]);
  const elements = run.time_spent.filter((entry) => entry.part === 'element').sort((a, b) => b.seconds - a.seconds);
  const subroutines = new Map(data.elements.map((element) => [element.name, element.subroutine]));
  const shown = elements.filter((entry) => entry.share >= smallestShare).slice(0, mostElements);
  const rows = shown.map((entry) => [entry.element, subroutines.get(entry.element) || '', entry]);
  const rest = elements.slice(shown.length);
  if (rest.length) {
    const sum = (key) => rest.reduce((total, entry) => total + entry[key], 0);
    rows.push([rest.length + (rest.length === 1 ? ' more element' : ' more elements'), '', { seconds: sum('seconds'), share: sum('share') }]);
  }
  parts.splice(parts.findIndex(([, , entry]) => entry.part === 'services'), 0, ...rows);

  byId('time-box').hidden = !parts.length;
  byId('time-total').textContent = `(${number(run.wall_seconds, 3)} s)`;
  const table = document.createElement('table'), widest = Math.max(...parts.map(([, , entry]) => entry.share), 1e-9);
  table.className = 'time-spent';
  for (const [name, what, entry] of parts) {
    const row = table.insertRow(), head = document.createElement('th');
    head.scope = 'row';
    head.textContent = name;
    head.title = what;
    row.append(head);
    row.insertCell().textContent = entry.seconds.toFixed(3) + ' s';
    row.insertCell().textContent = (100 * entry.share).toFixed(1) + ' %';
    const bar = document.createElement('i'), cell = row.insertCell();
    bar.style.width = 100 * entry.share / widest + '%';
    cell.append(bar, what);
  }
  byId('time-spent').append(table);
}
