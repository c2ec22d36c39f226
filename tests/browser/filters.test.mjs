// The sums and their filters.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {visibleTexts, withPage} from './browser.mjs';

const fates = ['fs', 'fc', 'fm', 'fd', 'fk', 'fx', 'fl'];
const origins = ['on', 'oc', 'om', 'oa'];

const numberOf = async (page, id) =>
  Number((await page.locator(`label:has(#${id}) > b`).last().innerText()).replaceAll(',', ''));
const openAll = (page) => page.locator('#open-all').click();
const visibleRows = (page) => page.evaluate(
  () => [...document.querySelectorAll('#entries tbody tr')].filter((row) => row.checkVisibility()).map((row) => row.className));
const tick = async (page, id) => {
  await page.locator(`#${id}`).check();
  await page.waitForFunction(() => document.getElementById('state').textContent !== '');
};

for (const name of ['small', 'hostile', 'example-4.1', 'example-5.1', 'example-5.2', 'example-6.0']) {
  test(`each number is that of the rows with its word: ${name}`, () => withPage(name, {}, async (page) => {
    for (const id of [...fates, ...origins, 'rr']) {
      assert.equal(await page.locator(`#entries tr.${id}`).count(), await numberOf(page, id), id);
    }
  }));
}

test('the numbers of a band add up to what its heading says', () => withPage('small', {}, async (page) => {
  const headings = await page.locator('#filters legend').allInnerTexts();
  for (const [i, ids] of [fates, origins].entries()) {
    let sum = 0;
    for (const id of ids) sum += await numberOf(page, id);
    assert.equal(sum, Number.parseInt(headings[i]), headings[i]);
    assert.ok(sum > 0);
  }
}));

test('a fate filters, and its entries open by themselves', () => withPage('small', {}, async (page) => {
  await page.locator('#close-all').click();
  await tick(page, 'fd');
  const count = await numberOf(page, 'fd');
  await page.waitForFunction((n) => [...document.querySelectorAll('#entries tr.fd')].filter((row) => row.checkVisibility()).length === n, count);
  const rows = await visibleRows(page);
  assert.equal(rows.length, count);
  assert.ok(rows.every((row) => row.split(' ').includes('fd')));
  assert.equal(await page.locator('#state').innerText(), `${count} rows: dropped`);
  assert.deepEqual((await visibleTexts(page, '#entries .e > summary .dn')),
                   ['cn=Configuration', 'cn=Front End, cn=Configuration', 'cn=Retired, cn=Configuration']);
}));

test('no table stands there with nothing but its heading', async () => {
  for (const script of [true, false]) {
    await withPage('example-5.1', {script}, async (page) => {
      for (const id of ['fd', 'oa', 'rr']) {
        await page.locator(`#${id}`).check();
        if (script) await page.waitForFunction(() => document.getElementById('state').textContent !== '');
        await page.locator('#entries .e:not([open]) > summary').evaluateAll((boxes) => boxes.forEach((box) => box.click()));
        const rows = await page.locator('#entries table').evaluateAll((tables) => tables.filter((table) => table.checkVisibility()).map(
          (table) => [...table.tBodies[0].rows].filter((row) => row.checkVisibility()).length));
        assert.ok(rows.length > 0, id);
        assert.ok(rows.every((count) => count > 0), `${id}: ${rows}`);
        await page.locator(`#${id}`).uncheck();
      }
    });
  }
});

test('a link to what a filter hides clears the filter', () => withPage('small', {}, async (page) => {
  await tick(page, 'fl');
  const link = page.locator('table.swap a', {hasText: 'cn=Admin'});
  await link.click();
  const entry = page.locator('.e.here');
  assert.match(await entry.locator('> summary').innerText(), /cn=Admin/);
  assert.ok(await entry.locator('> summary').isVisible());
  assert.ok(await entry.locator('tbody tr').first().isVisible());
  assert.ok(await entry.locator('> summary').evaluate((summary) => summary === document.activeElement));
  assert.equal(await page.locator('#filters :checked').count(), 0);
  assert.match(await page.locator('#state').innerText(), /^The filters were cleared/);
}));

test('what was gone to stays open when the filter is cleared', () => withPage('small', {}, async (page) => {
  await page.locator('#close-all').click();
  await tick(page, 'fl');
  await page.locator('#entries tr.fl').waitFor({state: 'visible'});
  await page.locator('table.left a', {hasText: 'cn=Audit'}).first().click();
  await page.locator('#filters button').click();
  await page.waitForFunction(() => document.getElementById('state').textContent === '');
  assert.ok(await page.locator('#entries tr.fl').isVisible());
}));

