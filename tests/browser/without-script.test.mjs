// Without JavaScript, all of the report can be read and filtered; only the search is missing.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {phone, visibleTexts, withPage} from './browser.mjs';

const off = {script: false};
const fates = ['fs', 'fc', 'fm', 'fd', 'fk', 'fx', 'fl'];

test('everything is there', () => withPage('small', off, async (page) => {
  assert.match(await page.locator('#verdict').innerText(), /1 value would be lost/);
  assert.match(await page.locator('.next').innerText(), /cfgmig apply migration\.plan/);
  assert.equal(await page.locator(fates.map((id) => `#entries tr.${id}`).join()).count(), 47);
  const text = await page.locator('#entries').textContent();
  for (const value of ['TZ=Europe/Berlin', '/var/log/zor/audit.log', 'the new server no longer has this setting']) {
    assert.ok(text.includes(value), value);
  }
}));

test('what needs a script is not shown', () => withPage('small', off, async (page) => {
  assert.ok(await page.locator('#search').isHidden());
  assert.ok(await page.locator('#tools').isHidden());
  assert.ok(await page.locator('#results').isHidden());
}));

test('entries open and close', () => withPage('small', off, async (page) => {
  const value = page.getByText('TZ=Europe/Berlin').first();
  assert.ok(await value.isHidden());
  await page.locator('.e > summary', {hasText: 'cn=Front End'}).click();
  assert.ok(await value.isVisible());
}));

test('filters work, and are cleared', () => withPage('small', off, async (page) => {
  await page.locator('.e > summary', {hasText: 'cn=Audit'}).click();
  const before = (await visibleTexts(page, '#entries tbody tr')).length;
  await page.locator('#fl').check();
  assert.deepEqual((await visibleTexts(page, '#entries tbody tr')).map((row) => row.split(/\s/)[0]), ['zor-auditLog']);
  await page.locator('#fd').check();
  assert.ok((await visibleTexts(page, '#entries tbody tr')).length > 1);
  await page.locator('#filters button').click();
  assert.equal((await visibleTexts(page, '#entries tbody tr')).length, before);
}));

test('filters work on a phone', () => withPage('small', {...off, viewport: phone}, async (page) => {
  await page.locator('.e > summary', {hasText: 'cn=Audit'}).click();
  await page.locator('#fl').check();
  assert.equal((await visibleTexts(page, '#entries tbody tr')).length, 1);
}));

test('a large page holds every value', () => withPage('large', off, async (page) => {
  assert.equal(await page.locator(fates.map((id) => `#entries tr.${id}`).join()).count(), 50000);
  const entry = page.locator('.g > summary').last();
  await entry.click();
  await page.locator('.g').last().locator('.e > summary').last().click();
  assert.ok(await page.locator('.g').last().locator('tbody tr').last().isVisible());
}));
