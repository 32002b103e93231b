import { load, type Zuno } from "zunopathfinder/external";

declare global {
    /** The package's module with the functions of viewer/engine: gzip, in base 64. */
    const zunoModule: string;
    /** Sample meshes by name: gzip, in base 64. */
    const zunoSamples: Record<string, string>;
}

let compiled: Promise<WebAssembly.Module> | null = null;

/** The bytes behind a text of the page's. */
export async function unpack(text: string): Promise<Uint8Array<ArrayBuffer>> {
    const packed = Uint8Array.from(atob(text), (letter) => letter.charCodeAt(0));
    const stream = new Blob([packed]).stream().pipeThrough(new DecompressionStream("gzip"));
    return new Uint8Array(await new Response(stream).arrayBuffer());
}

/** A library with a memory and a world of its own: each time another one. */
export async function loadRuntime(): Promise<Zuno> {
    compiled ??= unpack(zunoModule).then((bytes) => WebAssembly.compile(bytes));
    return load(await compiled);
}
