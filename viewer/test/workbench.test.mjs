// The page, used as a person would, and compared with the native tools over the same meshes.
import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { address, bench, camera, clickAt, download, drop, open, results, run, sample, text, toScreen, until, useBrowser } from "./bench.mjs";

useBrowser();

/** What the native tool answers to the page's own script. */
function replay(mesh, script) {
    const file = join(bench.folder, "script.txt");
    writeFileSync(file, script);
    const output = run("zunopath", "run", mesh, file, "--json");
    return output.trim().split("\n").map((line) => JSON.parse(line));
}

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
    await bench.page.locator("#budget").fill("0"); // one expansion a frame
    await clickAt([10, 0, 12]);
    await clickAt([30, 0, 25]);
    await bench.page.keyboard.press(" "); // pause
    const begun = Number(await text("expansions"));
    await bench.page.click("#step");
    await bench.page.click("#step");
    assert.equal(Number(await text("expansions")), begun + 2);
    assert.equal(await text("state"), "running");
    const open_ = await bench.page.evaluate(() => document.getElementById("legend").textContent);
    assert.match(open_, /open.*closed/);
    await bench.page.click("#play");
    await until((n) => Number(document.getElementById("expansions").textContent) > n + 5, begun);
    await bench.page.evaluate(() => document.getElementById("finish").click()); // or it has just finished
    assert.equal(await text("state"), "found");
    assert.equal(await compareWithNative(sample("courtyard")), 1);
    const [{ cost }] = (await results()).searches;
    await bench.page.click("#restart");
    assert.equal(await text("expansions"), "0");
    await bench.page.keyboard.press("Enter");
    assert.equal((await results()).searches[0].cost, cost);
});

test("several searches share a frame's budget", async () => {
    await open("mesh=harbour");
    await bench.page.locator("#budget").fill("20"); // a hundred
    await bench.page.click("#twenty");
    await until(() => window.workbench.results().searches.every((search) => search.state !== "running"));
    assert.equal(await bench.page.locator("#searches .entry").count(), 20);
    assert.equal(await compareWithNative(sample("harbour")), 20);
    await bench.page.locator("#searches .entry button").first().click();
    assert.equal(await bench.page.locator("#searches .entry").count(), 19);
    await bench.page.click("#clear");
    assert.equal(await bench.page.locator("#searches .entry").count(), 0);
});

test("a goal that is dragged, with the path behind it, onto another floor", async () => {
    await open("mesh=bridge&path=10,0,20;30,0,8");
    const before_ = (await results()).searches[0].cost;
    const { x, y } = await toScreen([30, 0, 8]);
    const goal = await toScreen([30, 4, 20]);
    await bench.page.mouse.move(x, y - 8);
    await bench.page.mouse.down();
    await bench.page.mouse.move((x + goal.x) / 2, (y + goal.y) / 2, { steps: 5 });
    await bench.page.waitForTimeout(100);
    const onTheWay = (await results()).searches[0].cost;
    await bench.page.mouse.move(goal.x, goal.y, { steps: 5 });
    await bench.page.mouse.up();
    const { cost, waypoints } = (await results()).searches[0];
    assert.ok(onTheWay !== before_ && cost !== onTheWay);
    assert.ok(waypoints.some((point) => point[1] > 3), "it ends on the bridge");
    await compareWithNative(sample("bridge"));
});

test("rays, by clicks and through walls", async () => {
    await open("mesh=courtyard");
    await bench.page.click('[data-tool="ray"]');
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
    await bench.page.mouse.move(x, y);
    await until(() => document.getElementById("node").textContent !== "");
    assert.match(await text("node"), /^node \d+ · class \d+ · paving$/);
    assert.match(await text("pointer"), /^(9\.9|10|10\.)\d*, /);
    const [answer] = replay(sample("courtyard"), "height 10,15\n");
    assert.equal(await text("ground"), `ground ${answer.height}`);
    const look = async () => (await bench.page.screenshot()).toString("base64");
    const pictures = new Set([await look()]);
    for (const key of ["l", "g", "t", "d"]) {
        await bench.page.keyboard.press(key);
        await bench.page.waitForTimeout(300);
        pictures.add(await look());
    }
    assert.equal(pictures.size, 5, "each key changes the picture");
    assert.ok((await download("#picture")).length > 10000);
});

