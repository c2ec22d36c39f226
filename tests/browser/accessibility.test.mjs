// The page for everybody: an accessibility checker, landmarks, headings, and the keyboard alone.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {axeSource, desk, phone, searchFor, withPage} from './browser.mjs';

const check = async (page) => {
  await page.evaluate(axeSource);
  const found = await page.evaluate(async () => {
    // Scrolled, links would be just below the bar on top, where the checker finds them too close to the search field.
    window.scrollTo({top: 0, behavior: 'instant'});
    const {violations, passes} = await window.axe.run(document, {
      runOnly: ['wcag2a', 'wcag2aa', 'wcag21a', 'wcag21aa', 'wcag22aa', 'best-practice'],
    });
    return {
      violations: violations.map(({id, help, nodes}) => `${id}: ${help}: ${nodes.slice(0, 3).map((node) => node.html + ' ' + node.failureSummary).join(' | ')}`),
      passes: passes.length,
    };
  });
  assert.deepEqual(found.violations, []);
  assert.ok(found.passes > 10, `only ${found.passes} rules had something to look at`);
};

const everything = async (page) => {
  for (const box of await page.locator('details:not([open]) > summary').all()) {
    if (await box.isVisible()) await box.click();
  }
  if (await page.locator('#open-all').isVisible()) await page.locator('#open-all').click();
};

for (const dark of [false, true]) {
  for (const [name, viewport] of [['desk', desk], ['phone', phone]]) {
    const options = {dark, viewport};
    const how = `${dark ? 'dark' : 'light'}, ${name}`;
    test(`the checker finds nothing with everything open: ${how}`, () => withPage('small', options, async (page) => {
      await everything(page);
      await check(page);
    }));
    test(`the checker finds nothing with filters and results: ${how}`, () => withPage('small', options, async (page) => {
      await page.locator('#fd').check();
      await page.locator('#oa').check();
      await page.waitForFunction(() => document.getElementById('state').textContent.endsWith('dropped, added-by-rule'));
      await check(page);
      await page.locator('#filters button').click();
      await searchFor(page, 'zor-');
      await check(page);
      await page.locator('#hits a').nth(3).click();
      await check(page);
    }));
  }
}

for (const name of ['hostile', 'same', 'lost', 'example-5.1']) {
  test(`the checker finds nothing in another page: ${name}`, () => withPage(name, {}, async (page) => {
    await everything(page);
    await check(page);
  }));
}

// What only a large page has: groups of entries and of values, and what is built when it is opened. The page with 50,000
// values has nothing beyond that but more of it, over which the checker takes most of a minute: there its tree is closed.
test('the checker finds nothing in groups that were opened', () => withPage('many', {}, async (page) => {
  for (const group of [page.locator('.e[open] > .g').first(), page.locator('.kids > .g').last()]) {
    await group.locator('> summary').click();
    if (await group.locator('.e').count() > 0) await group.locator('.e > summary').last().click();
    assert.ok(await group.locator('tbody tr').last().isVisible());
  }
  await check(page);
}));
test('the checker finds nothing in a page of 50,000 values', () => withPage('large', {}, async (page) => {
  await page.locator('#close-all').click();
  await check(page);
}));

test('landmarks and headings tell the parts of the page', () => withPage('small', {}, async (page) => {
  for (const landmark of ['banner', 'main', 'contentinfo', 'search', 'navigation']) {
    assert.equal(await page.getByRole(landmark).count(), 1, landmark);
  }
  assert.equal(await page.getByRole('heading', {level: 1}).count(), 1);
  assert.equal(await page.getByRole('searchbox', {name: 'Where did it go?', exact: true}).count(), 1);
  await searchFor(page, 'audit');
  assert.equal(await page.getByRole('region', {name: 'Search results'}).count(), 1);
  const parts = await page.locator('main > section').evaluateAll((sections) => sections.map(
    (section) => document.getElementById(section.getAttribute('aria-labelledby'))?.textContent.trim()));
  assert.deepEqual(parts, [
    '1 value would be lost, and 4 findings need a person', 'Every value, counted', 'What needs a person',
    'What did not come along', 'Old, new and result, side by side', 'Values of the new server that were replaced',
    'Schema files', 'What the words mean',
  ]);
  assert.equal(await page.locator('html').getAttribute('lang'), 'en');
}));

test('the first stop of the keyboard skips to the report', () => withPage('small', {}, async (page) => {
  await page.keyboard.press('Tab');
  assert.equal(await page.evaluate(() => document.activeElement.className), 'skip');
  const box = await page.locator('.skip').boundingBox();
  assert.ok(box.x >= 0 && box.y >= 0);
  await page.keyboard.press('Enter');
  assert.equal(await page.evaluate(() => document.activeElement.id), 'main');
}));

test('the keyboard reaches everything, and is seen where it is', () => withPage('small', {}, async (page) => {
  const stops = new Map();
  for (let i = 0; i < 400; ++i) {
    await page.keyboard.press('Tab');
    const stop = await page.evaluate(() => {
      const element = document.activeElement;
      if (element === document.body) return null;
      const seen = element.matches('.chip input') ? element.closest('label') : element;
      const {outlineStyle, outlineWidth} = getComputedStyle(seen);
      return {what: element.id || element.href || element.textContent, kind: element.localName,
              outline: outlineStyle !== 'none' && Number.parseFloat(outlineWidth) >= 2};
    });
    if (stop === null) break;
    assert.ok(stop.outline, `the focus on ${stop.kind} ${stop.what} can be seen`);
    stops.set(stop.kind, (stops.get(stop.kind) ?? 0) + 1);
    if (stop.what === 'open-all') await page.keyboard.press('Enter');
  }
  const expected = await page.evaluate(() => document.querySelectorAll('#entries .e > summary').length);
  assert.ok(stops.get('summary') >= expected, 'each entry is a stop');
  assert.ok(stops.get('input') >= 10);
  assert.ok(stops.get('button') >= 2);
}));

test('an entry is opened and closed by the keyboard', () => withPage('small', {}, async (page) => {
  const entry = page.locator('.kids .e').first();
  await entry.locator('> summary').focus();
  await page.keyboard.press('Enter');
  assert.ok(await entry.evaluate((element) => element.open));
  await page.keyboard.press('Space');
  assert.ok(!(await entry.evaluate((element) => element.open)));
}));

test('each state that a colour shows has a word', () => withPage('small', {}, async (page) => {
  await page.locator('#open-all').click();
  const cells = await page.locator('#entries tbody td:nth-child(2)').allTextContents();
  for (const cell of cells) {
    assert.match(cell, /^(same|carried|moved|dropped|kept-new|cleaned|lost|new|added-by-rule|replaced)/);
  }
  assert.match(await page.locator('#verdict').innerText(), /lost/);
  for (const finding of await page.locator('.finding h3 .sev').allInnerTexts()) assert.match(finding, /Error|Warning|Note/);
}));
