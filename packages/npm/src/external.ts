/** The library without the compiled code, which is served as a file, `zunopathfinder/zuno.wasm`. */
import { type LoadSettings, makeZuno, type Zuno } from "./zuno.js";

export * from "./api.js";

/** Where the compiled code is: an address to fetch, its bytes, or what `WebAssembly.compile` made of them. */
export type Binary = string | URL | Response | ArrayBuffer | ArrayBufferView | WebAssembly.Module;

async function compile(binary: Binary): Promise<WebAssembly.Module> {
    if (binary instanceof WebAssembly.Module) return binary;
    if (binary instanceof ArrayBuffer || ArrayBuffer.isView(binary)) return WebAssembly.compile(binary);
    const response = binary instanceof Response ? binary : await fetch(binary);
    if (!response.ok) throw new Error(`${response.url}: ${response.status} ${response.statusText}`);
    return WebAssembly.compile(await response.arrayBuffer());
}

/** Loads the library, with a memory and a world of its own: each time another one. */
export async function load(binary: Binary, settings: LoadSettings = {}): Promise<Zuno> {
    return makeZuno(await compile(binary), settings);
}
