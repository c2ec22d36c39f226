// What all browser tests share: one browser for each file of tests, and pages that report whatever they must not do.
import assert from 'node:assert/strict';
import {existsSync, readFileSync} from 'node:fs';
import {createRequire} from 'node:module';
import {join} from 'node:path';
import {pathToFileURL} from 'node:url';
import {after, before} from 'node:test';

const executablePath = '/usr/bin/chromium';
const packages = join(process.env.CFGMIG_BROWSER_PACKAGES, 'package.json');
const pages = process.env.CFGMIG_BROWSER_PAGES;

// Without the flags for the background, Chromium itself asks for hosts that have nothing to do with the page.
const args = ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking',
              '--disable-component-update', '--disable-sync'];

const require = createRequire(packages);
const {chromium} = require('playwright-core');
export const axeSource = readFileSync(require.resolve('axe-core/axe.min.js'), 'utf8');

export const desk = {width: 1280, height: 900};
export const phone = {width: 390, height: 844};

let browser;
const contexts = new Map();  // of a browser; making one takes longer than most tests
before(async () => {
  assert.ok(existsSync(executablePath), `${executablePath} is missing; run scripts/install-dependencies test`);
  browser = await chromium.launch({executablePath, headless: true, args});  // with a new, empty profile
}, {timeout: 120000});
after(() => browser?.close());

const contextFor = async (options) => {
  const key = JSON.stringify(options);
  if (!contexts.has(key)) contexts.set(key, await browser.newContext(options));
  return contexts.get(key);
};

// Opens a page, hands it to `test`, and then checks that it stayed quiet: no error, no message, no dialog, no request
// but the one for the page itself, nothing that its policy had to stop, and no planted code that ran. `mayBeLoud` is for
// tests that make it do such things.
export const withPage = async (name, options, test) => {
  const {viewport = desk, dark = false, script = true, mayBeLoud = false} = options;
  const context = await contextFor({viewport, colorScheme: dark ? 'dark' : 'light', javaScriptEnabled: script});
  const page = await context.newPage();
  page.setDefaultTimeout(60000);
  const address = pathToFileURL(join(pages, `${name}.html`)).href;
  const seen = [];
  const requests = [];
  page.on('console', (message) => seen.push(`console ${message.type()}: ${message.text()}`));
  page.on('pageerror', (error) => seen.push(`error: ${error.message}`));
  page.on('dialog', (dialog) => {
    seen.push(`dialog: ${dialog.message()}`);
    void dialog.dismiss();
  });
  page.on('popup', () => seen.push('a new window'));
  page.on('request', (request) => requests.push(request.url()));
  if (script) {
    await page.addInitScript(() => {
      window.stopped = [];
      document.addEventListener('securitypolicyviolation', (event) => window.stopped.push(event.violatedDirective));
    });
  }
  try {
    await page.goto(address);
    await test(page);
    if (mayBeLoud) return;
    assert.deepEqual(seen, []);
    assert.deepEqual(requests.map((url) => url.replace(/#.*/, '')).filter((url) => url !== address), []);
    if (script) {
      assert.deepEqual(await page.evaluate(() => window.stopped), []);
      assert.equal(await page.evaluate(() => window.planted), undefined);
    }
  } finally {
    await page.close();
  }
};

// The texts of all elements that a selector finds and that can be seen when scrolled to; of a row, cell by cell.
export const visibleTexts = async (page, selector) => page.locator(selector).evaluateAll(
  (elements) => elements.filter((element) => element.checkVisibility()).map(
    (element) => element.cells ? [...element.cells].map((cell) => cell.textContent).join(' ') : element.textContent));

// What the search shows for a query, once it has an answer to it.
export const searchFor = async (page, query) => {
  await page.locator('#q').fill('');
  await page.locator('#results').waitFor({state: 'hidden'});
  await page.locator('#q').fill(query);
  await page.locator('#results').waitFor({state: 'visible'});
  return {
    found: await page.locator('#found').innerText(),
    hits: (await page.locator('#hits > li').allInnerTexts()).map((text) => text.replace(/\s+/g, ' ')),
  };
};