test("the address shows a colleague the same", async () => {
    await open("mesh=spiral");
    await bench.page.keyboard.press("t");
    await clickAt([14, 0, -10]);
    await clickAt([-13, 0, 12]);
    await bench.page.keyboard.press("Enter");
    await bench.page.keyboard.press("g");
    await until(() => /path=.*grid/.test(location.hash) && /view=top/.test(location.hash));
    const first = { ...(await results()), camera: await camera() };
    const url = bench.page.url();
    await bench.page.goto("about:blank");
    await bench.page.goto(url);
    await until(() => window.workbench?.results().searches.length === 1);
    const second = { ...(await results()), camera: await camera() };
    assert.deepEqual(second.searches, first.searches);
    first.camera.flat().forEach((value, i) => assert.ok(Math.abs(value - second.camera.flat()[i]) < 0.01));
    assert.equal(await bench.page.getAttribute("#grid", "aria-pressed"), "true");
});

test("files: both forms, defects to jump to, and broken ones that leave the page alive", async () => {
    await open("mesh=bridge");
    const xml = join(bench.folder, "bridge.xml");
    run("zunopath", "convert", sample("bridge"), xml);
    const whole = readFileSync(xml, "utf8");
    await drop(xml);
    await until(() => document.getElementById("title").textContent === "bridge.xml");
    assert.equal(await text("defectCount"), "2", "the plateau and the ground inside it can't be reached");

    // a border that leads one way only
    const odd = join(bench.folder, "odd.xml");
    writeFileSync(odd, whole.replace(/<node_id>(\d+)<\/node_id>/, "<node_id>-1</node_id>"));
    await bench.page.setInputFiles("#file", odd);
    await until(() => document.getElementById("title").textContent === "odd.xml");
    const expected = run("zunopath", "check", odd).split("\n").filter((line) => line.includes(": odd: ")).map((line) => line.replace(/^.*: odd: /, ""));
    assert.equal(Number(await text("defectCount")), expected.length);
    await bench.page.click('[data-tab="defects"]');
    const entry = bench.page.locator("#defects button").first();
    assert.equal(await entry.textContent(), expected[0]);
    const target = async () => (await camera())[1];
    const middle = await target();
    await entry.click();
    assert.notDeepEqual(await target(), middle);

    // one that no world can run with, which is drawn all the same
    const unfit = join(bench.folder, "unfit.xml");
    writeFileSync(unfit, whole.replace(/<cubesize>.*<\/cubesize>/, "<cubesize>0</cubesize>")
        .replace("<normal>0/1/0<", "<normal>0/0/0<")
        .replaceAll("<vert_id>0<", "<vert_id>99999<")
        .replace("<node_id>1<", "<node_id>77777<"));
    await bench.page.setInputFiles("#file", unfit);
    await bench.page.waitForSelector("#error:not([hidden])");
    assert.match(await text("errorText"), /unfit\.xml: .*cubesize is 0/);
    assert.ok(await bench.page.isDisabled("#twenty"));
    const there = await target();
    await bench.page.click("#defects button:has-text('node 0: corner 0 refers to vertex 99999 of')");
    assert.notDeepEqual(await target(), there);
    await clickAt([10, 0, 10]);
    await clickAt([20, 0, 35]);
    assert.deepEqual((await results()).searches, []);
    await bench.page.setInputFiles("#file", xml);
    await until(() => document.getElementById("error").hidden);
    for (const [name, content, message] of [
        ["cut.xml", whole.slice(0, 4000), /End of buffer reached. \(Line: \d+, Row: \d+\)/],
        ["text.xml", "no mesh at all", /neither XML nor the binary form/],
        ["empty.xml", "", /is empty/],
        ["cut.bin", readFileSync(sample("bridge")).subarray(0, 3000), /lie outside the stream/],
    ]) {
        const file = join(bench.folder, name);
        writeFileSync(file, content);
        await bench.page.setInputFiles("#file", file);
        await until((n) => document.getElementById("errorText").textContent.startsWith(n), name);
        assert.match(await text("errorText"), message);
    }
    assert.equal(await text("title"), "bridge.xml");
    await clickAt([10, 0, 10]);
    await clickAt([20, 0, 35]);
    await bench.page.keyboard.press("Enter");
    await compareWithNative(xml);
});

