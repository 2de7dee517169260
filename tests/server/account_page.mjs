// The account page as a pilot uses it: signed out it offers sign-in; a wrong token is refused in
// words; the right one shows the library's numbers and the account's tokens; a token is made and
// revoked; pictures in both palettes; signing out ends the session.
//   --url=BASE --token=TOKEN
import { openBrowser, options, report, shoot } from '../web/browser.mjs';

const { url, token } = options();
const browser = await openBrowser();
const context = await browser.newContext({ colorScheme: 'dark', viewport: { width: 900, height: 860 } });
const page = await context.newPage();
const out = { errors: [] };
page.on('pageerror', (e) => out.errors.push(String(e)));
// Refused calls (401 while signed out) are logged by the browser too; those are expected.
page.on('console', (m) => {
  if (m.type() === 'error' && !m.text().startsWith('Failed to load resource')) out.errors.push(m.text());
});

const ready = (state) => page.waitForSelector(`body[data-ready="${state}"]`, { timeout: 15000 });
const text = (selector) => page.locator(selector).innerText();

await page.goto(`${url}/settings.html`);
await ready('signin');
out.emailButtonEnabled = await page.locator('#email-submit').isEnabled();
await page.fill('#email', 'pilot@example.org');
out.emailButtonEnabledWithAddress = await page.locator('#email-submit').isEnabled();
await shoot(page, 'account-page-signin-cockpit');
await page.emulateMedia({ colorScheme: 'light' });
await shoot(page, 'account-page-signin-field');
await page.emulateMedia({ colorScheme: 'dark' });

await page.click('#mode-token');
await page.fill('#token', `${token}x`);
await page.click('#token-submit');
await page.waitForSelector('#signin-error:not([hidden])');
out.wrongToken = await text('#signin-error');

await page.fill('#token', token);
await page.click('#token-submit');
await ready('account');
out.signedInAs = await text('#signed-in-as');
out.library = await text('#flights');
out.storage = await text('#storage');
out.server = await text('#server');
out.tokensBefore = await page.locator('#tokens li .name').allInnerTexts();

await page.fill('#token-name', 'Laptop');
await page.click('#create');
await page.waitForSelector('#new-token:not([hidden])');
await page.waitForFunction(() => document.querySelectorAll('#tokens li').length === 2);
out.newToken = await text('#new-token-text');
out.tokensAfterCreate = await page.locator('#tokens li .name').allInnerTexts();
await shoot(page, 'account-page-cockpit');
await page.emulateMedia({ colorScheme: 'light' });
await shoot(page, 'account-page-field');
await page.emulateMedia({ colorScheme: 'dark' });

const laptop = page.locator('#tokens li', { hasText: 'Laptop' });
await laptop.locator('button', { hasText: 'Revoke' }).click();
await laptop.locator('button', { hasText: 'Revoke for Good' }).click();
await page.waitForFunction(() => document.querySelectorAll('#tokens li').length === 1);
out.tokensAfterRevoke = await page.locator('#tokens li .name').allInnerTexts();

await page.click('#signout');
await ready('signin');
out.meAfterSignOut = await page.evaluate(async () => (await fetch('api/me')).status);

await browser.close();
report(out);
