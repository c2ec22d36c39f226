// Values, DNs and reasons that try to be more than text.
import assert from 'node:assert/strict';
import {createServer} from 'node:http';
import {test} from 'node:test';
import {searchFor, withPage} from './browser.mjs';

const asIs = [
  '</script><script>window.planted = 1</script>',
  '<img src=x onerror="window.planted = 2">',
  'javascript:window.planted=4',
  '</code></td></tr></table></details><h1>Nothing was lost</h1>',
  '{{verdict}} {{script}} &lt;b&gt; &#60;i&#62; ]]>',
];

test('hostile values stand in the page as text', () => withPage('hostile', {}, async (page) => {
  await page.locator('#open-all').click();
  const values = await page.locator('#entries code').allTextContents();
  for (const value of asIs) {
    assert.ok(values.filter((text) => text === value).length >= 4, value);  // old, result, dropped, replaced
  }
  const dns = await page.locator('#entries .dn').allTextContents();
  assert.ok(dns.some((dn) => dn.includes('javascript:window.planted\\=4')));
}));

test('nothing of them became an element', () => withPage('hostile', {}, async (page) => {
  await page.locator('#open-all').click();
  const counts = await page.evaluate(() => Object.fromEntries(
    ['script', 'style', 'h1', 'img', 'iframe', 'meta[http-equiv]', 'svg[onload]', '[onerror]', '[onfocus]',
     'a[href^="javascript:"]', 'noscript'].map((selector) => [selector, document.querySelectorAll(selector).length])));
  assert.deepEqual(counts, {
    'script': 1, 'style': 1, 'h1': 1, 'img': 0, 'iframe': 0, 'meta[http-equiv]': 1, 'svg[onload]': 0, '[onerror]': 0,
    '[onfocus]': 0, 'a[href^="javascript:"]': 0, 'noscript': 0,
  });
}));

test('what cannot be seen, or turns the writing, is written as marked escapes', () => withPage('hostile', {}, async (page) => {
  const text = await page.evaluate(() => document.body.textContent);
  assert.doesNotMatch(text, /[\u0000-\u0008\u000B-\u001F\u007F-\u009F\u00AD\u200B-\u200F\u2028-\u202E\u2060-\u206F\uFEFF]/);
  assert.doesNotMatch(text, /\uFFFD/);
  const escapes = new Set(await page.locator('#entries .esc').allTextContents());
  for (const escape of ['\\u{202E}', '\\u{200B}', '\\u{FEFF}', '\\u{2028}', '\\u{001B}', '\\n', '\\r', '\\t', 'base64:']) {
    assert.ok(escapes.has(escape), escape);
  }
}));

test('the search finds them and shows them as text', () => withPage('hostile', {}, async (page) => {
  for (const value of asIs) {
    const {hits} = await searchFor(page, value);
    assert.ok(hits.length >= 3, value);
    const codes = await page.locator('#hits code').allTextContents();
    assert.ok(codes.includes(value), value);
  }
  assert.equal(await page.locator('#hits :is(script, img, svg, iframe, style)').count(), 0);
  await page.locator('#hits a').first().click();
  assert.ok(await page.locator('.here').isVisible());
}));

test('filters work on them', () => withPage('hostile', {}, async (page) => {
  await page.locator('#fd').check();
  await page.waitForFunction(() => document.getElementById('state').textContent.endsWith('dropped'));
}));

test('the policy of the page refuses connections and foreign code', () => withPage('small', {mayBeLoud: true}, async (page) => {
  let connections = 0;
  const server = createServer(() => {}).on('connection', (socket) => {
    ++connections;
    socket.destroy();
  });
  await new Promise((done) => server.listen(0, '127.0.0.1', done));
  const outcome = await page.evaluate(async (address) => {
    const refused = new Set();
    document.addEventListener('securitypolicyviolation', (event) => refused.add(event.effectiveDirective));
    const answer = await fetch(address, {mode: 'no-cors'}).then(() => 'answered', () => 'refused');
    const script = document.createElement('script');
    script.textContent = 'window.planted = 10';
    document.body.append(script);
    new Image().src = address;
    document.body.insertAdjacentHTML('beforeend', '<p onclick="window.planted = 11" style="color: red">');
    document.body.lastElementChild.click();
    await new Promise((done) => setTimeout(done, 500));
    return {answer, refused: [...refused].sort(), planted: window.planted};
  }, `http://127.0.0.1:${server.address().port}/`);
  server.close();
  assert.equal(outcome.answer, 'refused');
  assert.deepEqual(outcome.refused, ['connect-src', 'img-src', 'script-src-attr', 'script-src-elem', 'style-src-attr']);
  assert.equal(outcome.planted, undefined);
  assert.equal(connections, 0);
}));
