// On paper.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {withPage} from './browser.mjs';

const isOnPaper = (elements) => elements.map((element) => element.checkVisibility({contentVisibilityAuto: false, visibilityProperty: true}) &&
                                                          element.getBoundingClientRect().height > 0);
const onPaper = async (page, selector) => page.locator(selector).evaluateAll(isOnPaper);

for (const script of [true, false]) {
  test(`paper shows what is closed on the screen, ${script ? 'with' : 'without'} a script`, () => withPage('small', {script}, async (page) => {
    const closed = '.reason:not([open]) tbody tr, .e:not([open]) > table > tbody > tr';
    assert.ok((await onPaper(page, closed)).every((is) => !is), 'closed on the screen');
    await page.emulateMedia({media: 'print'});
    for (const rows of [closed, '#entries tbody tr', 'table.left tbody tr', 'table.swap tbody tr']) {
      const all = await onPaper(page, rows);
      assert.ok(all.length > 3, rows);
      assert.ok(all.every(Boolean), rows);
    }
  }));

  test(`paper has no controls, ${script ? 'with' : 'without'} a script`, () => withPage('small', {script}, async (page) => {
    await page.emulateMedia({media: 'print'});
    for (const part of ['.bar', '.skip', 'nav', '.tools', '.chip input', '#filters button']) {
      assert.ok((await onPaper(page, part)).every((is) => !is), part);
    }
    assert.deepEqual(await onPaper(page, 'h1'), [true]);
    assert.ok((await onPaper(page, '.chip b')).every(Boolean));
  }));
}

test('paper is white in the dark', () => withPage('small', {dark: true}, async (page) => {
  await page.emulateMedia({media: 'print', colorScheme: 'dark'});
  assert.equal(await page.evaluate(() => getComputedStyle(document.body).backgroundColor), 'rgb(255, 255, 255)');
  assert.equal(await page.evaluate(() => getComputedStyle(document.body).color), 'rgb(0, 0, 0)');
}));

test('a filter holds on paper', () => withPage('small', {}, async (page) => {
  await page.locator('#fl').check();
  await page.waitForFunction(() => document.getElementById('state').textContent === '1 row: lost');
  await page.emulateMedia({media: 'print'});
  assert.equal((await onPaper(page, '#entries tbody tr')).filter(Boolean).length, 1);
}));

test('of a large page, paper has what was opened, and says so', () => withPage('large', {}, async (page) => {
  await page.locator('.g > summary').last().click();
  await page.locator('.g').last().locator('.e > summary').last().click();
  await page.emulateMedia({media: 'print'});
  assert.deepEqual(await onPaper(page, '.paper'), [true]);
  const rows = await onPaper(page, '#entries tbody tr');
  assert.ok(rows.filter(Boolean).length > 0);
  assert.ok(rows.filter(Boolean).length < 50);
  assert.ok((await onPaper(page, '.reason tbody tr')).every(Boolean), 'what did not come along');
}));

test('the text of a table has one size on paper', () => withPage('small', {}, async (page) => {
  await page.locator('#open-all').click();
  await page.emulateMedia({media: 'print'});
  const sizes = await page.locator('#entries tr.fc').first().locator('th, td, code, small').evaluateAll(
    (elements) => elements.map((element) => Number.parseFloat(getComputedStyle(element).fontSize)));
  assert.ok(sizes.length > 6);
  assert.ok(Math.max(...sizes) - Math.min(...sizes) < 0.1, `${sizes}`);
}));

test('it prints', () => withPage('small', {}, async (page) => {
  const pdf = await page.pdf({format: 'A4', printBackground: true});
  assert.equal(pdf.subarray(0, 5).toString(), '%PDF-');
  const pages = pdf.toString('latin1').match(/\/Type\s*\/Page\b/g)?.length ?? 0;
  assert.ok(pages >= 4 && pages <= 20, `${pages} pages`);
}));
