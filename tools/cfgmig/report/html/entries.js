// The entries: which are open, and getting to one of them.
//
// In a large page the inside of most entries stands in a noscript element. A browser without scripts shows it; for one
// with them it is nothing but text, and becomes elements when it is needed.

const entries = document.getElementById('entries');
const isLarge = document.body.matches('.large');

const unfold = (box) => {
  const text = box.querySelector(':scope > noscript');
  if (!text) return;
  const template = document.createElement('template');
  template.innerHTML = text.textContent;
  text.replaceWith(template.content);
};
entries.addEventListener('toggle', (event) => unfold(event.target), true);
for (const box of entries.querySelectorAll('details[open]')) unfold(box);

// The entry with this id, unfolded together with what it is in.
const entryOf = (id) => {
  const known = document.getElementById(id);
  if (known) {
    unfold(known);
    return known;
  }
  for (const text of entries.getElementsByTagName('noscript')) {
    if (!text.textContent.includes(` id="${id}"`)) continue;
    unfold(text.parentElement);
    return document.getElementById(id);
  }
  return null;
};

// Not those of the entries below it.
const rowsOf = (entry) => entry.querySelectorAll(':scope > table > tbody > tr, :scope > .g > table > tbody > tr');
const rowOf = ({id, row}) => {
  const entry = entryOf(id);
  for (const part of entry.querySelectorAll(':scope > .g')) {
    const text = part.querySelector(':scope > noscript');
    const count = text ? text.textContent.split('\n<tr class=').length - 1 : part.querySelectorAll('tbody tr').length;
    if (row < count) {
      unfold(part);
      return part.querySelectorAll('tbody tr')[row];
    }
    row -= count;
  }
  return rowsOf(entry)[row];
};

// Opens everything around an element, and the element itself when it can be opened. What had to be opened.
const openTo = (element) => {
  const opened = [];
  for (let box = element.closest('details'); box; box = box.parentElement.closest('details')) {
    unfold(box);
    if (!box.open) {
      box.open = true;
      opened.push(box);
    }
  }
  return opened;
};

// Shows an entry or a row, marks it, and puts the keyboard there. Filters that hide it go.
const goTo = (element) => {
  for (const marked of document.querySelectorAll('.here')) marked.classList.remove('here');
  element.classList.add('here');
  openTo(element);
  if (!element.checkVisibility()) window.cfgmig.clearFilters();
  const target = element.matches('details') ? element.querySelector('summary') : element;
  if (target === element) element.tabIndex = -1;
  target.focus({preventScroll: true});
  target.scrollIntoView({block: 'center', behavior: 'instant'});
};

const followAddress = () => {
  const entry = /^#e\d+$/.test(location.hash) && entryOf(location.hash.slice(1));
  if (entry) goTo(entry);
};
window.addEventListener('hashchange', followAddress);
// A second click on the same link changes no address.
document.addEventListener('click', (event) => {
  const link = event.target.closest('a[href^="#e"]');
  if (link && link.hash === location.hash) followAddress();
});

const all = (open) => {
  for (const box of entries.querySelectorAll('details')) box.open = open;
};
document.getElementById('open-all').addEventListener('click', () => all(true));
document.getElementById('close-all').addEventListener('click', () => all(false));
document.getElementById('open-all').hidden = isLarge;
document.getElementById('tools').hidden = false;
followAddress();

// Browsers that cannot print what is closed get it opened for the time of printing.
if (!CSS.supports('selector(details::details-content)')) {
  let closed = [];
  window.addEventListener('beforeprint', () => {
    closed = [...document.querySelectorAll(isLarge ? 'details:not([open], .e, .g)' : 'details:not([open])')];
    for (const box of closed) box.open = true;
  });
  window.addEventListener('afterprint', () => {
    for (const box of closed) box.open = false;
  });
}

window.cfgmig = {entries, entryOf, rowOf, rowsOf, openTo, goTo};
