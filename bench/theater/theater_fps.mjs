// Loads the 3D page of one flight in headless Chromium (software GL) with a session cookie, then
// counts the frames it draws over a while. Reports the frame rate and how long the page took to
// be ready (the flight fetched, read and its path thinned).
//   --url=<base> [--id=<flight>] --cookie=name=value [--seconds=8]; without a flight, an empty
//   WebGL page for the machine's own ceiling.
import { openBrowser, options, report } from '../../tests/web/browser.mjs';

const { url, id, cookie, seconds = '8' } = options();
const browser = await openBrowser();
const context = await browser.newContext({ viewport: { width: 1280, height: 720 } });
const [name, value] = cookie.split('=');
await context.addCookies([{ name, value, domain: new URL(url).hostname, path: '/' }]);
const page = await context.newPage();
const opened = Date.now();
if (!id) {
    // The machine's ceiling: a full-window WebGL canvas that is only cleared, with the same
    // counter the page keeps. Whatever the page costs comes on top of this.
    await page.setContent(`<body style="margin:0;background:#0b1224">
        <canvas id="c" style="width:100vw;height:100vh;display:block"></canvas></body>`);
    await page.evaluate(() => {
        const canvas = document.getElementById('c');
        canvas.width = innerWidth;
        canvas.height = innerHeight;
        const gl = canvas.getContext('webgl2');
        const stats = { frames: 0 };
        const frame = () => {
            gl.clearColor(0.04, 0.07, 0.14, 1);
            gl.clear(gl.COLOR_BUFFER_BIT);
            ++stats.frames;
            requestAnimationFrame(frame);
        };
        requestAnimationFrame(frame);
        window.theater = { stats: () => ({ frames: stats.frames, samples: 0, drawn: 0, pixelRatio: 1 }) };
        document.documentElement.dataset.state = 'ready';
    });
} else {
    await page.goto(`${url}/theater.html?id=${encodeURIComponent(id)}`);
}
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
