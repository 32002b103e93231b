import { Held, make } from "./held.js";
import type { Address, Module } from "./module.js";
import { Priority, type Result } from "./statuses.js";
import { countAt, limitOf, Point, pointAt, PointLike, putPoint } from "./values.js";

export interface SchedulerSettings {
    /** Expansions in one go; a time budget is exceeded by one at most. */
    slice?: number;
    /** Expansions that put a request back by one frame. */
    turn?: number;
    /** Frames that requests of each priority may wait for later ones. */
    patience?: [urgent: number, normal: number, background: number];
}

export interface Request {
    start: PointLike;
    goal: PointLike;
    priority?: Priority;
    /** Frames from now, the next one being 1; 0: none. Late answers come, too. */
    deadline?: number;
}

export interface Answer {
    /** FOUND, NO_PATH or OFF_MESH. */
    result: Result;
    start: Point;
    goal: Point;
    cost: number;
    /** 1: the next frame answered. */
    framesWaited: number;
    expansions: number;
    isLate: boolean;
    /** Three numbers each. */
    waypoints: Float32Array;
}

const figureNames = [
    "frames", "added", "found", "noPath", "offMesh", "cancelled", "late", "expansions", "frameExpansions",
    "frameNanoseconds", "framesWaited", "mostFramesWaited", "longestQueue",
] as const;

/** What a scheduler has done so far; `open` are those that wait. */
export type SchedulerFigures = Record<"open" | (typeof figureNames)[number], number>;

const answerSize = 56;

/** Many requests for paths within a budget for each frame. It ends with its session, if not before. */
export class Scheduler extends Held {
    /** @internal */
    constructor(module: Module, session: Address, { slice = 32, turn = 8192, patience = [0, 30, 300] }: SchedulerSettings) {
        const settings = module.structs + 16;
        module.words.set([24, slice, turn, ...patience], settings >> 2);
        super(module, make(module, "scheduler_create", session, settings));
    }

    /** Adds a request and gives its number, which is never 0 and never given again. */
    add(request: Request): number {
        const id = this.module.structs;
        this.module.call("scheduler_add", this.handle, this.put(request), id);
        return countAt(this.module, id);
    }

    /** Gives a request other points, priority or deadline; one that was answered is opened anew. */
    change(id: number, request: Request): void {
        this.module.call("scheduler_change", this.handle, limitOf(id), this.put(request));
    }

    /** Ends a request, or drops its answer. */
    cancel(id: number): void {
        this.module.call("scheduler_cancel", this.handle, limitOf(id));
    }

    /** Spends a frame: at most so many expansions and milliseconds, whichever ends first. */
    advance(expansions = Infinity, milliseconds = Infinity): void {
        this.module.call("scheduler_advance", this.handle, limitOf(expansions), limitOf(milliseconds * 1e6));
    }

    /** Takes an answer, and forgets the request; null while it is open. */
    take(id: number): Answer | null {
        const { module } = this;
        const answer = module.structs;
        module.words[answer >> 2] = answerSize;
        const request = limitOf(id);
        let isThere = true;
        const points = module.fill(3, (array, count) => {
            if (isThere) isThere = module.call("scheduler_take", this.handle, request, answer, array, count);
        });
        return isThere ? this.read(answer, points.slice()) : null;
    }

    figures(): SchedulerFigures {
        const { module } = this;
        const figures = module.structs;
        module.words[figures >> 2] = 112;
        module.call("scheduler_look", this.handle, figures);
        const counts = figureNames.map((name, i) => [name, countAt(module, figures + 8 + 8 * i)]);
        return { open: module.words[(figures >> 2) + 1], ...Object.fromEntries(counts) } as SchedulerFigures;
    }

    private put({ start, goal, priority = Priority.NORMAL, deadline = 0 }: Request): Address {
        const { module } = this;
        const request = module.structs + 16;
        module.words.set([36, priority], request >> 2);
        putPoint(module, request + 8, start);
        putPoint(module, request + 20, goal);
        module.words[(request + 32) >> 2] = deadline;
        return request;
    }

    private read(at: Address, waypoints: Float32Array): Answer {
        const { module } = this;
        const { words, floats } = module;
        return {
            result: words[(at + 4) >> 2] as Result,
            start: pointAt(module, at + 8),
            goal: pointAt(module, at + 20),
            cost: floats[(at + 32) >> 2],
            framesWaited: words[(at + 36) >> 2],
            expansions: countAt(module, at + 40),
            isLate: words[(at + 48) >> 2] === 1,
            waypoints,
        };
    }
}
