/** The library with the compiled code in it: nothing to serve, nothing to configure. */
import { packed } from "./binary.js";
import { type LoadSettings, makeZuno, type Zuno } from "./zuno.js";

export * from "./api.js";

let compiled: Promise<WebAssembly.Module> | null = null;

async function unpack(): Promise<WebAssembly.Module> {
    const bytes = Uint8Array.from(atob(packed), (letter) => letter.charCodeAt(0));
    const stream = new Blob([bytes]).stream().pipeThrough(new DecompressionStream("gzip"));
    return WebAssembly.compile(await new Response(stream).arrayBuffer());
}

/** Loads the library, with a memory and a world of its own: each time another one. */
export async function load(settings: LoadSettings = {}): Promise<Zuno> {
    return makeZuno(await (compiled ??= unpack()), settings);
}
