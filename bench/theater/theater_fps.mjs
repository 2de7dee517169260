// Loads the 3D page of one flight in headless Chromium (software GL) with a session cookie, then
// counts the frames it draws over a while. Reports the frame rate and how long the page took to
// be ready (the flight fetched, read and its path thinned).
//   --url=<base> --id=<flight> --cookie=name=value [--seconds=8]
import { openBrowser, options, report } from '../../tests/web/browser.mjs';

const { url, id, cookie, seconds = '8' } = options();
const browser = await openBrowser();
const context = await browser.newContext({ viewport: { width: 1280, height: 720 } });
const [name, value] = cookie.split('=');
await context.addCookies([{ name, value, domain: new URL(url).hostname, path: '/' }]);
const page = await context.newPage();
const opened = Date.now();
await page.goto(`${url}/theater.html?id=${encodeURIComponent(id)}`);
await page.waitForFunction(() => document.documentElement.dataset.state !== 'loading', null, { timeout: 120000 });
const readyMs = Date.now() - opened;
const state = await page.evaluate(() => document.documentElement.dataset.state);
if (state !== 'ready') {
    await browser.close();
    report({ error: `the page is ${state}` });
    process.exit(0);
}
await page.waitForTimeout(2000);  // shaders compiled, video started
const count = () => page.evaluate(() => ({ frames: window.theater.stats().frames, at: performance.now() }));
const first = await count();
await page.waitForTimeout(Number(seconds) * 1000);
const last = await count();
const stats = await page.evaluate(() => window.theater.stats());
await browser.close();
report({ fps: (last.frames - first.frames) / ((last.at - first.at) / 1000), readyMs, samples: stats.samples,
         drawn: stats.drawn, pixelRatio: stats.pixelRatio });
