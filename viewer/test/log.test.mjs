// The trace viewer's log in a browser, with a host that sends.
import assert from "node:assert/strict";
import { execFileSync, spawn } from "node:child_process";
import { mkdtempSync, rmSync } from "node:fs";
import { request } from "node:http";
import { networkInterfaces, tmpdir } from "node:os";
import { join } from "node:path";
import { after, before, test } from "node:test";
import { launch } from "../browser.mjs";

const folder = mkdtempSync(join(tmpdir(), "zunotrace"));
const environment = { ...process.env, XDG_RUNTIME_DIR: folder }; // a channel of its own
let browser;
let viewer;
let address;

function startViewer(port) {
    viewer = spawn(process.env.ZUNO_TRACE, ["--web", "--port", port], { env: environment });
    return new Promise((resolve) =>
        viewer.stdout.once("data", (text) => resolve(/http:\S+/.exec(String(text))[0])),
    );
}

const send = (...lines) => execFileSync(process.env.ZUNO_TRACESENDER, { env: environment, input: lines.join("\n") + "\n" });

/** The status of an answer. */
function statusOf(options) {
    return new Promise((resolve, reject) => {
        const asked = request(options, (answer) => {
            answer.destroy();
            resolve(answer.statusCode);
        });
        asked.on("error", reject);
        asked.end();
    });
}

before(async () => {
    browser = await launch();
    address = await startViewer("0");
});
after(async () => {
    viewer.kill();
    await browser.close();
    rmSync(folder, { recursive: true });
});

test("levels, filter, pause, and a viewer that comes again", async () => {
    send("before anybody looked");
    // the page forbids what the test's own waiting needs
    const page = await browser.newPage({ viewport: { width: 1280, height: 720 }, bypassCSP: true });
    await page.goto(address);
    const lines = () => page.locator("#log div").allTextContents().then((all) => all.map((line) => line.replace(/^[\d:.]+/, "")));
    const has = (count) => page.waitForFunction((n) => document.querySelectorAll("#log div").length === n, count);
    await has(1);
    send("error <b>no markup</b>", "value speed -3", "loading harbour.xml");
    await has(4);
    assert.deepEqual(await lines(), [
        "messagebefore anybody looked",
        "error<b>no markup</b>",
        "value1 speed = -3",
        "messageloading harbour.xml",
    ]);
    await page.uncheck('[data-kind="message"]');
    assert.deepEqual(await lines(), ["error<b>no markup</b>", "value1 speed = -3"]);
    await page.fill("#filter", "SPEED");
    assert.deepEqual(await lines(), ["value1 speed = -3"]);
    await page.fill("#filter", "");
    await page.check('[data-kind="message"]');
    await page.click("#pause");
    send("while paused");
    await page.waitForFunction(() => document.getElementById("waiting").textContent === "1 waiting");
    assert.equal((await lines()).length, 4);
    await page.click("#pause");
    await has(5);
    send(...Array.from({ length: 1000 }, (_, i) => `line ${i}`)); // a burst
    await has(1005);
    assert.match((await lines()).at(-1), /line 999$/);
    viewer.kill();
    await page.waitForFunction(() => document.getElementById("link").className === "lost");
    await startViewer(new URL(address).port);
    await page.waitForFunction(() => document.getElementById("link").textContent === "live", null, { timeout: 15000 });
    await page.close();
});

test("nobody but this machine, and no page from elsewhere", async () => {
    const { port } = new URL(address);
    assert.equal(await statusOf({ host: "127.0.0.1", port }), 200);
    for (const Host of ["evil.example", `evil.example:${port}`, "127.0.0.1"])
        assert.equal(await statusOf({ host: "127.0.0.1", port, headers: { Host }, path: "/events" }), 403);
    assert.equal(await statusOf({ host: "127.0.0.1", port, path: "/../etc/passwd" }), 404);
    assert.equal(await statusOf({ host: "127.0.0.1", port, method: "POST" }), 405);
    const outside = Object.values(networkInterfaces()).flat().filter((each) => !each.internal && each.family === "IPv4");
    for (const { address: host } of outside) await assert.rejects(statusOf({ host, port, timeout: 2000 }));
});
