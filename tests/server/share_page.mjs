// A visitor without an account opens a share link: the page, its video playing, its counts, and
// what the same browser gets from the rest of the library; then the pilot revokes the link.
import { openBrowser, options, report, shoot } from '../web/browser.mjs';

const { url, api, token, share, others } = options();
const browser = await openBrowser();
const page = await browser.newPage({ viewport: { width: 1100, height: 900 } });

const response = await page.goto(url, { waitUntil: 'load' });
const status = response.status();
const tags = await page.evaluate(() => Object.fromEntries(
    [...document.querySelectorAll('meta[property^="og:"], meta[name^="twitter:"]')]
        .map((m) => [m.getAttribute('property') ?? m.getAttribute('name'), m.getAttribute('content')])));

// Browsers play with sound only after a gesture; a muted start is what the page is tested on.
const played = await page.evaluate(async () => {
    const video = document.getElementById('video');
    video.muted = true;
    await video.play();
    await new Promise((resolve) => setTimeout(resolve, 1500));
    return video.currentTime;
});
await page.waitForFunction(() => document.getElementById('views').textContent === '1 view', null, { timeout: 5000 })
    .catch(() => {});
await page.click('#heart');
await page.waitForFunction(() => document.getElementById('hearts').textContent !== '0', null, { timeout: 5000 })
    .catch(() => {});
// The picture: the video running (so its controls step aside) under the page's words.
await page.evaluate(() => {
    const video = document.getElementById('video');
    video.loop = true;
    video.currentTime = 0.5;
});
await page.mouse.move(1090, 890);
await page.waitForTimeout(3500);
await shoot(page, 'share_page');
const viewsShown = await page.textContent('#views');
const heartsShown = await page.textContent('#hearts');

const othersSeen = await page.evaluate(async (paths) => {
    const out = {};
    for (const path of paths) out[path] = (await fetch(path)).status;
    return out;
}, others.split(','));

const auth = { headers: { Authorization: `Bearer ${token}` } };
const shares = await (await fetch(`${api}/api/shares`, auth)).json();
const viewsStored = shares.shares.find((s) => s.token === share)?.views;
await fetch(`${api}/api/shares/${share}`, { ...auth, method: 'DELETE' });

const revoked = await page.reload({ waitUntil: 'load' });
const revokedHeading = await page.textContent('h1');
await shoot(page, 'share_page_revoked');
await browser.close();

report({ status, tags, played, viewsShown, heartsShown, viewsStored, others: othersSeen,
         revokedStatus: revoked.status(), revokedHeading });