test("the scene under its mesh, whose roofs are seen through where the pointer is", async () => {
    await open("mesh=bridge");
    const look = async () => {
        await bench.page.waitForTimeout(300);
        return (await bench.page.locator("#scene").screenshot()).toString("base64");
    };
    const pointAt = async (point) => {
        const { x, y } = await toScreen(point);
        await bench.page.mouse.move(x, y, { steps: 2 });
        return look();
    };
    const bare = await pointAt([30, 4, 20]);
    const scene = sample("bridge").replace(/bin$/, "obj");
    await bench.page.setInputFiles("#file", [sample("bridge"), scene]);
    await until(() => !document.getElementById("scenery").disabled);
    const triangles = await bench.page.evaluate(() => window.workbench.view.shownScene.group.children[0].geometry.attributes.position.count / 3);
    const faces = readFileSync(scene, "utf8").split("\n").filter((line) => line.startsWith("f "));
    assert.equal(triangles, faces.reduce((sum, face) => sum + face.trim().split(/\s+/).length - 3, 0));
    const above = await pointAt([31, 4, 20]);
    const below = await pointAt([10, 0, 12]);
    assert.ok(above !== bare && below !== above, "the bridge is solid from above alone");
    await bench.page.keyboard.press("o");
    assert.equal(await look(), bare);
    await bench.page.setInputFiles("#file", sample("courtyard"));
    await until(() => document.getElementById("scenery").disabled);
});

test("a mesh with z up, and an address that tells of a file", async () => {
    const file = join(bench.folder, "upright.xml");
    const swap = (_, x, y, z) => `>${x}/${-z}/${y}<`; // turned about x
    run("zunopath", "convert", sample("bridge"), file);
    const turned = readFileSync(file, "utf8")
        .replace(/>([-\d.e]+)\/([-\d.e]+)\/([-\d.e]+)</g, swap);
    writeFileSync(file, turned);
    await bench.page.goto(`${address}#file=upright.xml&path=10,-20,0;30,-20,4`);
    await until(() => /upright\.xml: drop/.test(document.getElementById("hint").textContent));
    await bench.page.setInputFiles("#file", file);
    await until(() => window.workbench.results().searches[0]?.state === "found");
    await compareWithNative(file);
    await bench.page.click("#clear");
    await clickAt([10, -10, 0]);
    await clickAt([20, -35, 0]);
    await bench.page.keyboard.press("Enter");
    assert.equal((await results()).searches[0].state, "found");
    await compareWithNative(file);
});

test("a large mesh (figures, not limits)", async (context) => {
    await open("mesh=maze");
    const first = Number(await bench.page.evaluate(() => document.getElementById("stage").dataset.firstPicture));
    const size = 110 * 2.5;
    await bench.page.mouse.move(400, 400);
    await bench.page.mouse.down();
    const begin = Date.now();
    for (let i = 0; Date.now() - begin < 3000; ++i) await bench.page.mouse.move(400 + 150 * Math.sin(i / 15), 400);
    const rate = await text("rate");
    await bench.page.mouse.up();
    context.diagnostic(`8,435 nodes: first picture after ${first.toFixed(0)} ms, ${rate} while orbiting (drawn by the processor)`);
    await bench.page.evaluate((s) => (location.hash = `mesh=maze&path=1.25,0,1.25;${s},0,${s}`), size - 1.25);
    await until(() => window.workbench.results().searches[0]?.state === "found");
    await compareWithNative(sample("maze"));
});
