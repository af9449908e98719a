'use strict';

// The table is complete without this script, which makes its headings sort and its rows searchable.
(() => {
  const table = document.getElementById('products');
  const body = table.tBodies[0];
  const headings = [...table.tHead.rows[0].cells];
  const collator = new Intl.Collator(undefined, {numeric: true, sensitivity: 'base'});

  // --- sorting

  const comparisons = {
    text: collator.compare,
    number: (first, second) => Number(first) - Number(second),
    date: (first, second) => (first < second ? -1 : first > second ? 1 : 0),
  };

  // What a row is sorted by; empty when it is unknown.
  const keyOf = (row, column) => {
    const cell = row.cells[column];
    return cell.dataset.key ?? cell.textContent.trim();
  };

  const nextOrder = (heading) => {
    const order = heading.getAttribute('aria-sort');
    if (order === null) return heading.dataset.first;
    return order === 'ascending' ? 'descending' : 'ascending';
  };

  const sortBy = (heading) => {
    const order = nextOrder(heading);
    const direction = order === 'ascending' ? 1 : -1;
    const compare = comparisons[heading.dataset.sort];
    const rows = Array.from(body.rows, (row) => ({row, key: keyOf(row, heading.cellIndex)}));
    // what compares equal stays in its order, and what is unknown comes last in either direction
    rows.sort((first, second) => {
      if (first.key === '' || second.key === '') return (first.key === '') - (second.key === '');
      return direction * compare(first.key, second.key);
    });
    const sorted = document.createDocumentFragment();
    for (const {row} of rows) sorted.append(row);
    body.append(sorted);
    for (const other of headings) other.removeAttribute('aria-sort');
    heading.setAttribute('aria-sort', order);
  };

  for (const heading of headings.filter((candidate) => candidate.dataset.sort)) {
    const button = document.createElement('button');
    button.type = 'button';
    button.append(...heading.childNodes);
    button.addEventListener('click', () => sortBy(heading));
    heading.append(button);
  }

  // --- searching

  const search = document.getElementById('search');
  const count = document.getElementById('count');
  const fold = (text) => text.normalize('NFKC').toLowerCase();
  const texts = new Map();
  for (const row of body.rows) texts.set(row, fold(Array.from(row.cells, (cell) => cell.textContent).join(' ')));

  const describe = (shown) => {
    const all = texts.size;
    const noun = all === 1 ? table.dataset.noun : table.dataset.nouns;
    return shown === all ? `${all} ${noun}` : `${shown} of ${all} ${noun}`;
  };

  const filter = () => {
    const words = fold(search.value).split(/\s+/u);
    let shown = 0;
    for (const [row, text] of texts) {
      row.hidden = !words.every((word) => text.includes(word));
      if (!row.hidden) ++shown;
    }
    count.value = describe(shown);
  };

  search.addEventListener('input', filter);
  const tools = document.getElementById('tools');
  tools.addEventListener('submit', (event) => event.preventDefault());
  tools.hidden = false;
  filter();
})();
