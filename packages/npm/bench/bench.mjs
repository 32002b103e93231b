// The package beside others in one run: bench.mjs FOLDER NAME..., where FOLDER holds NAME.xml and NAME.tile.
import { execFileSync } from "node:child_process";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { gzipSync } from "node:zlib";
import { build } from "esbuild";
import { load } from "zunopathfinder";
import { peers } from "./peers.mjs";

const here = import.meta.dirname;
const many = 500; // expansions from which on a query counts as a long one
const [folder, ...names] = process.argv.slice(2);

const sum = (values) => values.reduce((total, value) => total + value, 0);
const show = (rows) => {
    const widths = rows[0].map((_, column) => Math.max(...rows.map((row) => String(row[column]).length)));
    for (const row of rows) console.log(row.map((cell, i) => (i ? String(cell).padStart(widths[i]) : cell.padEnd(widths[i]))).join("  "));
};

/** Bytes that a page loads for it, as one script and gzip; what it asks its user to bring along is left out. */
async function sizeOf(entries) {
    const contents = entries.map((entry) => `export * from ${JSON.stringify(entry)};`).join("\n");
    const { outputFiles } = await build({
        stdin: { contents, resolveDir: here }, bundle: true, minify: true, format: "esm", write: false,
        external: ["three", "node:*", "module"], logLevel: "silent", platform: "browser",
    });
    return gzipSync(outputFiles[0].contents, { level: 9 }).length;
}

/** Milliseconds from the import to being ready, in a process of its own. */
function startOf(name) {
    const code = `const { peers } = await import("./peers.mjs"); const begin = performance.now(); await peers[${JSON.stringify(name)}].start(); console.log(performance.now() - begin);`;
    return Number(execFileSync(process.execPath, ["--no-deprecation", "--input-type=module", "-e", code], { cwd: here, encoding: "utf8" }));
}

async function compareStarts() {
    const rows = [["", "bytes, gzip", "ready after, ms"]];
    const own = Object.entries(peers).filter(([, { entries }]) => entries);
    const starts = own.map(() => []);
    for (let round = 0; round < 7; ++round) own.forEach(([name], i) => starts[i].push(startOf(name)));
    for (const [i, [name, { entries }]] of own.entries()) rows.push([name, await sizeOf(entries), Math.min(...starts[i]).toFixed(0)]);
    show(rows);
}

/** The mesh's polygons by shared corners, and the journeys between places that chance picks. */
function readWorld(zuno, name) {
    const content = readFileSync(join(folder, `${name}.xml`));
    const tile = new Uint8Array(readFileSync(join(folder, `${name}.tile`)));
    const mesh = zuno.loadMesh(content);
    const corners = new Map();
    const polygons = Array.from({ length: mesh.figures().nodes }, (_, node) => {
        const outline = mesh.outline(node);
        return Array.from({ length: outline.length / 3 }, (_, i) => {
            const place = [...outline.subarray(3 * i, 3 * i + 3)];
            if (!corners.has(String(place))) corners.set(String(place), { place, index: corners.size });
            return corners.get(String(place)).index;
        });
    });
    const vertices = [...corners.values()].flatMap(({ place }) => place);
    const axis = (i) => vertices.filter((_, k) => k % 3 === i);
    const bounds = [Math.min, Math.max].flatMap((pick) => [0, 1, 2].map((i) => axis(i).reduce((a, b) => pick(a, b))));
    return { content, tile, polygons, vertices, bounds, journeys: pickJourneys(zuno, mesh, content) };
}

function pickJourneys(zuno, mesh, content) {
    const session = zuno.start(content);
    const scheduler = session.createScheduler();
    const journeys = [];
    for (let seed = 1; journeys.length < 60; seed += 2) {
        const [from, to] = [mesh.random(seed), mesh.random(seed + 1)];
        if (mesh.island(from.node) || mesh.island(to.node)) continue;
        const id = scheduler.add({ start: from.position, goal: to.position });
        scheduler.advance();
        const { result, expansions } = scheduler.take(id);
        if (result === 0) journeys.push({ start: from.position, goal: to.position, expansions });
    }
    session.close();
    return journeys;
}

function lengthOf(corners) {
    let length = 0;
    for (let i = 3; i < corners.length; i += 3) length += Math.hypot(corners[i] - corners[i - 3], corners[i + 1] - corners[i - 2], corners[i + 2] - corners[i - 1]);
    return length;
}

/** Whether a path leads where it should, but for what a package rounds. */
function arrives(corners, goal) {
    return corners && Math.hypot(corners.at(-3) - goal[0], corners.at(-1) - goal[2]) < 0.1;
}

/** Asks all of them the same journeys, question by question in turns, and shows times and lengths. */
async function compareQueries(zuno, name) {
    const world = readWorld(zuno, name);
    const sides = [];
    for (const [peer, { start, open }] of Object.entries(peers)) sides.push({ peer, ask: open(start ? await start() : await load(), world), times: [], lengths: [] });
    for (let round = 0; round < 5; ++round)
        for (const [i, { start, goal }] of world.journeys.entries())
            for (const k of sides.keys()) {
                const side = sides[(k + round + i) % sides.length]; // nobody always follows the same one
                const begin = performance.now();
                const corners = side.ask(start, goal);
                const time = performance.now() - begin;
                side.lengths[i] = arrives(corners, goal) ? lengthOf(corners) : NaN;
                side.times[i] = Math.min(side.times[i] ?? Infinity, time); // what others on the machine took is left out
            }
    const long = world.journeys.map(({ expansions }) => expansions > many);
    const answered = world.journeys.map((_, i) => sides.every(({ lengths }) => lengths[i] > 0));
    const ours = sides[0].times;
    console.log(`\n${name}: ${world.polygons.length} nodes, ${long.length} queries, ${long.filter(Boolean).length} of more than ${many} expansions, ${answered.filter(Boolean).length} answered by all`);
    const rows = [["", "us a query", "times ours", "us a long one", "times ours", "not answered", "length : shortest"]];
    for (const { peer, times, lengths } of sides) {
        const part = (of, which) => sum(of.filter((_, i) => which[i]));
        const shortest = world.journeys.map((_, i) => Math.min(...sides.map(({ lengths }) => lengths[i])));
        rows.push([
            peer, (sum(times) / times.length * 1000).toFixed(0), (sum(times) / sum(ours)).toFixed(2),
            (part(times, long) / long.filter(Boolean).length * 1000).toFixed(0), (part(times, long) / part(ours, long)).toFixed(2),
            lengths.filter(Number.isNaN).length, (part(lengths, answered) / part(shortest, answered)).toFixed(3),
        ]);
    }
    show(rows);
    for (const { ask } of sides) ask.close?.();
}

await compareStarts();
const zuno = await load();
for (const name of names) await compareQueries(zuno, name);
