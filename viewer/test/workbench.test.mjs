// The page, used as a person would, and compared with the native tools over the same meshes.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, before, beforeEach, test } from "node:test";
import { pathToFileURL } from "node:url";
import { launch } from "../browser.mjs";

const pageFolder = process.env.ZUNO_PAGE;
const sampleFolder = process.env.ZUNO_SAMPLES;
const zunopath = process.env.ZUNO_PATH;
const address = pathToFileURL(join(pageFolder, "index.html")).href; // no server is needed

let browser;
let page;
let folder;
let pageErrors;

before(async () => {
    browser = await launch();
    folder = mkdtempSync(join(tmpdir(), "zunoviewer"));
});
after(async () => {
    await browser.close();
    rmSync(folder, { recursive: true });
});
beforeEach(async () => {
    await page?.close();
    page = await browser.newPage({ viewport: { width: 1280, height: 720 } });
    pageErrors = [];
    page.on("pageerror", (error) => pageErrors.push(error.message));
});

async function open(hash) {
    await page.goto(`${address}#${hash}`);
    await page.waitForFunction(() => document.getElementById("stage").dataset.firstPicture);
}

const text = (id) => page.textContent(`#${id}`);
const results = () => page.evaluate(() => window.workbench.results());
const toScreen = (point) => page.evaluate((p) => window.workbench.view.toScreen(p), point);

async function clickAt(point) {
    const { x, y } = await toScreen(point);
    await page.mouse.click(x, y);
}

async function download(button) {
    const [file] = await Promise.all([page.waitForEvent("download"), page.click(button)]);
    return readFileSync(await file.path());
}

/** What the native tool answers to the page's own script. */
function replay(mesh, script) {
    const file = join(folder, "script.txt");
    writeFileSync(file, script);
    let output;
    try {
        output = execFileSync(zunopath, ["run", mesh, file, "--json"], { encoding: "utf8", maxBuffer: 1e8 });
    } catch (error) {
        assert.equal(error.status, 1, error.message); // something has no path
        output = error.stdout;
    }
    return output.trim().split("\n").map((line) => JSON.parse(line));
}

const sample = (name) => join(sampleFolder, `${name}.bin`);

/** The page's answers are those of the native tool, bit for bit. */
async function compareWithNative(mesh) {
    const script = await download("#script");
    const { searches, hit } = await results();
    const answers = replay(mesh, script);
    assert.equal(answers.length, searches.length + (hit === null ? 0 : 1));
    searches.forEach(({ state, cost, waypoints }, i) => {
        assert.equal(state, answers[i].result);
        if (state !== "found") return;
        assert.equal(cost, Math.fround(answers[i].cost));
        assert.deepEqual(waypoints, answers[i].waypoints.map((point) => point.map(Math.fround)));
    });
    if (hit !== null) assert.equal(hit, answers.at(-1).hit ? Math.fround(answers.at(-1).distance) : -1);
    return answers.length;
}

test("a path by two clicks, stepped, played and finished", async () => {
    await open("mesh=courtyard");
    await page.locator("#budget").fill("0"); // one expansion a frame
    await clickAt([10, 0, 12]);
    await clickAt([30, 0, 25]);
    await page.keyboard.press(" "); // pause
    const begun = Number(await text("expansions"));
    await page.click("#step");
    await page.click("#step");
    assert.equal(Number(await text("expansions")), begun + 2);
    assert.equal(await text("state"), "running");
    const open_ = await page.evaluate(() => document.getElementById("legend").textContent);
    assert.match(open_, /open.*closed/);
    await page.click("#play");
    await page.waitForFunction((n) => Number(document.getElementById("expansions").textContent) > n + 5, begun);
    await page.click("#finish");
    assert.equal(await text("state"), "found");
    assert.equal(await compareWithNative(sample("courtyard")), 1);
    const [{ cost }] = (await results()).searches;
    await page.click("#restart");
    assert.equal(await text("expansions"), "0");
    await page.keyboard.press("Enter");
    assert.equal((await results()).searches[0].cost, cost);
    assert.deepEqual(pageErrors, []);
});

test("several searches share a frame's budget", async () => {
    await open("mesh=harbour");
    await page.locator("#budget").fill("20"); // a hundred
    await page.click("#crowd");
    await page.waitForFunction(() => window.workbench.results().searches.every((search) => search.state !== "running"));
    assert.equal(await page.locator("#searches .entry").count(), 20);
    assert.equal(await compareWithNative(sample("harbour")), 20);
    await page.locator("#searches .entry button").first().click();
    assert.equal(await page.locator("#searches .entry").count(), 19);
    await page.click("#clear");
    assert.equal(await page.locator("#searches .entry").count(), 0);
});

