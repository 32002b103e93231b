// Scenes that become meshes in the page: the same, byte for byte, as those that zunobake makes.
import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { bench, camera, clickAt, download, drop, open, results, run, sample, text, until, useBrowser } from "./bench.mjs";

useBrowser();

const scene = (name) => sample(name).replace(/bin$/, "obj");
const fault = (pattern) => until((p) => new RegExp(p).test(document.getElementById("bakeFault").textContent), pattern);
const baked = (name, nodes) =>
    until(([n, count]) => window.workbench.open?.name === n && document.getElementById("bakeProgress").hidden &&
        document.querySelector("#meshFigures dd")?.textContent === count, [name, nodes.toLocaleString("en")]);

/** Waits for the page's mesh of a scene, and compares both of its forms with zunobake's. */
async function compare(file, name, ...options) {
    for (const form of ["bin", "xml"]) {
        const native = join(bench.folder, `native.${form}`);
        const [, nodes] = / (\d+) nodes/.exec(run("zunobake", file, "-o", native, ...options));
        await baked(name, Number(nodes));
        assert.ok((await download(`#bakeSave_${form}`)).equals(readFileSync(native)), `${form} ${options}`);
    }
}

/** A binary glTF file of one triangle. */
function glb(corners) {
    const json = JSON.stringify({
        asset: { version: "2.0" }, scenes: [{ nodes: [0] }], nodes: [{ mesh: 0 }], meshes: [{ primitives: [{ attributes: { POSITION: 0 } }] }],
        accessors: [{ bufferView: 0, componentType: 5126, count: 3, type: "VEC3" }], bufferViews: [{ buffer: 0, byteLength: 36 }], buffers: [{ byteLength: 36 }],
    });
    const text_ = Buffer.from(json.padEnd(Math.ceil(json.length / 4) * 4));
    const words = (...numbers) => Buffer.from(Uint32Array.from(numbers).buffer);
    return Buffer.concat([words(0x46546c67, 2, 28 + text_.length + 36, text_.length, 0x4e4f534a), text_, words(36, 0x4e4942),
        Buffer.from(Float32Array.from(corners).buffer)]);
}

test("a dropped scene becomes zunobake's mesh, and another one with another number", async () => {
    await open("mesh=bridge");
    await drop(scene("courtyard"));
    await compare(scene("courtyard"), "courtyard.obj");
    assert.match(await text("bakeFigures"), /Scene408 triangles.*radius 0\.5 \(2 cells\).*Unreachableat 32, 0, 33: 24 square units/s);
    assert.equal(await bench.page.evaluate(() => window.workbench.view.shownScene.group.children[0].geometry.attributes.position.count), 3 * 408);
    for (const point of [[10, 0, 12], [30, 0, 25]]) await clickAt(point);
    await until(() => window.workbench.results().searches[0]?.state === "found");
    const [, target] = await camera();
    await bench.page.click('[data-tab="bake"]');
    await bench.page.fill("#bakeRadius", "1.2");
    await compare(scene("courtyard"), "courtyard.obj", "--radius", "1.2");
    assert.deepEqual((await camera())[1], target, "it is seen from where it was");
    assert.equal((await results()).searches.length, 1);
    await bench.page.fill("#bakeCellSize", "none");
    await fault("^The cell size must be a number");
    await bench.page.fill("#bakeCellSize", "0.001");
    await fault("choose a larger --cell-size");
    assert.equal(await bench.page.isVisible("#bakeSave_bin"), true);
});

test("a long bake tells how far it is, and can be cancelled", async () => {
    await open("mesh=bridge");
    await drop(scene("maze"));
    await bench.page.fill("#bakeCellSize", "0.1");
    await until(() => /^baking \d+ %, \d+ s left$/.test(document.getElementById("bakeStage").textContent));
    await bench.page.click("#bakeCancel");
    await fault("Cancelled");
    assert.equal(await text("title"), "bridge");
    await bench.page.fill("#bakeCellSize", "0.25");
    await compare(scene("maze"), "maze.obj");
});

test("glTF, and files that are no scene", async () => {
    await open("mesh=bridge");
    const triangle = join(bench.folder, "triangle.glb");
    for (const [name, content, expected] of [
        ["cut.glb", glb([0, 0, 0, 0, 0, 9, 9, 0, 0]).subarray(0, 300), "^cut.glb: cannot be read as glTF 2.0: "],
        ["text.obj", "no scene at all", "^text.obj: no faces"],
        ["number.obj", "v 1 2 inf\n", "^number.obj:1: coordinate 'inf' is no finite number"],
        ["wall.glb", glb([0, 0, 0, 0, 9, 0, 9, 0, 0]), "^nothing is walkable"],
    ]) {
        writeFileSync(join(bench.folder, name), content);
        await drop(join(bench.folder, name));
        await fault(expected);
    }
    assert.equal(await text("title"), "bridge");
    writeFileSync(triangle, glb([0, 0, 0, 0, 0, 9, 9, 0, 0]));
    await bench.page.setInputFiles("#file", triangle);
    await compare(triangle, "triangle.glb");
    await drop(scene("spiral")); // it has negative coordinates
    await compare(scene("spiral"), "spiral.obj");
});
