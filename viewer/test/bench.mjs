// The page in a browser, for tests: opened, clicked, and compared with the native tools.
import { execFileSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { basename, dirname, join } from "node:path";
import { after, afterEach, before, beforeEach } from "node:test";
import { pathToFileURL } from "node:url";
import { deepEqual } from "node:assert/strict";
import { launch } from "../browser.mjs";

export const zunopath = process.env.ZUNO_PATH;
export const programs = dirname(zunopath);
export const sample = (name) => join(process.env.ZUNO_SAMPLES, `${name}.bin`);
export const address = pathToFileURL(join(process.env.ZUNO_PAGE, "index.html")).href; // no server is needed

/** What a native program writes; a status of 1 is an answer, too. */
export function run(program, ...words) {
    try {
        return execFileSync(join(programs, program), words, { encoding: "utf8", maxBuffer: 1e8 });
    } catch (error) {
        if (error.status !== 1) throw error;
        return error.stdout;
    }
}

/** The page of the test that runs, and a folder for its files. */
export const bench = { page: null, folder: null, errors: [] };

export function useBrowser() {
    let browser;
    before(async () => {
        browser = await launch();
        bench.folder = mkdtempSync(join(tmpdir(), "zunoviewer"));
        bench.newPage = async (options) => {
            await bench.page?.close();
            bench.page = await browser.newPage({ viewport: { width: 1280, height: 720 }, ...options });
            bench.page.on("pageerror", (error) => bench.errors.push(error.message));
        };
    });
    after(async () => {
        await browser.close();
        rmSync(bench.folder, { recursive: true });
    });
    beforeEach(() => bench.newPage({}));
    afterEach(() => deepEqual(bench.errors.splice(0), []));
}

export async function open(hash) {
    await bench.page.goto(`${address}#${hash}`);
    await until(() => document.getElementById("stage").dataset.firstPicture);
}

export const until = (condition, argument) => bench.page.waitForFunction(condition, argument);
export const text = (id) => bench.page.textContent(`#${id}`);
export const results = () => bench.page.evaluate(() => window.workbench.results());
export const toScreen = (point) => bench.page.evaluate((p) => window.workbench.view.toScreen(p), point);
export const camera = () => bench.page.evaluate(() => window.workbench.view.eye.state);

export async function clickAt(point) {
    const { x, y } = await toScreen(point);
    await bench.page.mouse.click(x, y);
}

export async function drop(...files) {
    const contents = files.map((file) => [basename(file), readFileSync(file).toString("base64")]);
    const transfer = await bench.page.evaluateHandle((all) => {
        const data = new DataTransfer();
        for (const [name, base64] of all)
            data.items.add(new File([Uint8Array.from(atob(base64), (letter) => letter.charCodeAt(0))], name));
        return data;
    }, contents);
    await bench.page.dispatchEvent("#scene", "drop", { dataTransfer: transfer });
}

export async function download(button) {
    const [file] = await Promise.all([bench.page.waitForEvent("download"), bench.page.click(button)]);
    return readFileSync(await file.path());
}