test("a goal that is dragged, with the path behind it, onto another floor", async () => {
    await open("mesh=bridge&path=10,0,20;30,0,8");
    const before_ = (await results()).searches[0].cost;
    const { x, y } = await toScreen([30, 0, 8]);
    const goal = await toScreen([30, 4, 20]);
    await page.mouse.move(x, y - 8);
    await page.mouse.down();
    await page.mouse.move((x + goal.x) / 2, (y + goal.y) / 2, { steps: 5 });
    await page.waitForTimeout(100);
    const onTheWay = (await results()).searches[0].cost;
    await page.mouse.move(goal.x, goal.y, { steps: 5 });
    await page.mouse.up();
    const { cost, waypoints } = (await results()).searches[0];
    assert.ok(onTheWay !== before_ && cost !== onTheWay);
    assert.ok(waypoints.some((point) => point[1] > 3), "it ends on the bridge");
    await compareWithNative(sample("bridge"));
});

test("rays, by clicks and through walls", async () => {
    await open("mesh=courtyard");
    await page.click('[data-tool="ray"]');
    for (const [from, to] of [
        [[10, 0, 12], [30, 0, 26]],
        [[10, 0, 20], [30, 0, 12]],
        [[20, 0, 38], [20, 0, 10]],
    ]) {
        await clickAt(from);
        await clickAt(to);
        assert.match(await text("hit"), /^(at [\d.]+|no hit)$/);
        assert.equal(await compareWithNative(sample("courtyard")), 1);
    }
});

test("what is under the pointer, the grid, labels, themes and views", async () => {
    await open("mesh=courtyard");
    const { x, y } = await toScreen([10, 0, 15]);
    await page.mouse.move(x, y);
    await page.waitForFunction(() => document.getElementById("node").textContent !== "");
    assert.match(await text("node"), /^node \d+ · class \d+ · paving$/);
    assert.match(await text("pointer"), /^(9\.9|10|10\.)\d*, /);
    const [answer] = replay(sample("courtyard"), "height 10,15\n");
    assert.equal(await text("ground"), `ground ${answer.height}`);
    const look = async () => (await page.screenshot()).toString("base64");
    const pictures = new Set([await look()]);
    for (const key of ["l", "g", "t", "d"]) {
        await page.keyboard.press(key);
        await page.waitForTimeout(300);
        pictures.add(await look());
    }
    assert.equal(pictures.size, 5, "each key changes the picture");
    assert.ok((await download("#picture")).length > 10000);
});

test("the address shows a colleague the same", async () => {
    await open("mesh=spiral");
    await page.keyboard.press("t");
    await clickAt([14, 0, -10]);
    await clickAt([-13, 0, 12]);
    await page.keyboard.press("Enter");
    await page.keyboard.press("g");
    await page.waitForFunction(() => /path=.*grid/.test(location.hash) && /view=top/.test(location.hash));
    const first = { ...(await results()), camera: await page.evaluate(() => window.workbench.view.cameraState) };
    const url = page.url();
    await page.goto("about:blank");
    await page.goto(url);
    await page.waitForFunction(() => window.workbench?.results().searches.length === 1);
    const second = { ...(await results()), camera: await page.evaluate(() => window.workbench.view.cameraState) };
    assert.deepEqual(second.searches, first.searches);
    first.camera.flat().forEach((value, i) => assert.ok(Math.abs(value - second.camera.flat()[i]) < 0.01));
    assert.equal(await page.getAttribute("#grid", "aria-pressed"), "true");
});

