// The search: where did X go?
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {searchFor, withPage} from './browser.mjs';

test('a value is found, with what became of it and where it stands', () => withPage('small', {}, async (page) => {
  const {found, hits} = await searchFor(page, 'Europe/Berlin');
  assert.equal(found, '1 found');
  assert.match(hits[0], /zor-slapdSetenv.*carried.*\(mergeCfgEntry\)/);
  assert.match(hits[0], /Old: TZ=Europe\/Berlin line 27/);
  assert.match(hits[0], /Result: TZ=Europe\/Berlin line 27/);
  assert.match(hits[0], /in cn=Front End, cn=Configuration/);
}));

test('an attribute is found, and where its value was moved to', () => withPage('small', {}, async (page) => {
  const {hits} = await searchFor(page, 'ZOR-SLAPDSYSLOGLEVEL');
  assert.match(hits[0], /zor-slapdSysLogLevel moved the new server has the setting elsewhere/);
  assert.match(hits[0], /Result: to zor-slapdLogOptions in CN=ZORSLAPD, CN=LOG MANAGEMENT/);
}));

test('an entry is found by its DN, however it is written', () => withPage('small', {}, async (page) => {
  for (const dn of ['cn=Front End, cn=Configuration', 'CN=FRONT END,CN=CONFIGURATION', 'front end']) {
    const {hits} = await searchFor(page, dn);
    assert.match(hits[0], /^Entry cn=Front End, cn=Configuration .*same.*carried/, dn);
  }
}));

test('DN:ATTRIBUTE=VALUE names one value', () => withPage('small', {}, async (page) => {
  const {found, hits} = await searchFor(page, 'CN=ADMIN,CN=CONFIGURATION:zor-slapdPort=4389');
  assert.equal(found, '1 found');
  assert.match(hits[0], /zor-slapdPort.*Old: 4389.*in cn=Admin, cn=Configuration/);
}));

test('words are found in any order, in the DN and in the value together', () => withPage('small', {}, async (page) => {
  const {found, hits} = await searchFor(page, '4389 admin');
  assert.equal(found, '1 found');
  assert.match(hits[0], /zor-slapdPort/);
}));

test('what is named exactly comes first', () => withPage('small', {}, async (page) => {
  const {hits} = await searchFor(page, '389');
  assert.equal(hits.length, 2);  // 1389 with the 389 that it replaced, and 4389
  assert.match(hits[0], /New, before: 389 line 6/);
  const {hits: exact} = await searchFor(page, 'zor-audit');
  assert.match(exact[0], /^zor-audit /);
  assert.match(exact[1], /^zor-auditLog .*lost/);
  const {hits: value} = await searchFor(page, 'configuration');  // which stands in every DN
  assert.match(value[0], /^Entry cn=Configuration /);
  assert.match(value[1], /^cn .*Old: Configuration/);
  assert.match(value[2], /^Entry cn=Admin/);
}));

test('a dropped value is found with the rule that dropped it', () => withPage('small', {}, async (page) => {
  const {hits} = await searchFor(page, 'zor-slapdPagedResLmt');
  assert.match(hits[0], /dropped.*the new server no longer has this setting \(mergeIn51\)/);
}));

test('a value of the new server that was replaced is found', () => withPage('small', {}, async (page) => {
  const {hits} = await searchFor(page, 'cn=root');
  assert.match(hits[0], /zor-slapdAdminDN.*New, before: cn=root line 8.*replaced/);
}));

test('secrets are not found', () => withPage('small', {}, async (page) => {
  const {found, hits} = await searchFor(page, 'Pl4nted');
  assert.deepEqual(hits, []);
  assert.match(found, /^Nothing has this/);
  const {hits: redacted} = await searchFor(page, 'zor-slapdAdminPW');
  assert.match(redacted[0], /\[redacted\]/);
}));

test('a result leads to its row', () => withPage('small', {}, async (page) => {
  await page.locator('#close-all').click();
  await searchFor(page, '/var/log/zor/audit.log');
  await page.locator('#hits a').first().click();
  await page.locator('#results').waitFor({state: 'hidden'});
  const row = page.locator('tr.here');
  assert.match(await row.innerText(), /zor-auditLog[\s\S]*lost/);
  assert.ok(await row.isVisible());
  assert.ok(await row.evaluate((element) => element === document.activeElement));
  const box = await row.boundingBox();
  assert.ok(box.y > 50 && box.y < 850, 'the row is on the screen');
}));

test('a link inside a result leads away from the results', () => withPage('small', {}, async (page) => {
  await searchFor(page, 'zor-slapdSysLogLevel');
  await page.locator('#hits .where a').first().click();
  await page.locator('#results').waitFor({state: 'hidden'});
  assert.match(await page.locator('.e.here > summary').innerText(), /CN=ZORSLAPD/);
}));

test('the keyboard alone is enough', () => withPage('small', {}, async (page) => {
  await page.locator('#q').focus();
  await page.keyboard.type('zor-auditLog');
  await page.locator('#results').waitFor({state: 'visible'});
  await page.keyboard.press('Enter');
  await page.waitForFunction(() => document.activeElement.closest('#hits'));
  await page.keyboard.press('Escape');
  await page.locator('#results').waitFor({state: 'hidden'});
  assert.equal(await page.evaluate(() => document.activeElement.id), 'q');
  await page.keyboard.press('Enter');
  await page.waitForFunction(() => document.activeElement.closest('#hits'));
  await page.keyboard.press('Enter');
  await page.waitForFunction(() => document.activeElement.matches('tr.here'));
}));

test('clearing the field ends the search', () => withPage('small', {}, async (page) => {
  await searchFor(page, 'audit');
  await page.locator('#q').fill('');
  await page.locator('#results').waitFor({state: 'hidden'});
  assert.equal(await page.locator('#hits > li').count(), 0);
}));

test('the number of results is told to screen readers', () => withPage('small', {}, async (page) => {
  await searchFor(page, 'audit');
  assert.equal(await page.locator('#found').getAttribute('role'), 'status');
}));

test('filters narrow the search and clearing them widens it again', () => withPage('small', {}, async (page) => {
  await page.locator('#fl').check();
  let {found, hits} = await searchFor(page, 'zor-');
  assert.equal(found, '1 found among what the filters show');
  assert.match(hits[0], /lost/);
  await page.locator('#fl').uncheck();
  await page.waitForFunction(() => document.querySelectorAll('#hits > li').length > 1);
}));

test('long lists of results come in parts', () => withPage('small', {}, async (page) => {
  const {found, hits} = await searchFor(page, 'o');
  assert.equal(hits.length, 30);
  assert.match(found, /^\d+ found, the first 30 shown$/);
  await page.locator('#more').focus();
  await page.keyboard.press('Enter');
  await page.waitForFunction(() => document.querySelectorAll('#hits > li').length > 30);
  assert.ok(await page.evaluate(() => document.activeElement === document.querySelector('#hits > li:nth-child(31) a')));
}));
