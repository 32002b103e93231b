// Takes the pictures of the documentation: pictures.mjs PAGE_FOLDER OUTPUT_FOLDER
import { join } from "node:path";
import { pathToFileURL } from "node:url";
import { launch } from "./browser.mjs";

const [pageFolder, output] = process.argv.slice(2);
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
await shoot("workbench-spiral", "mesh=spiral&path=14,0,-10;0,11,-7&path=-14,0,10;0,7,-7", { isDark: true });
await shoot("workbench-grid", "mesh=harbour&view=top&grid", {
    work: (page) => page.click('[data-tab="mesh"]'),
});
await browser.close();
