// Bakes scenes, in a worker of its own: the page goes on meanwhile.
import { startRecast } from "./bakerecast";

/** Numbers as zunobake's options take them: lengths in units of the scene, the slope in degrees. */
export interface BakeSettings {
    radius: number;
    height: number;
    climb: number;
    slope: number;
    cellSize: number;
    cellHeight: number;
    isZUp: boolean;
    takesBothSides: boolean;
    skipsDegenerate: boolean;
}

/** What the page asks of the worker, with both modules compiled. */
export interface BakeOrder {
    baker: WebAssembly.Module;
    recast: WebAssembly.Module;
    name: string;
    content: Uint8Array;
    settings: BakeSettings;
}

export interface Baked {
    /** The mesh's file in the binary form. */
    binary: Uint8Array<ArrayBuffer>;
    /** In the other form, or why there is none. */
    xml: Uint8Array<ArrayBuffer> | null;
    xmlFailure: string;
    /** The scene: three corners of three floats each. */
    triangles: Float32Array<ArrayBuffer>;
    /** What zunobake prints. */
    summary: string;
}

/** What the worker says: how far a stage is (of nothing: it begins), and at last one of the others. */
export type BakeMessage = { stage: string; done: number; all: number } | { failure: string } | { baked: Baked };

/** By the numbers of viewer/bake/bake.cpp. */
enum Result {
    Failure,
    Summary,
    Binary,
    XML,
    XMLFailure,
    Triangles,
}

type Exports = Record<string, (...values: number[]) => number> & { memory: WebAssembly.Memory };

/** Bakes a scene. Throws what a module ends with when it can't go on, and an Error with zunobake's words. */
async function bake({ baker, recast, name, content, settings }: BakeOrder): Promise<Baked> {
    let exports: Exports | null = null;
    const bytes = () => new Uint8Array(exports!.memory.buffer);
    const text = (at: number, length: number) => new TextDecoder().decode(bytes().subarray(at, at + length));
    const results = new Map<Result, Uint8Array<ArrayBuffer>>();
    const refuse = () => 8; // no file is open
    const imports = {
        env: {
            emscripten_notify_memory_growth: () => {},
            zuno_bake_progress: (stage: number, length: number, done: number, all: number) =>
                postMessage({ stage: text(stage, length), done, all } satisfies BakeMessage),
            zuno_bake_give: (kind: Result, at: number, size: number) => void results.set(kind, bytes().slice(at, at + size)),
            ...(await startRecast(recast, bytes)),
        },
        wasi_snapshot_preview1: {
            proc_exit: (status: number) => { throw new Error(`the baker ended with ${status}`); },
            fd_close: refuse, fd_read: refuse, fd_seek: refuse, fd_write: refuse,
            environ_sizes_get: refuse, environ_get: refuse, clock_time_get: refuse,
        },
    };
    exports = new WebAssembly.Instance(baker, imports).exports as Exports;
    exports._initialize();
    const put = (data: Uint8Array): number => {
        const at = exports!.malloc(data.length + 1) >>> 0;
        if (!at) throw new Error("out of memory");
        bytes().set(data, at);
        bytes()[at + data.length] = 0;
        return at;
    };
    const { radius, height, climb, slope, cellSize, cellHeight, isZUp, takesBothSides, skipsDegenerate } = settings;
    const numbers = [radius, height, climb, slope, cellSize, cellHeight, isZUp, takesBothSides, skipsDegenerate];
    const order = put(new Uint8Array(Float64Array.from(numbers, Number).buffer));
    exports.zuno_bake(put(new TextEncoder().encode(name)), put(content), content.length, order);
    const words = (kind: Result) => new TextDecoder().decode(results.get(kind));
    if (results.has(Result.Failure)) throw new Error(words(Result.Failure));
    return {
        binary: results.get(Result.Binary)!,
        xml: results.get(Result.XML) ?? null,
        xmlFailure: words(Result.XMLFailure),
        triangles: new Float32Array(results.get(Result.Triangles)!.buffer),
        summary: words(Result.Summary),
    };
}

/** Recast's module ends when it finds no memory, ours throws. */
function wordsOf(error: unknown): string {
    const text = error instanceof Error ? error.message : String(error);
    if (!(error instanceof WebAssembly.RuntimeError || error instanceof RangeError)) return text;
    return /OOM|allocation/.test(text) ? "out of memory" : `the bake can't go on: ${text}`;
}

addEventListener("message", async ({ data }: MessageEvent<BakeOrder>) => {
    try {
        const baked = await bake(data);
        const parts = [baked.binary, baked.xml, baked.triangles].flatMap((part) => (part ? [part.buffer] : []));
        postMessage({ baked } satisfies BakeMessage, { transfer: parts });
    } catch (error) {
        postMessage({ failure: wordsOf(error) } satisfies BakeMessage);
    }
});
