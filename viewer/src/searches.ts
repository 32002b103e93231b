import { Engine, Explanation, SearchResult, Vec3 } from "./engine";
import { pathColour } from "./palette";

export type SearchState = "off mesh" | "running" | "found" | "no path";

export type StraightForm = "improved" | "plain" | "centres";

export interface Corners {
    points: Vec3[];
    length: number;
}

export function toPoints(numbers: Float32Array): Vec3[] {
    const points: Vec3[] = [];
    for (let i = 0; i < numbers.length; i += 3) points.push([numbers[i], numbers[i + 1], numbers[i + 2]]);
    return points;
}

function lengthOf(points: Vec3[]): number {
    return points.slice(1).reduce((sum, point, i) => sum + Math.hypot(...point.map((value, axis) => value - points[i][axis])), 0);
}

/** One search of the runtime's, and what is known of it. */
export class Search {
    state: SearchState = "running";
    expansions = 0;
    cost = 0;
    waypoints: Vec3[] = [];
    milliseconds = 0;
    /** The waypoints, as the engine takes them. */
    private path = new Float32Array();
    private readonly ways = new Map<StraightForm, Corners>();
    private reason: Explanation | null = null;
    private readonly id: number;

    constructor(
        private readonly engine: Engine,
        readonly start: Vec3,
        readonly goal: Vec3,
        readonly colour: string,
    ) {
        const begin = performance.now();
        this.id = engine.openSearch(start, goal);
        this.milliseconds = performance.now() - begin;
        if (this.id < 0) this.state = "off mesh";
    }

    get isRunning(): boolean {
        return this.state === "running";
    }

    /** Expands at most so many nodes. */
    run(budget: number): void {
        if (!this.isRunning || budget === 0) return;
        const begin = performance.now();
        const result = this.engine.runSearch(this.id, budget);
        this.milliseconds += performance.now() - begin;
        if (result === SearchResult.Running) {
            this.expansions += budget;
            return;
        }
        if (result === SearchResult.Found) this.readPath();
        else this.state = "no path";
        // each expansion closed one node, and none is opened again
        this.expansions = this.nodeStates().reduce((sum, state) => sum + (state === 2 ? 1 : 0), 0);
    }

    finish(): void {
        this.run(0xffffffff);
    }

    /** The way of a found path in a form, start and goal included. */
    wayIn(form: StraightForm): Corners {
        const known = this.ways.get(form);
        if (known) return known;
        const straight = form === "centres" ? null : this.engine.straighten(this.start, this.goal, this.path, form === "improved");
        const points = straight ? toPoints(straight.corners) : [this.start, ...this.waypoints, this.goal];
        const way = { points, length: straight?.length ?? lengthOf(points) };
        this.ways.set(form, way);
        return way;
    }

    /** Why there is no path. */
    get explanation(): Explanation {
        return (this.reason ??= this.engine.explain(this.start, this.goal));
    }

    /** Puts the engine's character at the start of the path. */
    sendWalker(form: StraightForm): boolean {
        return this.engine.sendWalker(this.start, this.goal, this.path, form === "improved");
    }

    /** Of each node 0: not visited, 1: open, 2: closed. */
    nodeStates(): Uint8Array {
        return this.id < 0 ? new Uint8Array() : this.engine.nodeStates(this.id);
    }

    close(): void {
        if (this.id >= 0) this.engine.closeSearch(this.id);
    }

    private readPath(): void {
        this.state = "found";
        this.path = this.engine.takeWaypoints(this.id);
        this.waypoints = toPoints(this.path);
        this.cost = this.engine.pathCost(this.id);
    }
}

/** All open searches, run side by side with one budget a frame, as a host would. */
export class SearchBoard {
    readonly all: Search[] = [];
    private colourCount = 0;

    constructor(private readonly engine: Engine) {}

    open(start: Vec3, goal: Vec3, colour = pathColour(this.colourCount++)): Search {
        const search = new Search(this.engine, start, goal, colour);
        this.all.push(search);
        return search;
    }

    /** Opens a search in the place of another. */
    replace(search: Search, start: Vec3, goal: Vec3): Search {
        search.close();
        const next = new Search(this.engine, start, goal, search.colour);
        this.all[this.all.indexOf(search)] = next;
        return next;
    }

    close(search: Search): void {
        search.close();
        this.all.splice(this.all.indexOf(search), 1);
    }

    get isRunning(): boolean {
        return this.all.some((search) => search.isRunning);
    }

    /** Shares a frame's expansions out among the searches that still run. */
    runFrame(budget: number): void {
        const running = this.all.filter((search) => search.isRunning);
        running.forEach((search, i) => {
            const share = Math.floor(budget / running.length) + (i < budget % running.length ? 1 : 0);
            search.run(share);
        });
    }

    finish(): void {
        for (const search of this.all) search.finish();
    }
}
