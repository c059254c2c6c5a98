// A table that can be sorted and sifted, a page of rows at a time, so that thousands of rows cost no more
// than the few that are seen.
import { el } from './dom.js';

const rowsPerPage = 20;

/**
 * `columns`: { title, value (to sort and sift by), cell (what is shown; the value unless given), number }.
 * `order`: index of the column that sorts at first, or -1 for the order of the rows.
 */
export function sortable(caption, columns, rows, { sift = rows.length > rowsPerPage, order = -1, redrawOn = () => {} } = {}) {
  const state = { order, up: true, page: 0, words: '', rows };
  const body = el('tbody', null);
  const heads = columns.map((column, i) => el('th', { scope: 'col', class: column.number && 'number' }, el('button', { type: 'button', onclick: () => sortBy(i) }, column.title, el('span', { class: 'arrow', 'aria-hidden': 'true' }))));
  const where = el('span', { class: 'where', 'aria-live': 'polite' });
  const turn = (by) => { state.page += by; draw(); };
  const earlier = el('button', { type: 'button', onclick: () => turn(-1) }, 'Back');
  const later = el('button', { type: 'button', onclick: () => turn(1) }, 'Next');

  function arrange() {
    const wanted = state.words.toLowerCase();
    state.rows = wanted ? rows.filter((row) => columns.some((c) => String(c.value(row)).toLowerCase().includes(wanted))) : [...rows];
    const value = columns[state.order]?.value;
    const sign = state.up ? 1 : -1;
    if (value) state.rows.sort((a, b) => sign * compared(value(a), value(b)));
    state.page = 0;
    heads.forEach((head, i) => (i === state.order ? head.setAttribute('aria-sort', state.up ? 'ascending' : 'descending') : head.removeAttribute('aria-sort')));
    draw();
  }
  function sortBy(i) {
    state.up = state.order === i ? !state.up : true;
    state.order = i;
    arrange();
  }
  function draw() {
    const first = state.page * rowsPerPage;
    const seen = state.rows.slice(first, first + rowsPerPage);
    body.replaceChildren(...seen.map((row) => el('tr', null, columns.map((c) => el('td', { class: c.number && 'number' }, c.cell ? c.cell(row) : String(c.value(row)))))));
    where.textContent = state.rows.length ? `${first + 1} to ${first + seen.length} of ${state.rows.length.toLocaleString('en')}` : 'none';
    earlier.disabled = state.page === 0;
    later.disabled = first + rowsPerPage >= state.rows.length;
  }
  redrawOn(draw);
  arrange();
  const search = sift && el('label', { class: 'field no-print' }, 'Rows that hold ', el('input', { type: 'search', oninput: (event) => { state.words = event.target.value; arrange(); } }));
  const node = el('div', { class: 'table' }, search,
    el('div', { class: 'table-frame', tabindex: '0', role: 'region', 'aria-label': caption }, el('table', null, el('caption', { class: 'unseen' }, caption), el('thead', null, el('tr', null, heads)), body)),
    el('div', { class: rows.length > rowsPerPage ? 'pager' : 'pager few' }, earlier, later, where));
  return { node, siftBy: (words) => { state.words = words; if (search) search.querySelector('input').value = words; arrange(); } };
}

function compared(a, b) {
  if (typeof a === 'number' && typeof b === 'number') return a - b;
  return String(a) < String(b) ? -1 : String(a) > String(b) ? 1 : 0;
}
