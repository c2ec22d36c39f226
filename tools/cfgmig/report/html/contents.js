// What can be looked for: each entry by its DN, each row by its attribute and its values. Made once, in slices, so that
// the keyboard never waits.

const {entries, rowsOf} = window.cfgmig;

const sliceTime = 8;  // milliseconds of work between two looks at the keyboard
const pause = () => new Promise((go) => {
  const channel = new MessageChannel();
  channel.port1.onmessage = go;
  channel.port2.postMessage(0);
});

// Does `work(item)` for each. False when `isWanted` says that nobody waits for it any more.
const inSlices = async (items, work, isWanted = () => true) => {
  let end = performance.now() + sliceTime;
  for (const item of items) {
    if (performance.now() > end) {
      await pause();
      if (!isWanted()) return false;
      end = performance.now() + sliceTime;
    }
    work(item);
  }
  return true;
};

// In small letters, without the blanks that make no difference.
const folded = (text) => {
  const lower = text.toLowerCase().trim();
  return /\s\s|[^\S ]| [,:=+]|[,:=+] /.test(lower) ? lower.replace(/\s+/g, ' ').replace(/ ?([,:=+]) ?/g, '$1') : lower;
};

const references = {'&amp;': '&', '&lt;': '<', '&gt;': '>', '&nbsp;': '\u00A0'};
const textOf = (html) => /[<&]/.test(html) ? html.replace(/<[^>]*>/g, '').replace(
  /&(?:#(\d+)|\w+);/g, (reference, code) => code ? String.fromCharCode(code) : references[reference] ?? reference) : html;

const makeEntry = (id, words, summary) => {
  const dn = folded(textOf(summary.slice(0, summary.indexOf('</span>'))));
  return {id, words, summary, dn, rows: []};
};
const makeRow = (entry, words, html) => {
  const attribute = folded(textOf(html.slice(0, html.indexOf('<td'))));
  const values = new Set();
  for (const [, value] of html.matchAll(/<code[^>]*>(.*?)<\/code>/g)) values.add(value);
  const texts = [...values].map((value) => `${attribute}=${folded(textOf(value))}`);
  entry.rows.push({id: entry.id, row: entry.rows.length, words, html, texts: texts.length ? texts : [attribute]});
};

// What stands in the text of a large page: an entry and a row begin a line each.
const wordsIn = (line) => line.slice(line.indexOf('"') + 1, line.indexOf('"', line.indexOf('"') + 1)).split(' ');
const addLines = async (text, items, entry) => {
  let last = entry;
  await inSlices(text.split('\n'), (line) => {
    if (line.startsWith('<details class="e')) {
      const [, id, summary] = /id="(e\d+)".*?<summary>(.*)<\/summary>/.exec(line);
      last = makeEntry(id, wordsIn(line), summary);
      items.push(last);
    } else if (line.startsWith('<tr class=')) {
      makeRow(last, wordsIn(line), line);
    }
  });
};

const make = async () => {
  const items = [];
  // All that there is at this moment: what becomes elements meanwhile must not be counted twice.
  const sources = [...entries.querySelectorAll('.e, noscript')].map(
    (box) => box.matches('.e') ? {box, rows: [...rowsOf(box)]} : {text: box.textContent, id: box.closest('.e')?.id});
  const byId = new Map();
  for (const {box, rows, text, id} of sources) {
    if (text !== undefined) {
      await addLines(text, items, byId.get(id));
      continue;
    }
    const entry = makeEntry(box.id, [...box.classList], box.firstElementChild.innerHTML);
    items.push(entry);
    byId.set(entry.id, entry);
    await inSlices(rows, (row) => makeRow(entry, [...row.classList], row.outerHTML));
  }
  return items;
};
let made;

const contents = () => made ??= make();
// Not at once: the page comes first.
if (window.requestIdleCallback) requestIdleCallback(() => void contents());

window.cfgmig.contents = contents;
window.cfgmig.inSlices = inSlices;
window.cfgmig.folded = folded;
