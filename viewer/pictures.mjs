// Takes the pictures of the documentation: pictures.mjs PAGE_FOLDER PROGRAM_FOLDER OUTPUT_FOLDER
import { execFileSync, spawn } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { pathToFileURL } from "node:url";
import { launch } from "./browser.mjs";

const [pageFolder, programs, output] = process.argv.slice(2);
const address = pathToFileURL(join(pageFolder, "index.html")).href;
const browser = await launch();

async function shoot(name, hash, { isDark = false, work = async () => {} } = {}) {
    const page = await browser.newPage({
        viewport: { width: 1280, height: 720 },
        colorScheme: isDark ? "dark" : "light",
    });
    await page.goto(`${address}#${hash}`);
    await page.waitForFunction(() => document.getElementById("stage").dataset.firstPicture);
    await work(page);
    await page.waitForTimeout(600);
    await page.screenshot({ path: join(output, `${name}.png`) });
    await page.close();
}

await shoot("workbench-search", "mesh=courtyard&path=10,0,33;5,3.2,3&ray=12,0,14;32,0,27", {
    work: async (page) => {
        await page.click("#restart");
        await page.locator("#budget").fill("22");
        await page.click("#step");
    },
});
await shoot("workbench-spiral", "mesh=spiral&path=14,0,-10;0,11,-7&path=-14,0,10;0,7,-7", {
    isDark: true,
    work: async (page) => {
        await page.locator("#speed").fill("12");
        await page.click("#walk");
        await page.waitForFunction(() => parseFloat(document.getElementById("walked").textContent) > 12);
        await page.click("#walk");
    },
});
await shoot("workbench-bake", "mesh=courtyard", {
    work: async (page) => {
        await page.setInputFiles("#file", join(pageFolder, "../samples/courtyard.obj"));
        await page.fill("#bakeRadius", "1");
        await page.waitForFunction(() => /radius 1 \(4 cells\)/.test(document.getElementById("bakeFigures").textContent));
    },
});
await shoot("workbench-why", "mesh=harbour&path=2,0,2;100,1,75");
await shoot("workbench-grid", "mesh=harbour&view=top&grid", {
    work: (page) => page.click('[data-tab="mesh"]'),
});
await shoot("workbench-crowd", "mesh=harbour", {
    work: async (page) => {
        await page.click('[data-tab="crowd"]');
        await page.click("#crowdWalk");
        await page.waitForFunction(() => window.workbench.running.crowd.figures.frames > 290);
        await page.click("#crowdWalk");
    },
});

// a recording of the demo's, with a bit of a waypoint turned
const recordings = mkdtempSync(join(tmpdir(), "recording"));
const recording = join(recordings, "demo.rec");
execFileSync(join(programs, "zunodemo"), ["worlds/harbour.xml", "--seconds", "10", "--record", recording]);
const bytes = readFileSync(recording);
bytes[Math.floor(bytes.length * 0.51)] ^= 1;
await shoot("workbench-calls", "mesh=harbour", {
    isDark: true,
    work: async (page) => {
        await page.setInputFiles("#file", { name: "demo.rec", mimeType: "", buffer: bytes });
        await page.waitForSelector("#recordingResult.bad");
    },
});
rmSync(recordings, { recursive: true });

// the trace log, with a host that says what a game might
const channel = mkdtempSync(join(tmpdir(), "zunotrace"));
const env = { ...process.env, XDG_RUNTIME_DIR: channel };
const viewer = spawn(join(programs, "zunotrace"), ["--web", "--port", "0"], { env });
const log = await new Promise((resolve) => viewer.stdout.once("data", (text) => resolve(/http:\S+/.exec(String(text))[0])));
const page = await browser.newPage({ viewport: { width: 960, height: 420 } });
await page.goto(log);
const lines = ["world harbour.xml loaded: 873 nodes", "value openSearches 200", "value budgetPerFrame 400", "error character 17: start stands on no node"];
for (let frame = 1; frame < 6; ++frame) lines.push(`frame ${frame * 60}: ${40 * frame} paths found`, `value openSearches ${200 - 40 * frame}`);
for (let i = 0; i < lines.length; i += 4) execFileSync(join(programs, "tracesender"), { env, input: lines.slice(i, i + 4).join("\n") + "\n" });
await page.waitForTimeout(500);
await page.screenshot({ path: join(output, "trace-log.png") });
viewer.kill();
rmSync(channel, { recursive: true });
await browser.close();
