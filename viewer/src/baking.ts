import type { Baked, BakeMessage, BakeSettings } from "./baker";
import { unpack } from "./runtime";

declare global {
    /** The worker's script, its module and Recast's, each gzip in base 64; there once bake.js is loaded. */
    const zunoBaker: Record<"script" | "baker" | "recast", string>;
}

export interface Scene {
    name: string;
    content: Uint8Array;
}

/** How far a stage is: of nothing when it begins. */
export interface BakeProgress {
    stage: string;
    done: number;
    all: number;
}

interface Parts {
    script: string;
    baker: WebAssembly.Module;
    recast: WebAssembly.Module;
}

let parts: Promise<Parts> | null = null;

/** Loads what only those need who bake. */
async function loadParts(): Promise<Parts> {
    await new Promise<void>((resolve, reject) => {
        const script = document.createElement("script");
        script.src = "bake.js";
        script.addEventListener("load", () => resolve());
        script.addEventListener("error", () => reject(new Error("bake.js, which makes meshes of scenes, can't be loaded.")));
        document.head.append(script);
    });
    const [script, baker, recast] = await Promise.all([zunoBaker.script, zunoBaker.baker, zunoBaker.recast].map(unpack));
    const [ours, theirs] = await Promise.all([baker, recast].map((bytes) => WebAssembly.compile(bytes)));
    // from a text: a page that was opened from the disk may start no worker from a file
    return { script: URL.createObjectURL(new Blob([script], { type: "text/javascript" })), baker: ours, recast: theirs };
}

/** One bake in a worker, which ends with it. */
export class Baking {
    /** Throws an Error with what is wrong; null: it was cancelled. */
    readonly result: Promise<Baked | null>;
    private end: (baked: Baked | null) => void = () => {};
    private fail: (error: Error) => void = () => {};
    private worker: Worker | null = null;
    private isOver = false;

    constructor(scene: Scene, settings: BakeSettings, onProgress: (progress: BakeProgress) => void) {
        this.result = new Promise((resolve, reject) => {
            this.end = resolve;
            this.fail = reject;
        });
        this.start(scene, settings, onProgress).catch((error) => this.fail(error));
    }

    cancel(): void {
        this.isOver = true;
        this.worker?.terminate();
        this.end(null);
    }

    private async start(scene: Scene, settings: BakeSettings, onProgress: (progress: BakeProgress) => void): Promise<void> {
        parts ??= loadParts();
        parts.catch(() => (parts = null)); // another bake tries again
        const { script, baker, recast } = await parts;
        if (this.isOver) return;
        const worker = (this.worker = new Worker(script));
        worker.addEventListener("message", ({ data }: MessageEvent<BakeMessage>) => {
            if ("stage" in data) return onProgress(data);
            worker.terminate();
            if ("failure" in data) this.fail(new Error(data.failure));
            else this.end(data.baked);
        });
        worker.addEventListener("error", ({ message }) => {
            worker.terminate();
            this.fail(new Error(message));
        });
        worker.postMessage({ baker, recast, ...scene, settings });
    }
}
