// Paths as characters walk them: straight, explained, walked, by a crowd, and from a recording.
import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { bench, clickAt, drop, open, results, run, sample, text, until, useBrowser } from "./bench.mjs";

useBrowser();

const numberIn = async (id) => Number((await text(id)).match(/-?[\d.]+/)[0]);

test("a click beside the mesh, the straight path of the native tool, and a character that walks it", async () => {
    await open("mesh=courtyard");
    await clickAt([10, 0, 33]);
    await clickAt([32, 0, 41.5]); // beyond the southern wall
    assert.match(await text("note"), /^[\d.]+ beside the mesh: the nearest place is taken$/);
    await bench.page.keyboard.press("Enter");
    for (const [form, word] of [["improved", "--straight"], ["plain", "--straight=plain"]]) {
        await bench.page.selectOption("#form", form);
        const ends = await Promise.all(["fromPoint", "toPoint"].map(async (id) => (await bench.page.inputValue(`#${id}`)).replaceAll(" ", "")));
        const [native] = JSON.parse(`[${run("zunopath", "path", sample("courtyard"), "--from", ends[0], "--to", ends[1], "--json", word)}]`);
        assert.equal(await numberIn("straightLength"), Number(native.straightLength.toFixed(3)));
        assert.ok(native.straightLength < (await numberIn("centresLength")));
    }
    await bench.page.locator("#speed").fill("15");
    await bench.page.click("#walk");
    await until(() => document.getElementById("walked").dataset.there === "true");
    assert.ok(Math.abs((await numberIn("walked")) - (await numberIn("straightLength"))) < 0.5);
    await bench.page.locator("#snap").uncheck();
    await clickAt([14, 0, 30]);
    await clickAt([32, 0, 41.5]);
    assert.equal((await results()).searches[0].state, "off mesh");
});

test("why not, in the native tool's words, and the nearest places instead", async () => {
    await open("mesh=harbour&path=2,0,2;10,50,10");
    assert.equal(await text("state"), "off mesh");
    assert.equal((await text("whyText")).trim(), run("zunopath", "explain", sample("harbour"), "--from", "2,0,2", "--to", "10,50,10").trim());
    await bench.page.click("#useNearest");
    assert.equal(await text("state"), "found");
    await bench.page.fill("#toPoint", "70 0 76");
    await bench.page.keyboard.press("Enter");
    const island = await bench.page.evaluate(() => {
        const { mesh } = window.workbench.open;
        const node = mesh.islands.indexOf(1);
        return [...mesh.centres.slice(node * 3, node * 3 + 3)].join(", ");
    });
    await bench.page.fill("#toPoint", island);
    await bench.page.keyboard.press("Enter");
    assert.equal(await text("state"), "no path");
    assert.match(await text("whyText"), /No neighbours connect the two islands\. They come nearest at/);
});

test("a crowd walks within its budget, waits when that is small, and stops", async () => {
    await open("mesh=harbour");
    await bench.page.click('[data-tab="crowd"]');
    await bench.page.click("#crowdWalk");
    const figures = () => bench.page.evaluate(() => window.workbench.running.crowd.figures);
    await until(() => /Queue0, at most 200/.test(document.getElementById("crowdFigures").textContent));
    const { found, distance } = await figures();
    assert.ok(found > 150 && distance > 100, `${found} found, ${distance} walked`);
    await bench.page.click("#crowdWalk"); // pause
    const { frames } = await figures();
    await bench.page.locator("#crowdCount").fill("300");
    await bench.page.locator("#crowdBudget").fill("0"); // one expansion a frame
    assert.equal((await figures()).frames, frames);
    await bench.page.click("#crowdEnd");
    await bench.page.click("#crowdWalk");
    await until(() => window.workbench.running.crowd.figures.frames > 10);
    assert.ok((await figures()).open > 290);
    await bench.page.click("#crowdEnd");
    assert.equal(await text("crowdFigures"), "");
});

/** The demo's recording, and the same with a bit of an answer turned, as the native tool finds it. */
function makeRecordings() {
    const [whole, faulty] = ["whole.rec", "faulty.rec"].map((name) => join(bench.folder, name));
    run("zunodemo", sample("harbour"), "--seconds", "100", "--characters", "600", "--record", whole);
    const native = (file) => run("zunopath", "replay", file, "--mesh", sample("harbour"));
    const bytes = readFileSync(whole);
    for (let at = Math.floor(bytes.length / 2); ; ++at) {
        const changed = Buffer.from(bytes);
        changed[at] ^= 1;
        writeFileSync(faulty, changed);
        let report = "";
        try {
            report = native(faulty);
        } catch {
            continue; // no recording any more
        }
        const difference = /call \d+: getNextWaypoint\(\d[^]*/.exec(report);
        if (difference) return { whole, faulty, calls: /[\d,]+ calls/.exec(native(whole))[0], difference: difference[0].trim() };
    }
}

test("a native recording gives the same bits here; one with a planted difference is named", async (context) => {
    const { whole, faulty, calls, difference } = makeRecordings();
    context.diagnostic(`${calls} replayed`);
    await open("mesh=bridge"); // the recording names another sample
    await drop(whole);
    await until(() => document.getElementById("recordingResult").textContent !== "");
    assert.equal(await text("title"), "harbour");
    assert.equal(await text("recordingResult"), "Every answer as recorded");
    assert.match((await text("recordingFigures")).replaceAll(",", ""), new RegExp(`Run again${calls.replaceAll(",", "")}`));
    for (let i = 0; i < 3; ++i) await bench.page.click("#callStep");
    assert.match(await text("callNumber"), /^3 of /);
    assert.match(await text("calls"), /1 {2}initWorldRepresentation\("/);
    await bench.page.click("#callPlay");
    await until(() => window.workbench.recording.shown.answered.length > 0);

    await drop(faulty);
    await until(() => document.getElementById("recordingResult").className === "bad");
    assert.equal((await text("difference")).trim(), difference);
    const number = /\d+/.exec(difference)[0];
    assert.equal(await text("recordingResult"), `Call ${number} answers otherwise`);
    assert.match(await bench.page.textContent("#calls button.bad"), new RegExp(`^${number} `));
});
