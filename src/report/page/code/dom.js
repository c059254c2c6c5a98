// Elements by one short call. Text of the data reaches the page through text nodes and attributes
// alone, never as markup: names in a plant or a file may hold anything.

const svgSpace = 'http://www.w3.org/2000/svg';

function fill(node, attributes, children) {
  for (const [name, value] of Object.entries(attributes ?? {})) {
    if (value === null || value === undefined || value === false) continue;
    if (name.startsWith('on')) node.addEventListener(name.slice(2), value);
    else node.setAttribute(name, value === true ? '' : value);
  }
  node.append(...children.flat(Infinity).filter((child) => child !== null && child !== undefined && child !== false));
  return node;
}

/** An element of HTML; attributes that are null or false are left out, `onclick` and so on listen. */
export const el = (tag, attributes, ...children) => fill(document.createElement(tag), attributes, children);

/** An element of SVG, likewise. */
export const svg = (tag, attributes, ...children) => fill(document.createElementNS(svgSpace, tag), attributes, children);

/** A titled part of the page; `id` is what links point to. */
export function section(id, title, ...children) {
  return el('section', { id, class: 'card', 'aria-labelledby': `${id}-title` }, el('h2', { id: `${id}-title` }, title), children);
}

let ids = 0;
/** An id that nothing else on the page has. */
export const freshId = (stem) => `${stem}-${++ids}`;
