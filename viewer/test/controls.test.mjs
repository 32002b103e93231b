// Keys, fingers, floors, and what people do by mistake.
import assert from "node:assert/strict";
import { test } from "node:test";
import { address, bench, camera, clickAt, open, results, text, toScreen, until, useBrowser } from "./bench.mjs";

useBrowser();

const press = (key) => bench.page.keyboard.press(key);
const value = (id) => bench.page.inputValue(`#${id}`);
const points = async () => `${await value("fromPoint")}; ${await value("toPoint")}`;
const back = async (condition, argument) => {
    await bench.page.goBack();
    await until(condition, argument);
};

test("keys go where the focus is", async () => {
    await open("mesh=courtyard");
    await press("?");
    await press("t"); // behind the dialog
    await press("Escape");
    assert.equal(await bench.page.isVisible("#keys"), false);
    assert.equal(await bench.page.getAttribute("#top", "aria-pressed"), "false");
    await bench.page.focus("#sample");
    await press("d");
    assert.equal(await bench.page.getAttribute("html", "data-theme"), "light");
    await bench.page.focus("#fromPoint");
    await bench.page.keyboard.type("10 0 12");
    await press("Enter");
    await bench.page.fill("#toPoint", "30, 0, 25");
    await press("Enter"); // takes the number
    await press("Enter"); // finishes the search
    assert.equal((await results()).searches[0].state, "found");
    await bench.page.fill("#toPoint", "here");
    await press("Enter");
    assert.match(await text("errorText"), /no place/);
});

test("view and ends by the keyboard alone, from above without perspective", async () => {
    await open("mesh=courtyard&path=10,0,33;30,0,25");
    await press("t");
    const [a, b, c] = await Promise.all([[5, 0, 5], [5, 3, 5], [15, 0, 5]].map(toScreen));
    assert.ok(Math.abs(a.x - b.x) < 0.01 && Math.abs(a.y - b.y) < 0.01 && c.x > a.x + 50, "heights don't show");
    const [, before] = await camera();
    for (const key of ["ArrowRight", "ArrowUp", "+"]) await press(key);
    const [, after] = await camera();
    assert.ok(after[0] > before[0] && after[2] < before[2]);
    assert.ok((await toScreen([15, 0, 5])).x - (await toScreen([5, 0, 5])).x > c.x - a.x);
    await press("b");
    const [x, , z] = (await value("toPoint")).split(", ").map(Number);
    assert.ok(Math.hypot(x - after[0], z - after[2]) < 0.05, "the goal is in the middle");
});

test("undo after Clear, the browser's Back, and numbers as people write them", async () => {
    await open("mesh=bridge");
    const hashHas = (part) => until((p) => location.hash.includes(p), part);
    await hashHas("mesh=bridge");
    for (const pair of [[[10, 0, 10], [20, 0, 35]], [[10, 0, 20], [30, 0, 8]]])
        for (const point of pair) await clickAt(point);
    await press("Enter");
    await hashHas("path=");
    const first = await points();
    const hash = await bench.page.evaluate(() => location.hash);
    assert.match(hash, /path=-?\d+(\.\d\d?)?,-?\d+(\.\d\d?)?,-?\d+(\.\d\d?)?;/);
    await bench.page.click("#clear");
    assert.deepEqual((await results()).searches, []);
    await press("Control+z");
    assert.equal(await points(), first);
    await bench.page.selectOption("#sample", "spiral");
    await hashHas("mesh=spiral");
    await back(() => window.workbench.open?.name === "bridge" && window.workbench.results().searches.length === 1);
    assert.equal(await points(), first);
});

test("what lies over the picture gives way, and floors that hide others", async () => {
    await open("mesh=spiral");
    const box = await bench.page.locator("#legend").boundingBox();
    await bench.page.mouse.move(box.x + 5, box.y + 5);
    await until(() => getComputedStyle(document.getElementById("legend")).opacity === "0");
    const under = async () => {
        const { x, y } = await toScreen([0, 11, -7]);
        await bench.page.mouse.move(x + 3, y);
        await bench.page.mouse.move(x, y);
        await bench.page.waitForTimeout(150);
        return Number((await text("pointer")).split(", ")[1]);
    };
    const whole = await under();
    await bench.page.locator("#cut").fill("300");
    const cut = await under();
    assert.ok(whole > 8 && cut < 4, `${whole}, then ${cut}`);
    await press("x");
    assert.equal(await text("cutText"), "all");
    await bench.page.click('[data-tab="mesh"]');
    const triangles = () => bench.page.evaluate(() => window.workbench.open.view.fill.geometry.index.count);
    const all = await triangles();
    await bench.page.click("#islandsLargest");
    assert.ok((await triangles()) < all);
    await bench.page.locator("#islands input").last().check();
    assert.equal(await triangles(), all);
});

test("a phone: two taps give a path, and nothing is wider than the page", async () => {
    await bench.newPage({ viewport: { width: 390, height: 844 }, hasTouch: true, isMobile: true });
    await open("mesh=courtyard");
    for (const point of [[10, 0, 30], [28, 0, 25]]) {
        const { x, y } = await toScreen(point);
        await bench.page.touchscreen.tap(x, y);
    }
    await until(() => window.workbench.results().searches[0]?.state === "found");
    assert.equal(await bench.page.evaluate(() => document.documentElement.scrollWidth), 390);
    await bench.page.tap('[data-tab="crowd"]');
    await bench.page.tap("#crowdWalk");
    await until(() => window.workbench.running.crowd.figures.frames > 2);
});

test("without WebGL the page says so", async () => {
    await bench.page.addInitScript(() => {
        HTMLCanvasElement.prototype.getContext = () => null;
    });
    await bench.page.goto(address);
    assert.ok(await bench.page.isVisible("text=This page needs WebGL 2"));
});
