// The search: where did a DN, an attribute or a value go? The words of the query are looked for in any letter case and
// order; an entry is found by its DN, a value by itself or its attribute, together with words of its DN.

const {contents, entryOf, folded, goTo, inSlices, rowOf} = window.cfgmig;
const form = document.getElementById('search');
const field = document.getElementById('q');
const panel = document.getElementById('results');
const found = document.getElementById('found');
const list = document.getElementById('hits');
const more = document.getElementById('more');

const hitsAtOnce = 30;

const passesFilters = (item) => {
  const ids = window.cfgmig.filters;
  return ids.length === 0 || ids.some((id) => item.words.includes(id));
};

// Whether a row is meant: the query stands in it, or its words do, or those of them that do not stand in the DN; or the
// query is DN:ATTRIBUTE=VALUE.
const isMeant = (row, dn, query) => {
  if (row.texts.some((text) => text.includes(query.whole))) return true;
  if (query.words.length > 1) {
    let own = false;
    const all = query.words.every((word, i) => {
      const here = row.texts.some((text) => text.includes(word));
      own ||= here;
      return here || query.inDn[i];
    });
    if (all && own) return true;
  }
  return query.hasPlace && row.texts.some((text) => `${dn}:${text}`.includes(query.whole));
};

// What the query names exactly comes first, then entries, then values.
const find = async (text, isWanted) => {
  const whole = folded(text);
  const query = {whole, words: whole.split(' '), hasPlace: whole.includes(':'), inDn: []};
  const exact = [], byDn = [], byText = [];
  const isDone = await inSlices(await contents(), (entry) => {
    query.inDn = query.words.map((word) => entry.dn.includes(word));
    if (query.inDn.every(Boolean) && passesFilters(entry)) {
      const isNamed = entry.dn.startsWith(`${whole},`) || entry.dn === whole || entry.dn.split(',')[0].endsWith(`=${whole}`);
      (isNamed ? exact : byDn).push(entry);
    }
    for (const row of entry.rows) {
      if (!isMeant(row, entry.dn, query) || !passesFilters(row)) continue;
      const isNamed = row.texts.some((own) => own === whole || own.endsWith(`=${whole}`) || own.startsWith(`${whole}=`));
      (isNamed ? exact : byText).push({...row, entry});
    }
  }, isWanted);
  return isDone ? [...exact, ...byDn, ...byText] : null;
};

// Elements.
const make = (tag, className, ...children) => {
  const element = document.createElement(tag);
  if (className) element.className = className;
  element.append(...children);
  return element;
};
const parsed = (html) => {
  const template = document.createElement('template');
  template.innerHTML = html;
  return template.content;
};

// A link that goes to the place itself, not only to its entry.
const placeLink = (id, findPlace, ...children) => {
  const link = make('a', '', ...children);
  link.href = `#${id}`;
  link.addEventListener('click', (event) => {
    event.preventDefault();
    goTo(findPlace());
  });
  return link;
};

const showEntry = (entry) => {
  const [dn, counts] = parsed(entry.summary).children;
  const link = placeLink(entry.id, () => entryOf(entry.id), ...dn.childNodes);
  link.classList.add('dn');
  return make('li', '', make('p', '', 'Entry ', link), make('p', 'where', counts));
};

const columns = ['Old', 'New, before', 'Result'];
const showRow = (row) => {
  const {cells, className} = parsed(`<table><tbody>${row.html}</table>`).querySelector('tr');
  const [attribute, happened, ...values] = cells;
  const where = values.map((cell, i) => cell.firstChild && make('span', '', `${columns[i]}: `, ...cell.childNodes));
  const link = placeLink(row.id, () => rowOf(row), make('strong', '', ...attribute.childNodes));
  return make('li', className, make('p', 'top', link, ' ', make('span', 'what', ...happened.childNodes)),
              make('p', 'where', ...where.filter(Boolean)),
              make('p', 'dn', 'in ', parsed(row.entry.summary).firstElementChild));
};

let hits = [];
let run = 0;

const showMore = () => {
  const next = hits.slice(list.children.length, list.children.length + hitsAtOnce);
  list.append(...next.map((hit) => hit.html ? showRow(hit) : showEntry(hit)));
  more.hidden = list.children.length >= hits.length;
  const count = hits.length.toLocaleString('en');
  const filtered = window.cfgmig.filters.length > 0 ? ' among what the filters show' : '';
  found.textContent = hits.length === 0
    ? `Nothing${filtered} has this in its DN, attribute or value.`
    : `${count} found${filtered}${more.hidden ? '' : `, the first ${list.children.length} shown`}`;
};

const search = async () => {
  const mine = ++run;
  if (field.value.trim() === '') {
    panel.hidden = true;
    list.replaceChildren();
    found.textContent = '';
    return;
  }
  const result = await find(field.value, () => mine === run);
  if (result === null || mine !== run) return;
  hits = result;
  list.replaceChildren();
  panel.hidden = false;
  panel.scrollTop = 0;
  showMore();
};

const close = () => {
  ++run;
  panel.hidden = true;
};

let waiting = 0;
field.addEventListener('focus', () => void contents());
field.addEventListener('input', () => {
  clearTimeout(waiting);
  waiting = setTimeout(search, 60);
});
form.addEventListener('submit', async (event) => {
  event.preventDefault();
  clearTimeout(waiting);
  await search();
  list.querySelector('a')?.focus();
});
more.addEventListener('click', () => {
  const first = list.children.length;
  showMore();
  list.children[first]?.querySelector('a')?.focus();
});
list.addEventListener('click', (event) => {
  if (event.target.closest('a')) close();
});
document.getElementById('done').addEventListener('click', () => {
  close();
  field.focus();
});
document.addEventListener('keydown', (event) => {
  if (event.key !== 'Escape' || panel.hidden) return;
  close();
  field.focus();
});
document.addEventListener('filtered', () => {
  if (!panel.hidden) void search();
});
form.hidden = false;
