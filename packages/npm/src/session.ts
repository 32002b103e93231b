import { Held, make } from "./held.js";
import type { Address, Module } from "./module.js";
import { Scheduler, type SchedulerSettings } from "./scheduler.js";
import { Search } from "./search.js";
import { Content, countAt, Point2, PointLike, putPoint } from "./values.js";

export interface SessionSettings {
    /** The mesh's name in messages and recordings: "mesh" without one. */
    name?: string;
    /** Whether every call is recorded, for `replay`. */
    isRecording?: boolean;
}

/** The library's memory, as the session counts it. */
export interface MemoryFigures {
    /** False without a recording, or once there was no memory for it. */
    isRecording: boolean;
    allocations: number;
    frees: number;
    blocks: number;
    bytes: number;
    peakBytes: number;
}

/**
 * A world that runs: one for each `load`. Its searches and schedulers end with it; meshes, paths and
 * corridors live on.
 */
export class Session extends Held {
    private left: MemoryFigures | null = null;
    private recorded: Uint8Array | null = null;

    /** @internal */
    constructor(module: Module, handle: Address, private readonly recordingFile: string | null) {
        super(module, handle);
    }

    /** @internal */
    static start(module: Module, mesh: Content, { name = "mesh", isRecording = false }: SessionSettings): Session {
        const recordingFile = isRecording ? `${name}.recording` : null;
        module.putFile(name, mesh);
        try {
            const texts = module.text(`${name}\0${recordingFile ?? ""}`);
            const recording = recordingFile ? module.bytes.indexOf(0, texts) + 1 : 0;
            const settings = module.structs + 16;
            module.words.set([20, 0, recording, 0, 0], settings >> 2);
            return new Session(module, make(module, "start", settings, texts), recordingFile);
        } catch (error) {
            if (recordingFile) module.removeFile(recordingFile);
            throw error;
        } finally {
            module.removeFile(name);
        }
    }

    /** Closes the session, and all its searches and schedulers. Returns what it has left: nothing. */
    close(): MemoryFigures {
        this.dispose();
        return this.left!;
    }

    /** The recording of a session that was closed; null of one without. */
    get recording(): Uint8Array | null {
        return this.recorded;
    }

    memoryFigures(): MemoryFigures {
        const figures = this.figures();
        this.module.call("memory_figures", this.handle, figures);
        return this.readFigures(figures);
    }

    /** The rectangle that the mesh's corners span in the plane. */
    bounds(): { low: Point2; high: Point2 } {
        const { module } = this;
        const low = module.structs;
        module.call("bounds", this.handle, low, low + 8);
        const [a, b, c, d] = module.floats.subarray(low >> 2, (low >> 2) + 4);
        return { low: [a, b], high: [c, d] };
    }

    /** Whether nothing can stand there; so it is outside of the world. */
    isBlocked(x: number, y: number): boolean {
        const { module } = this;
        module.call("is_blocked", this.handle, x, y, module.structs);
        return module.words[module.structs >> 2] === 1;
    }

    /** The ground's height; null where there is no ground. */
    groundHeight(x: number, y: number): number | null {
        return this.number("ground_height", x, y);
    }

    /** How far a ray runs, in the plane, to something blocked; null when it reaches its end, or starts outside. */
    traceRay(fromX: number, fromY: number, toX: number, toY: number): number | null {
        return this.number("trace_ray", fromX, fromY, toX, toY);
    }

    traceRayInSpace(from: PointLike, to: PointLike): number | null {
        const { module } = this;
        const at = module.structs + 16;
        return this.number("trace_ray_in_space", putPoint(module, at, from), putPoint(module, at + 12, to));
    }

    /** Opens a search; null when a point stands on no node. */
    openSearch(start: PointLike, goal: PointLike): Search | null {
        const { module } = this;
        const at = module.structs + 16;
        const handle = make(module, "search_open", this.handle, putPoint(module, at, start), putPoint(module, at + 12, goal));
        return handle ? new Search(module, handle) : null;
    }

    createScheduler(settings: SchedulerSettings = {}): Scheduler {
        return new Scheduler(this.module, this.handle, settings);
    }

    /** @internal */
    protected override destroy(handle: Address): void {
        const { module } = this;
        const figures = this.figures();
        module.call("close", handle, figures);
        this.left = this.readFigures(figures);
        if (this.recordingFile) this.recorded = module.takeFile(this.recordingFile);
    }

    private figures(): Address {
        const figures = this.module.structs;
        this.module.words[figures >> 2] = 48;
        return figures;
    }

    private readFigures(at: Address): MemoryFigures {
        const { module } = this;
        const [allocations, frees, blocks, bytes, peakBytes] = [8, 16, 24, 32, 40].map((offset) => countAt(module, at + offset));
        return { isRecording: module.words[(at >> 2) + 1] === 1, allocations, frees, blocks, bytes, peakBytes };
    }

    private number(name: string, ...values: number[]): number | null {
        const { module } = this;
        return module.call(name, this.handle, ...values, module.structs) ? module.floats[module.structs >> 2] : null;
    }
}
