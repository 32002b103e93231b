// Puts the page together: build.mjs PAGE_FOLDER MODULE BAKER SAMPLE... [--serve PORT]
import { execFileSync } from "node:child_process";
import { createServer } from "node:http";
import { cpSync, mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { basename, dirname, extname, join, normalize } from "node:path";
import { fileURLToPath } from "node:url";
import { gzipSync } from "node:zlib";
import { build } from "esbuild";

const here = dirname(fileURLToPath(import.meta.url));
const serveAt = process.argv.indexOf("--serve");
const [page, module, baker, ...samples] = process.argv.slice(2, serveAt < 0 ? undefined : serveAt);

mkdirSync(page, { recursive: true });
for (const file of ["index.html", "style.css"]) cpSync(join(here, file), join(page, file));
const packText = (content) => gzipSync(content, { level: 9 }).toString("base64");
const pack = (file) => packText(readFileSync(file));
const packed = Object.fromEntries(samples.map((file) => [basename(file, extname(file)), pack(file)]));
writeFileSync(join(page, "engine.js"), `var zunoModule = ${JSON.stringify(pack(module))};\n`);
writeFileSync(join(page, "samples.js"), `var zunoSamples = ${JSON.stringify(packed)};\n`);
// the package's classes, as its users have them: tsconfig.json tells where they are
execFileSync(join(here, "node_modules/.bin/tsc"), ["-p", join(here, "../packages/npm"), "--outDir", join(here, "../build/viewer/zunopathfinder")], {
    stdio: "inherit",
});
const bundling = { bundle: true, minify: true, format: "iife", target: "es2022" };
await build({ ...bundling, entryPoints: [join(here, "src/main.ts")], outfile: join(page, "workbench.js"), legalComments: "linked" });
// what only those load who bake
const worker = await build({
    ...bundling,
    entryPoints: [join(here, "src/baker.ts")],
    write: false,
    define: { "import.meta.url": '""' }, // Recast's loader would look for its module there; it is given one
});
const recast = pack(join(here, "node_modules/@recast-navigation/wasm/dist/recast-navigation.wasm.wasm"));
const parts = { script: packText(worker.outputFiles[0].contents), baker: pack(baker), recast };
const licences = [join(here, "node_modules/@recast-navigation/wasm/LICENSE"), "/usr/share/doc/libtinygltf-dev/copyright", "/usr/share/doc/nlohmann-json3-dev/copyright"];
writeFileSync(join(page, "bake.js.LEGAL.txt"), licences.map((file) => readFileSync(file, "utf8")).join("\n----\n\n"));
writeFileSync(join(page, "bake.js"), `var zunoBaker = ${JSON.stringify(parts)};\n`);

const kinds = { ".html": "text/html", ".js": "text/javascript", ".css": "text/css" };

function serve(port) {
    const server = createServer((request, response) => {
        try {
            const path = normalize(decodeURIComponent(new URL(request.url, "http://page").pathname));
            const file = join(page, path === "/" ? "index.html" : path);
            const content = readFileSync(file);
            response.writeHead(200, { "Content-Type": kinds[extname(file)] ?? "application/octet-stream" }).end(content);
        } catch {
            response.writeHead(404).end("not found");
        }
    });
    server.on("error", (error) => {
        if (error.code !== "EADDRINUSE") throw error;
        serve(port + 1);
    });
    server.listen(port, "127.0.0.1", () => console.log(`the workbench: http://127.0.0.1:${port}/ (Ctrl+C ends it)`));
}

if (serveAt >= 0) serve(Number(process.argv[serveAt + 1]));
