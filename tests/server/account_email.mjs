// Signing the account page in with the e-mailed link: the page waits, the link is opened in
// another tab (as from a mail program), and the waiting page finishes by itself.
//   --url=BASE --outbox=FOLDER
import { readdirSync, readFileSync } from 'node:fs';
import path from 'node:path';
import { openBrowser, options, report, shoot } from '../web/browser.mjs';

const { url, outbox } = options();
const browser = await openBrowser();
const context = await browser.newContext({ colorScheme: 'dark', viewport: { width: 900, height: 620 } });
const page = await context.newPage();
const out = { errors: [] };
page.on('pageerror', (e) => out.errors.push(String(e)));

await page.goto(`${url}/settings.html`);
await page.waitForSelector('body[data-ready="signin"]');
await page.fill('#email', 'pilot@example.org');
await page.click('#email-submit');
await page.waitForSelector('#waiting:not([hidden])');
out.waiting = await page.locator('#waiting-line').innerText();
await shoot(page, 'account-page-waiting-cockpit');
await page.emulateMedia({ colorScheme: 'light' });
await shoot(page, 'account-page-waiting-field');
await page.emulateMedia({ colorScheme: 'dark' });

let link = null;
for (let i = 0; i < 50 && !link; i += 1) {
  for (const name of readdirSync(outbox)) {
    const match = /http:\/\/\S+\/auth\/device\/[0-9a-f]+/.exec(readFileSync(path.join(outbox, name), 'utf8'));
    if (match) link = match[0];
  }
  if (!link) await new Promise((resolve) => setTimeout(resolve, 100));
}
out.link = Boolean(link);
if (link) {
  const mailTab = await context.newPage();
  await mailTab.goto(link);
  out.linkPage = await mailTab.locator('h1').innerText();
  await page.waitForSelector('body[data-ready="account"]', { timeout: 15000 });
  out.signedInAs = await page.locator('#signed-in-as').innerText();
}
await browser.close();
report(out);
