'use strict';
// Light or dark, as the reader's system has it. Pictures drawn by scripts take their colours here and are told when
// the choice changes; everything else follows from style.css. Needs nothing but the document.
const theme = (() => {
  const query = window.matchMedia('(prefers-color-scheme: dark)'), listeners = [];
  // The value of a colour of style.css, by its name without the dashes in front.
  const color = (name) => getComputedStyle(document.documentElement).getPropertyValue('--' + name).trim();
  // A colour for thin lines and letters on the page's ground: dark grounds need a lighter one.
  function legible(hex) {
    if (!query.matches) return hex;
    const parts = [1, 3, 5].map((k) => parseInt(hex.substr(k, 2), 16));
    return 'rgb(' + parts.map((v) => Math.round(v + (255 - v) * 0.42)).join() + ')';
  }
  query.addEventListener('change', () => listeners.forEach((listener) => listener()));
  return { isDark: () => query.matches, color, legible, onChange: (listener) => listeners.push(listener) };
})();
