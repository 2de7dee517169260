// The library's 3D page in headless Chromium: loads it with or without the session cookie and
// reports what it shows, whether its WebGL canvas draws, and whether its video plays.
//   --url=<base> --id=<flight> [--cookie=name=value] [--tiles=<template>] [--quality=hq] [--shot=<name>]
import { openBrowser, options, report, shoot } from '../web/browser.mjs';

const { url, id, cookie, tiles, quality, shot, camera } = options();
const browser = await openBrowser();
const context = await browser.newContext({ viewport: { width: 1280, height: 720 } });
if (cookie) {
    const [name, value] = cookie.split('=');
    await context.addCookies([{ name, value, domain: new URL(url).hostname, path: '/' }]);
}
const page = await context.newPage();
const errors = [];
page.on('pageerror', (e) => errors.push(String(e)));
// What the page asked of the library's flights, and anything it asked of a host other than the
// library and the tile host: the page must need nothing from the internet.
const media = {};
const foreign = [];
const allowed = [new URL(url).host, ...(tiles ? [new URL(tiles.replace(/[{}]/g, '')).host] : [])];
page.on('request', (r) => {
    const where = new URL(r.url());
    if (where.protocol.startsWith('http') && !allowed.includes(where.host)) foreign.push(r.url());
});
page.on('response', (r) => {
    const path = new URL(r.url()).pathname;
    if (path.startsWith('/flights/')) media[path] = r.status();
});

let address = `${url}/theater.html?id=${encodeURIComponent(id)}&units=metric`;
if (tiles) address += `&tiles=${encodeURIComponent(tiles)}`;
if (quality) address += `&quality=${encodeURIComponent(quality)}`;
const response = await page.goto(address);
await page.waitForFunction(() => document.documentElement.dataset.state !== 'loading', null, { timeout: 30000 });
const result = { status: response.status(), state: await page.evaluate(() => document.documentElement.dataset.state) };
result.text = await page.evaluate(() => document.body.innerText);

if (result.state === 'ready') {
    // The ground settles once every tile has arrived or failed.
    await page.waitForFunction(() => {
        const s = window.theater.stats();
        return s.tilesLoaded + s.tilesFailed >= s.tilesWanted;
    }, null, { timeout: 20000 }).catch(() => {});
    await page.waitForTimeout(1200);
    const before = await page.evaluate(() => window.theater.stats());
    result.picture = await page.evaluate(() => window.theater.picture());
    await page.waitForTimeout(1500);
    const after = await page.evaluate(() => window.theater.stats());
    Object.assign(result, {
        samples: Number(await page.evaluate(() => document.documentElement.dataset.samples)),
        drawn: after.drawn, ground: after.ground, tilesLoaded: after.tilesLoaded, tilesFailed: after.tilesFailed,
        videoTimeBefore: before.videoTime, videoTimeAfter: after.videoTime, timeAfter: after.time,
        playing: after.playing, videoShown: await page.evaluate(() => !document.getElementById('videoBox').hidden),
        speed: await page.evaluate(() => document.getElementById('speed').textContent),
        altitude: await page.evaluate(() => document.getElementById('altitude').textContent),
    });
}
if (shot) await shoot(page, shot);
if (camera && result.state === 'ready') {
    await page.click(`#${camera}`);
    await page.waitForTimeout(2500);
    await shoot(page, `${shot}-${camera}`);
}
result.media = media;
result.foreign = foreign;
result.errors = errors;
await browser.close();
report(result);