test("files: both forms, defects to jump to, and broken ones that leave the page alive", async () => {
    await open("mesh=bridge");
    const xml = join(folder, "bridge.xml");
    execFileSync(zunopath, ["convert", sample("bridge"), xml]);
    const whole = readFileSync(xml, "utf8");
    const dropped = await page.evaluateHandle((content) => {
        const transfer = new DataTransfer();
        transfer.items.add(new File([content], "bridge.xml"));
        return transfer;
    }, whole);
    await page.dispatchEvent("#scene", "drop", { dataTransfer: dropped });
    await page.waitForFunction(() => document.getElementById("title").textContent === "bridge.xml");
    assert.equal(await text("defectCount"), "");

    // a border that leads one way only
    const odd = join(folder, "odd.xml");
    writeFileSync(odd, whole.replace(/<node_id>(\d+)<\/node_id>/, "<node_id>-1</node_id>"));
    await page.setInputFiles("#file", odd);
    await page.waitForFunction(() => document.getElementById("title").textContent === "odd.xml");
    const expected = execFileCheck(odd);
    assert.equal(Number(await text("defectCount")), expected.length);
    await page.click('[data-tab="defects"]');
    const entry = page.locator("#defects button").first();
    assert.equal(await entry.textContent(), expected[0]);
    const target = () => page.evaluate(() => window.workbench.view.cameraState[1]);
    const middle = await target();
    await entry.click();
    assert.notDeepEqual(await target(), middle);

    // one that no world can run with, which is drawn all the same
    const unfit = join(folder, "unfit.xml");
    writeFileSync(unfit, whole.replace(/<cubesize>.*<\/cubesize>/, "<cubesize>0</cubesize>")
        .replace("<normal>0/1/0<", "<normal>0/0/0<")
        .replaceAll("<vert_id>0<", "<vert_id>99999<")
        .replace("<node_id>1<", "<node_id>77777<"));
    await page.setInputFiles("#file", unfit);
    await page.waitForSelector("#error:not([hidden])");
    assert.match(await text("errorText"), /unfit\.xml: .*cubesize is 0/);
    assert.ok(await page.isDisabled("#crowd"));
    const there = await target();
    await page.click("#defects button:has-text('node 0: corner 0 refers to vertex 99999 of')");
    assert.notDeepEqual(await target(), there);
    await clickAt([10, 0, 10]);
    await clickAt([20, 0, 35]);
    assert.deepEqual((await results()).searches, []);
    await page.setInputFiles("#file", xml);
    await page.waitForFunction(() => document.getElementById("error").hidden);
    for (const [name, content] of [
        ["cut.xml", whole.slice(0, 4000)],
        ["text.xml", "no mesh at all"],
        ["empty.xml", ""],
        ["cut.bin", readFileSync(sample("bridge")).subarray(0, 3000)],
    ]) {
        const file = join(folder, name);
        writeFileSync(file, content);
        await page.setInputFiles("#file", file);
        await page.waitForFunction((n) => document.getElementById("errorText").textContent.startsWith(n), name);
        assert.ok((await text("errorText")).length > name.length + 10);
    }
    assert.equal(await text("title"), "bridge.xml");
    await clickAt([10, 0, 10]);
    await clickAt([20, 0, 35]);
    await page.keyboard.press("Enter");
    await compareWithNative(xml);
    assert.deepEqual(pageErrors, []);
});

test("a mesh with z up, and an address that tells of a file", async () => {
    const file = join(folder, "upright.xml");
    const swap = (_, x, y, z) => `>${x}/${-z}/${y}<`; // turned about x
    execFileSync(zunopath, ["convert", sample("bridge"), file]);
    const turned = readFileSync(file, "utf8")
        .replace(/>([-\d.e]+)\/([-\d.e]+)\/([-\d.e]+)</g, swap);
    writeFileSync(file, turned);
    await page.goto(`${address}#file=upright.xml&path=10,-20,0;30,-20,4`);
    await page.waitForFunction(() => /upright\.xml: drop/.test(document.getElementById("hint").textContent));
    await page.setInputFiles("#file", file);
    await page.waitForFunction(() => window.workbench.results().searches[0]?.state === "found");
    await compareWithNative(file);
    await page.click("#clear");
    await clickAt([10, -10, 0]);
    await clickAt([20, -35, 0]);
    await page.keyboard.press("Enter");
    assert.equal((await results()).searches[0].state, "found");
    await compareWithNative(file);
});

function execFileCheck(mesh) {
    try {
        execFileSync(zunopath, ["check", mesh], { encoding: "utf8" });
    } catch (error) {
        return error.stdout.split("\n").filter((line) => line.includes(": odd: ")).map((line) => line.replace(/^.*: odd: /, ""));
    }
    return [];
}

test("a large mesh (figures, not limits)", async (context) => {
    await open("mesh=maze");
    const first = Number(await page.evaluate(() => document.getElementById("stage").dataset.firstPicture));
    const size = 110 * 2.5;
    await page.mouse.move(400, 400);
    await page.mouse.down();
    const begin = Date.now();
    for (let i = 0; Date.now() - begin < 3000; ++i) await page.mouse.move(400 + 150 * Math.sin(i / 15), 400);
    const rate = await text("rate");
    await page.mouse.up();
    context.diagnostic(`21,757 nodes: first picture after ${first.toFixed(0)} ms, ${rate} while orbiting (drawn by the processor)`);
    await page.evaluate((s) => (location.hash = `mesh=maze&path=1.25,0,1.25;${s},0,${s}`), size - 1.25);
    await page.waitForFunction(() => window.workbench.results().searches[0]?.state === "found");
    await compareWithNative(sample("maze"));
});
