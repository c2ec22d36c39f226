// The filters: the style sheet hides what is not ticked. This counts what is left and opens the first of it.

const {entries, contents, inSlices, openTo, rowOf} = window.cfgmig;
const form = document.getElementById('filters');
const state = document.getElementById('state');
const shown = document.getElementById('shown');
const acts = form.querySelector('.acts');

// More rows than these are counted but not opened.
const mostOpened = document.body.matches('.large') ? 50 : 300;
let opened = [];
let run = 0;

const nameOf = (id) => document.getElementById(id).closest('label').querySelector('.w').textContent;

const update = async () => {
  const mine = ++run;
  const ids = [...form.querySelectorAll('input:checked')].map((box) => box.id);
  window.cfgmig.filters = ids;
  document.dispatchEvent(new Event('filtered'));
  entries.className = ['card', 'entries', ...(ids.length ? ['only'] : []), ...ids.map((id) => `only-${id}`)].join(' ');
  acts.hidden = ids.length === 0;
  // What was gone to stays in sight.
  for (const box of opened) box.open = box.matches('.here') || box.querySelector('.here') !== null;
  opened = [];
  state.textContent = shown.textContent = '';
  if (ids.length === 0) return;

  let count = 0;
  const first = [];
  const isWanted = () => mine === run;
  const isDone = await inSlices(await contents(), (entry) => {
    if (!ids.some((id) => entry.words.includes(id))) return;
    for (const row of entry.rows) {
      if (!ids.some((id) => row.words.includes(id))) continue;
      if (++count <= mostOpened) first.push(row);
    }
  }, isWanted);
  if (!isDone || !isWanted()) return;
  state.textContent = `${count.toLocaleString('en')} ${count === 1 ? 'row' : 'rows'}: ${ids.map(nameOf).join(', ')}`;
  const rest = count > mostOpened ? `; the first ${mostOpened} are opened` : '';
  shown.textContent = `Only ${state.textContent}${rest}.`;
  await inSlices(first, (row) => opened.push(...openTo(rowOf(row))), isWanted);
};

// For somebody who is on the way to what the filters hide.
window.cfgmig.clearFilters = () => {
  for (const box of form.querySelectorAll('input:checked')) box.checked = false;
  void update();
  state.textContent = shown.textContent = 'The filters were cleared to show a place that they had hidden.';
};

form.addEventListener('change', update);
form.addEventListener('reset', () => {
  form.querySelector('input:enabled')?.focus();  // the button goes away
  setTimeout(update);
});
form.addEventListener('submit', (event) => event.preventDefault());

// The band is for the mouse what the boxes are for everybody.
for (const part of form.querySelectorAll('[data-for]')) {
  part.addEventListener('click', () => document.getElementById(part.dataset.for).click());
}
void update();