test('a fate and an origin together show both', () => withPage('small', {}, async (page) => {
  await openAll(page);
  await tick(page, 'fl');
  await tick(page, 'oa');
  const expected = await numberOf(page, 'fl') + await numberOf(page, 'oa');
  await page.waitForFunction((n) => document.getElementById('state').textContent.startsWith(`${n} rows`), expected);
  const rows = await visibleRows(page);
  assert.equal(rows.length, expected);
  assert.equal(await page.locator('#state').innerText(), `${expected} rows: lost, added-by-rule`);
}));

test('values that were replaced are a filter of their own', () => withPage('small', {}, async (page) => {
  await openAll(page);
  await tick(page, 'rr');
  assert.equal((await visibleRows(page)).length, await numberOf(page, 'rr'));
}));

test('filters are set and cleared by the keyboard, which does not get lost', () => withPage('small', {}, async (page) => {
  await openAll(page);
  const all = (await visibleRows(page)).length;
  await page.locator('#fs').focus();
  await page.keyboard.press('Space');
  await page.keyboard.press('Tab');
  assert.equal(await page.evaluate(() => document.activeElement.id), 'fc');
  await page.keyboard.press('Space');
  const expected = await numberOf(page, 'fs') + await numberOf(page, 'fc');
  await page.waitForFunction((n) => document.getElementById('state').textContent.startsWith(`${n} rows`), expected);
  assert.equal((await visibleRows(page)).length, expected);
  for (let i = 0; i < 30 && !(await page.evaluate(() => document.activeElement.type === 'reset')); ++i) {
    await page.keyboard.press('Tab');
  }
  await page.keyboard.press('Enter');
  await page.waitForFunction(() => document.getElementById('state').textContent === '');
  assert.equal(await page.locator('#filters :checked').count(), 0);
  assert.equal((await page.locator('#entries tr').evaluateAll((rows) => rows.filter((row) => getComputedStyle(row).display === 'none'))).length, 0);
  assert.equal(await page.evaluate(() => document.activeElement.id), 'fs');
  await openAll(page);
  assert.equal((await visibleRows(page)).length, all);
}));

test('unticking the last word shows everything again', () => withPage('small', {}, async (page) => {
  await openAll(page);
  const all = (await visibleRows(page)).length;
  await tick(page, 'fm');
  await page.locator('#fm').uncheck();
  await page.waitForFunction(() => document.getElementById('state').textContent === '');
  await openAll(page);
  assert.equal((await visibleRows(page)).length, all);
}));

test('a part of the band is a filter for the mouse', () => withPage('small', {}, async (page) => {
  await page.locator('.band rect[data-for=fd]').click();
  assert.ok(await page.locator('#fd').isChecked());
  await page.locator('.band rect[data-for=fd]').click();
  assert.ok(!(await page.locator('#fd').isChecked()));
}));

test('every part of a band has its word and its number beside it', () => withPage('small', {}, async (page) => {
  const parts = await page.locator('.band rect').evaluateAll(
    (rects) => rects.map((rect) => [rect.dataset.for, rect.textContent, Number(rect.getAttribute('width'))]));
  assert.ok(parts.length >= 10);
  for (const [id, title, width] of parts) {
    assert.ok(width >= 8, `${title} can be seen`);
    const label = (await page.locator(`label:has(#${id})`).first().innerText()).replace(/\s+/g, ' ');
    const [word, number] = title.split(': ');
    assert.ok(label.startsWith(`${word} ${number} `), `${title} / ${label}`);
  }
}));

test('a word that counts nothing cannot be ticked', () => withPage('same', {}, async (page) => {
  for (const id of ['fl', 'fd', 'oa', 'rr']) assert.ok(await page.locator(`#${id}`).isDisabled(), id);
  assert.ok(await page.locator('#fs').isEnabled());
}));

test('links between entries open where they lead', () => withPage('small', {}, async (page) => {
  await page.locator('#close-all').click();
  await page.locator('table.left a').first().click();
  const entry = page.locator('.e.here');
  assert.ok(await entry.locator('> summary').isVisible());
  assert.ok(await entry.evaluate((element) => element.open));
}));
