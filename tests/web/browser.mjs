// What a page script needs to drive Debian's Chromium: a browser started the way this machine
// allows (no sandbox as root, no background traffic, software GL), pictures into the build's
// screenshots folder, and one JSON line of results for the C++ test that started the script.
import { createRequire } from 'node:module';
import { mkdirSync } from 'node:fs';
import path from 'node:path';

const source = process.env.AEROLOOM_SOURCE_DIR ?? process.cwd();
const build = process.env.AEROLOOM_BUILD_DIR ?? process.cwd();
const require = createRequire(path.join(source, 'third_party/web/node_modules/'));
const { chromium } = require('playwright-core');

/** A headless Chromium; `close()` it when done. */
export async function openBrowser() {
    return chromium.launch({
        executablePath: process.env.AEROLOOM_CHROMIUM ?? '/usr/bin/chromium',
        args: ['--no-sandbox', '--disable-background-networking', '--disable-component-update',
               '--disable-sync', '--no-first-run', '--disable-quic', '--autoplay-policy=no-user-gesture-required',
               '--use-angle=swiftshader', '--enable-unsafe-swiftshader', '--ignore-gpu-blocklist'],
    });
}

/** Saves a picture of the page as <build>/screenshots/<name>.png. */
export async function shoot(page, name) {
    const dir = path.join(build, 'screenshots');
    mkdirSync(dir, { recursive: true });
    await page.screenshot({ path: path.join(dir, `${name}.png`) });
}

/** Hands the results to the test: one line, read back by `runPageScript`. */
export function report(results) {
    process.stdout.write(`RESULT ${JSON.stringify(results)}\n`);
}

/** The arguments after the script, as --key=value pairs. */
export function options() {
    const out = {};
    for (const arg of process.argv.slice(2)) {
        const m = /^--([^=]+)=(.*)$/s.exec(arg);
        if (m) out[m[1]] = m[2];
    }
    return out;
}
