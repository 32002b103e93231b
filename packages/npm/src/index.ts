/** The library with the compiled code in it: nothing to serve, nothing to configure. */
import { packed } from "./binary.js";
import { type LoadSettings, makeZuno, type Zuno } from "./zuno.js";

export * from "./api.js";

let compiled: Promise<WebAssembly.Module> | null = null;

/** Node's own, which is ready far sooner there than streams are. */
const zlib = (globalThis as { process?: { getBuiltinModule?(name: string): { gunzipSync(bytes: Uint8Array): Uint8Array<ArrayBuffer> } } }).process
    ?.getBuiltinModule?.("node:zlib");

function decode(text: string): Uint8Array<ArrayBuffer> {
    const letters = atob(text);
    const bytes = new Uint8Array(letters.length);
    for (let i = 0; i < bytes.length; ++i) bytes[i] = letters.charCodeAt(i);
    return bytes;
}

async function unpack(): Promise<WebAssembly.Module> {
    const bytes = decode(packed);
    if (zlib) return WebAssembly.compile(zlib.gunzipSync(bytes));
    const stream = new Blob([bytes]).stream().pipeThrough(new DecompressionStream("gzip"));
    return WebAssembly.compile(await new Response(stream).arrayBuffer());
}

/** Loads the library, with a memory and a world of its own: each time another one. */
export async function load(settings: LoadSettings = {}): Promise<Zuno> {
    return makeZuno(await (compiled ??= unpack()), settings);
}
