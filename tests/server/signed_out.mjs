// A browser without the library's session: every route of the library's data refuses it.
import { openBrowser, options, report } from '../web/browser.mjs';

const { url, paths } = options();
const browser = await openBrowser();
const page = await browser.newPage();
const statuses = {};
for (const path of paths.split(',')) {
    const response = await page.goto(url + path);
    statuses[path] = response.status();
}
await browser.close();
report({ statuses });
