// Phone and desk: nothing sticks out, and on a phone each value says which column it is from.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {desk, phone, searchFor, withPage} from './browser.mjs';

const sticksOut = (page) => page.evaluate(() => {
  const width = document.documentElement.clientWidth;
  return [...document.body.querySelectorAll('*')].filter((element) => {
    if (element.closest('.skip, thead, svg') || !element.checkVisibility()) return false;
    const box = element.getBoundingClientRect();
    return box.width > 0 && (box.right > width + 1 || box.left < -1);
  }).map((element) => element.outerHTML.slice(0, 120));
});

for (const [name, viewport] of [['desk', desk], ['phone', phone], ['small phone', {width: 320, height: 640}]]) {
  for (const page of ['small', 'hostile', 'same', 'lost', 'many', 'example-4.1', 'example-5.1']) {
    test(`nothing sticks out: ${name}, ${page}`, () => withPage(page, {viewport}, async (shown) => {
      for (const button of await shown.locator('#open-all').filter({visible: true}).all()) await button.click();
      assert.deepEqual(await sticksOut(shown), []);
      await searchFor(shown, 'c');
      assert.deepEqual(await sticksOut(shown), []);
      assert.ok(await shown.evaluate(() => document.documentElement.scrollWidth <= innerWidth));
    }));
  }
}

test('on a desk, old, new and result stand side by side', () => withPage('small', {}, async (page) => {
  const row = page.locator('#entries tr.fs').first();
  const boxes = await Promise.all([2, 3, 4].map((i) => row.locator('> *').nth(i).boundingBox()));
  assert.ok(boxes[0].x < boxes[1].x && boxes[1].x < boxes[2].x);
  assert.ok(boxes.every((box) => box.y === boxes[0].y && box.width > 150));
}));

test('on a phone they stand below each other, each with its label', () => withPage('small', {viewport: phone}, async (page) => {
  const row = page.locator('#entries tr.fs').first();
  const cells = await Promise.all([2, 3, 4].map(async (i) => {
    const cell = row.locator('> *').nth(i);
    return {box: await cell.boundingBox(), label: await cell.evaluate((element) => getComputedStyle(element, '::after').content)};
  }));
  assert.ok(cells[0].box.y < cells[1].box.y && cells[1].box.y < cells[2].box.y);
  assert.deepEqual(cells.map(({label}) => label.split('"')[1]), ['Old', 'New, before', 'Result']);
}));

test('in the other tables of a phone each value has its label, too', () => withPage('small', {viewport: phone}, async (page) => {
  const labelsOf = (row) => page.locator(row).first().locator('> td').evaluateAll(
    (cells) => cells.map((cell) => getComputedStyle(cell, '::after').content.split('"')[1]));
  assert.deepEqual(await labelsOf('table.swap tbody tr'), ['Was', 'Is now', 'Entry', 'Why']);
  assert.deepEqual(await labelsOf('table.left tbody tr'), ['Value', 'Entry']);
  assert.deepEqual(await labelsOf('table.files tbody tr'), ['What', 'Where']);
}));

test('words and their meanings do not touch', () => withPage('small', {}, async (page) => {
  const gaps = await page.locator('.wordlist > div').evaluateAll((rows) => rows.map((row) => {
    const word = document.createRange();
    word.selectNodeContents(row.querySelector('dt'));
    return row.querySelector('dd').getBoundingClientRect().left - word.getBoundingClientRect().right;
  }));
  assert.equal(gaps.length, 12);
  assert.ok(gaps.every((gap) => gap >= 4), `${gaps}`);
}));

test('an option of the next command is not broken', () => withPage('example-4.1', {viewport: phone}, async (page) => {
  const heights = await page.locator('.next .opt').evaluateAll((options) => options.map((option) => option.getClientRects().length));
  assert.deepEqual(heights, [1, 1]);
  assert.match(await page.locator('.next code').textContent(), /^cfgmig apply --old \S+ --new \S+$/);
}));

test('what can be touched is large enough for a finger', () => withPage('small', {viewport: phone}, async (page) => {
  for (const target of await page.locator('.chip, .e > summary, button').filter({visible: true}).all()) {
    const box = await target.boundingBox();
    assert.ok(box.height >= 24 && box.width >= 24, await target.innerText());
  }
}));
