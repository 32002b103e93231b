import { execFileSync } from "node:child_process";
import { readFileSync } from "node:fs";
import { join } from "node:path";

export const root = join(import.meta.dirname, "../../..");

/** The sample mesh, in a buffer of its own. */
export function readMesh(name = "harbour.xml") {
    return new Uint8Array(readFileSync(join(root, "worlds", name))).buffer;
}

/** What a program of the native build prints, on both outputs. */
export function runNative(program, ...words) {
    try {
        return execFileSync(join(root, "build/release/bin", program), words, { encoding: "utf8", stdio: "pipe" });
    } catch (error) {
        return error.stdout + error.stderr;
    }
}
