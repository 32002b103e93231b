import assert from "node:assert/strict";
import { cpSync, readFileSync } from "node:fs";
import { createServer } from "node:http";
import { extname, join } from "node:path";
import { after, test } from "node:test";
import { chromium } from "playwright-core";
import { build } from "vite";
import { root, runNative } from "./support.mjs";

const here = import.meta.dirname;
const site = join(root, "build/npm/site");
const kinds = { ".html": "text/html", ".js": "text/javascript", ".mjs": "text/javascript", ".wasm": "application/wasm" };
const folders = [site, join(here, "site"), here, join(root, "worlds")];

const server = createServer((request, response) => {
    const path = new URL(request.url, "http://page").pathname;
    for (const folder of folders) {
        try {
            const content = readFileSync(join(folder, path));
            return response.writeHead(200, { "Content-Type": kinds[extname(path)] ?? "application/octet-stream" }).end(content);
        } catch {
            continue;
        }
    }
    response.writeHead(404).end();
});
await new Promise((resolve) => server.listen(0, "127.0.0.1", resolve));
const address = `http://127.0.0.1:${server.address().port}`;
const browser = await chromium.launch({
    executablePath: "/usr/bin/chromium",
    args: ["--headless", "--no-sandbox", "--no-first-run", "--disable-quic", "--disable-background-networking", "--disable-component-update", "--disable-sync", "--disable-gpu"],
});
after(async () => {
    await browser.close();
    server.close();
});

async function open(path) {
    const page = await browser.newPage({ viewport: { width: 900, height: 600 } });
    const mistakes = [];
    page.on("pageerror", (error) => mistakes.push(String(error)));
    await page.goto(address + path);
    return { page, mistakes };
}

test("a page without a bundler, and a worker in it", async () => {
    const { page } = await open("/plain.html");
    const answers = await page.evaluate(async () => {
        const mesh = await (await fetch("/harbour.xml")).arrayBuffer();
        const { ask } = await import("/host.mjs");
        const external = await import("/node_modules/zunopathfinder/dist/external.js");
        const { version } = await external.load("/node_modules/zunopathfinder/dist/zuno.wasm");
        const worker = new Worker("/worker.js", { type: "module" });
        worker.postMessage(mesh);
        const steps = await new Promise((resolve, reject) => {
            worker.onmessage = ({ data }) => resolve(data);
            worker.onerror = ({ message }) => reject(new Error(message));
        });
        return { lines: await ask(mesh), version, steps };
    });
    assert.equal(answers.lines, runNative("host_cpp", join(root, "worlds/harbour.xml")));
    assert.equal(answers.version, "1.0.0");
    assert.ok(answers.steps > 5);
    await page.close();
});

test("the example of the README, built by vite: characters walk on the harbour", async () => {
    const code = readFileSync(join(here, "../README.md"), "utf8").match(/^import \* as THREE[^]*?(?=^```)/m)[0];
    const readme = {
        name: "readme",
        resolveId: (id) => (id.endsWith("readme.js") ? join(here, "site/readme.js") : null),
        load: (id) => (id.endsWith("readme.js") ? `${code}globalThis.characters = characters;` : null),
    };
    await build({ root: join(here, "site"), configFile: false, logLevel: "warn", plugins: [readme], build: { outDir: site, emptyOutDir: true, target: "es2022", chunkSizeWarningLimit: 2000 } });
    cpSync(join(root, "worlds/harbour.xml"), join(site, "harbour.xml"));
    const { page, mistakes } = await open("/index.html");
    const places = () => page.evaluate(() => globalThis.characters?.map(({ body }) => body.position.toArray()));
    await page.waitForFunction(() => globalThis.characters?.some(({ corridor }) => corridor.state().hasPath));
    const before = await places();
    await page.waitForFunction((first) => globalThis.characters.filter(({ body }, i) => body.position.distanceTo({ x: first[i][0], y: first[i][1], z: first[i][2] }) > 1).length > 20, before);
    await page.screenshot({ path: join(root, "build/npm/walking.png") });
    assert.deepEqual(mistakes, []);
    await page.close();
});
