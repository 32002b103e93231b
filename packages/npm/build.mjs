// Puts the package together: build.mjs MODULE FOLDER, where FOLDER becomes what `npm pack` packs.
import { execFileSync } from "node:child_process";
import { cpSync, mkdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { gzipSync } from "node:zlib";

const here = import.meta.dirname;
const [module, folder] = process.argv.slice(2);
const dist = join(folder, "dist");
rmSync(dist, { recursive: true, force: true });
mkdirSync(dist, { recursive: true });
execFileSync(join(here, "../../viewer/node_modules/.bin/tsc"), ["-p", here, "--outDir", dist], { stdio: "inherit" });
cpSync(join(here, "README.md"), join(folder, "README.md"));
const header = Number(readFileSync(join(here, "../../capi/zuno.h"), "utf8").match(/ZUNO_HEADER_VERSION (\d+)u/)[1]);
const version = [header / 10000, (header / 100) % 100, header % 100].map(Math.floor).join(".");
const { scripts, ...description } = JSON.parse(readFileSync(join(here, "package.json"), "utf8"));
writeFileSync(join(folder, "package.json"), `${JSON.stringify({ ...description, version }, null, 2)}\n`);
cpSync(module, join(dist, "zuno.wasm"));
cpSync(join(here, "src/binary.d.ts"), join(dist, "binary.d.ts"));
const packed = gzipSync(readFileSync(module), { level: 9 });
writeFileSync(join(dist, "binary.js"), `export const packed = "${packed.toString("base64")}";\n`);
console.log(`the module: ${packed.length} bytes, gzip`);
